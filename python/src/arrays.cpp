#include "python/src/arrays.h"

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <type_traits>

namespace zbr::python {
namespace {

// Holds the memory of one array, to NumPy a buffer.
struct ArrayObject {
  PyObject_HEAD std::shared_ptr<const void> owner;
  void* data;
  const char* format;
  Py_ssize_t itemSize;
  int dimensions;
  Py_ssize_t shape[2];
  Py_ssize_t strides[2];
  bool writable;
};

PyTypeObject* arrayType = nullptr;

int GetBuffer(PyObject* self, Py_buffer* view, int flags) {
  const auto* array = reinterpret_cast<ArrayObject*>(self);
  if ((flags & PyBUF_WRITABLE) == PyBUF_WRITABLE && !array->writable) {
    PyErr_SetString(PyExc_BufferError, "the array is read-only");
    view->obj = nullptr;
    return -1;
  }
  view->buf = array->data;
  view->obj = self;
  Py_INCREF(self);
  view->len = array->itemSize * array->shape[0] * (array->dimensions == 2 ? array->shape[1] : 1);
  view->readonly = array->writable ? 0 : 1;
  view->itemsize = array->itemSize;
  view->format = (flags & PyBUF_FORMAT) != 0 ? const_cast<char*>(array->format) : nullptr;
  view->ndim = array->dimensions;
  view->shape = (flags & PyBUF_ND) != 0 ? const_cast<Py_ssize_t*>(array->shape) : nullptr;
  view->strides = (flags & PyBUF_STRIDES) == PyBUF_STRIDES ? const_cast<Py_ssize_t*>(array->strides) : nullptr;
  view->suboffsets = nullptr;
  view->internal = nullptr;
  return 0;
}

void DeleteArray(PyObject* self) {
  reinterpret_cast<ArrayObject*>(self)->owner.~shared_ptr();
  FreeObject(self);
}

// A function of NumPy, kept for good. Looked up when the module is made: an import within a call may wait for another thread's.
PyObject* NumPy(const char* name) {
  const Ref module = Ref::Own(PyImport_ImportModule("numpy"));
  return Ref::Own(PyObject_GetAttrString(module.get(), name)).release();
}

PyObject* asArray = nullptr;
PyObject* asContiguousArray = nullptr;

// Puts the argument's name before what NumPy says of it.
[[noreturn]] void RethrowNaming(const char* name) {
  PyObject *type = nullptr, *value = nullptr, *trace = nullptr;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  const Ref keep[3] = {Ref::Share(type), Ref::Share(value), Ref::Share(trace)};
  for (PyObject* o : {type, value, trace}) Py_XDECREF(o);
  if (type != nullptr && PyErr_GivenExceptionMatches(type, PyExc_Exception) == 0) {  // an interrupt, perhaps
    PyErr_Restore(Ref(keep[0]).release(), Ref(keep[1]).release(), Ref(keep[2]).release());
    throw PythonError();
  }
  const Ref text = value != nullptr ? Ref::Own(PyObject_Str(value)) : Ref();
  PyErr_Format(PyExc_ValueError, "%s: not an array of numbers (%S)", name, text ? text.get() : Py_None);
  throw PythonError();
}

// What numpy.asarray makes of the object, and the kind of its items.
Ref Converted(PyObject* object, const char* name, char& kind) {
  PyObject* const converted = PyObject_CallFunctionObjArgs(asArray, object, nullptr);
  if (converted == nullptr) RethrowNaming(name);
  Ref array = Ref::Own(converted);
  const Ref type = Ref::Own(PyObject_GetAttrString(array.get(), "dtype"));
  const Ref letter = Ref::Own(PyObject_GetAttrString(type.get(), "kind"));
  const Ref bytes = Ref::Own(PyUnicode_AsASCIIString(letter.get()));
  kind = *PyBytes_AsString(bytes.get());
  return array;
}

// The array with items of another type, contiguous.
Ref Cast(const Ref& array, const char* type) {
  return Ref::Own(PyObject_CallFunction(asContiguousArray, "Os", array.get(), type));
}

std::string ShapeText(const Ref& array) {
  const Ref shape = Ref::Own(PyObject_GetAttrString(array.get(), "shape"));
  const Ref text = Ref::Own(PyObject_Str(shape.get()));
  const Ref bytes = Ref::Own(PyUnicode_AsUTF8String(text.get()));
  return PyBytes_AsString(bytes.get());
}

bool IsEmpty(const Ref& array) {
  return PyObject_Size(array.get()) == 0;
}

}  // namespace

bool Doubles::Hold(PyObject* object, int columns) {
  if (PyObject_CheckBuffer(object) == 0) return false;
  if (PyObject_GetBuffer(object, &buffer_, PyBUF_C_CONTIGUOUS | PyBUF_FORMAT) != 0) {
    DropError();
    return false;
  }
  isHeld_ = true;
  const bool fits = buffer_.ndim == 2 && buffer_.shape[1] == columns && buffer_.format != nullptr &&
                    std::strcmp(buffer_.format, "d") == 0 && reinterpret_cast<std::uintptr_t>(buffer_.buf) % alignof(double) == 0;
  if (fits) rows_ = static_cast<std::size_t>(buffer_.shape[0]);
  if (!fits) Release();
  return fits;
}

void Doubles::Release() {
  if (isHeld_) PyBuffer_Release(&buffer_);
  isHeld_ = false;
}

Doubles::Doubles(PyObject* object, const char* name, int columns) {
  if (Hold(object, columns)) return;
  char kind = 0;
  const Ref array = Converted(object, name, kind);
  const std::string wanted = "an array of shape (n, " + std::to_string(columns) + ")";
  if (std::strchr("iuf", kind) == nullptr) throw BadArgument(name, wanted + " of numbers is needed");
  const Ref cast = Cast(array, "float64");
  if (Hold(cast.get(), columns)) return;
  if (IsEmpty(cast)) {
    DropError();
    return;
  }
  DropError();
  throw BadArgument(name, wanted + " is needed, not of shape " + ShapeText(array));
}

std::vector<std::int32_t> ReadIntegers(PyObject* object, const char* name, int columns, std::int64_t least, std::int64_t most) {
  char kind = 0;
  const Ref array = Converted(object, name, kind);
  const bool isEmpty = IsEmpty(array);
  DropError();  // a number has no size
  if (!isEmpty && std::strchr("iu", kind) == nullptr) throw BadArgument(name, "integers are needed");
  const Ref cast = Cast(array, kind == 'u' ? "uint64" : "int64");
  Py_buffer buffer{};
  if (PyObject_GetBuffer(cast.get(), &buffer, PyBUF_C_CONTIGUOUS) != 0) throw PythonError();
  const struct Releaser {
    Py_buffer* buffer;
    ~Releaser() { PyBuffer_Release(buffer); }
  } releaser{&buffer};
  const bool fits = isEmpty || (columns == 0 ? buffer.ndim == 1 : buffer.ndim == 2 && buffer.shape[1] == columns);
  if (!fits) {
    const std::string wanted = columns == 0 ? "(n,)" : "(n, " + std::to_string(columns) + ")";
    throw BadArgument(name, "an array of shape " + wanted + " is needed, not of shape " + ShapeText(array));
  }
  const auto count = static_cast<std::size_t>(buffer.len) / sizeof(std::int64_t);
  const auto* const items = static_cast<const std::int64_t*>(buffer.buf);  // unsigned ones beyond the range read as negative
  std::vector<std::int32_t> result(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (items[i] < least || items[i] > most || (kind == 'u' && items[i] < 0)) {
      const std::size_t row = columns == 0 ? i : i / static_cast<std::size_t>(columns);
      throw BadArgument(name, "entry " + std::to_string(row) + " is out of range: " + std::to_string(items[i]) + ", not from " +
                                  std::to_string(least) + " to " + std::to_string(most));
    }
    result[i] = static_cast<std::int32_t>(items[i]);
  }
  return result;
}

std::vector<std::int32_t> ReadOffsets(PyObject* object, const char* name, std::size_t limit, const char* limitName) {
  std::vector<std::int32_t> offsets = ReadIntegers(object, name, 0, 0, std::numeric_limits<std::int32_t>::max());
  if (offsets.empty()) throw BadArgument(name, "offsets are one more than what they divide, so never none");
  for (std::size_t i = 1; i < offsets.size(); ++i) {
    if (offsets[i] < offsets[i - 1])
      throw BadArgument(name, "offset " + std::to_string(i) + " is " + std::to_string(offsets[i]) + ", less than the one before");
  }
  if (static_cast<std::size_t>(offsets.back()) > limit) {
    throw BadArgument(
        name, "the last offset, " + std::to_string(offsets.back()) + ", is beyond the " + std::to_string(limit) + " " + limitName);
  }
  return offsets;
}

Ref MakeArray(std::shared_ptr<const void> owner, const void* data, const char* format, std::size_t itemSize,
              const ArrayShape& shape) {
  static double nothing[1] = {};  // arrays without items have an address, too
  const Ref holder = Ref::Own(PyType_GenericAlloc(arrayType, 0));
  auto* const array = reinterpret_cast<ArrayObject*>(holder.get());
  new (&array->owner) std::shared_ptr<const void>(std::move(owner));
  array->data = data != nullptr ? const_cast<void*>(data) : nothing;
  array->format = format;
  array->itemSize = static_cast<Py_ssize_t>(itemSize);
  array->dimensions = shape.columns == 0 ? 1 : 2;
  array->shape[0] = static_cast<Py_ssize_t>(shape.rows);
  array->shape[1] = static_cast<Py_ssize_t>(shape.columns);
  array->strides[0] = array->itemSize * (shape.columns == 0 ? 1 : array->shape[1]);
  array->strides[1] = array->itemSize;
  array->writable = shape.writable;
  return Ref::Own(PyObject_CallFunctionObjArgs(asArray, holder.get(), nullptr));
}

void AddArrayType(PyObject* module) {
  asArray = NumPy("asarray");
  asContiguousArray = NumPy("ascontiguousarray");
  static PyType_Slot slots[] = {
      {Py_tp_dealloc, reinterpret_cast<void*>(DeleteArray)},
      {Py_bf_getbuffer, reinterpret_cast<void*>(GetBuffer)},
      {0, nullptr},
  };
  static PyType_Spec spec = {"zbr._zbr.Memory", sizeof(ArrayObject), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                             slots};
  PyObject* const type = Ref::Own(PyType_FromSpec(&spec)).release();  // kept for good
  arrayType = reinterpret_cast<PyTypeObject*>(type);
  if (PyModule_AddObjectRef(module, "Memory", type) < 0) throw PythonError();
}

}  // namespace zbr::python
