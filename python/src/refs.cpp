// From C++ exceptions to Python's.
#include "python/src/refs.h"

#include <zbr-formats/types.h>

#include <new>
#include <stdexcept>
#include <string_view>

namespace zbr::python {
namespace {

// Messages name files, whose names need not be UTF-8.
Ref TextOf(std::string_view message) {
  return Ref::Own(PyUnicode_DecodeUTF8(message.data(), static_cast<Py_ssize_t>(message.size()), "replace"));
}

// Sets file, line and cause as attributes, as far as they are known.
void SetFailure(PyObject* type, const drawing::Failure& failure) {
  const Ref error = Ref::Own(PyObject_CallFunctionObjArgs(type, TextOf(failure.what()).get(), nullptr));
  const Ref file = failure.File().empty() ? None() : Ref::Own(PyUnicode_DecodeFSDefault(failure.File().c_str()));
  const Ref line = failure.Line() == 0 ? None() : Ref::Own(PyLong_FromSize_t(failure.Line()));
  const Ref cause = TextOf(failure.Cause());
  if (PyObject_SetAttrString(error.get(), "file", file.get()) < 0 || PyObject_SetAttrString(error.get(), "line", line.get()) < 0 ||
      PyObject_SetAttrString(error.get(), "cause", cause.get()) < 0) {
    throw PythonError();
  }
  PyErr_SetObject(type, error.get());
}

}  // namespace

Errors& TheErrors() {
  static Errors errors;
  return errors;
}

void TranslateException() noexcept {
  try {
    throw;
  } catch (const PythonError&) {  // set already
  } catch (const BadType& e) {
    PyErr_SetString(PyExc_TypeError, e.what());
  } catch (const BadArgument& e) {
    PyErr_SetString(PyExc_ValueError, e.what());
  } catch (const drawing::Failure& e) {
    try {
      const bool isOfFormat = dynamic_cast<const formats::UnknownFormat*>(&e) != nullptr;
      SetFailure(isOfFormat ? TheErrors().unknownFormat : TheErrors().failure, e);
    } catch (...) {  // no memory for the message, most likely
      if (PyErr_Occurred() == nullptr) PyErr_NoMemory();
    }
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::length_error&) {
    PyErr_NoMemory();
  } catch (const std::exception& e) {
    PyErr_SetString(PyExc_RuntimeError, e.what());
  } catch (...) {
    PyErr_SetString(PyExc_RuntimeError, "unknown error");
  }
}

}  // namespace zbr::python
