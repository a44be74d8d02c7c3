// Python objects that share an immutable C++ object.
//
// Each kind has a type here and a class in the package made of it, which adds what is easier said in Python; new objects are of
// that class, once it is known.
#pragma once

#include "python/src/refs.h"

#include <memory>
#include <new>
#include <string>
#include <utility>

namespace zbr::python {

template <class Data>
class Holder {
 public:
  using Pointer = std::shared_ptr<const Data>;

  // A new object of the class, or of `type`.
  static Ref Make(Pointer data, PyTypeObject* type = nullptr) {
    Ref object = Ref::Own(PyType_GenericAlloc(type != nullptr ? type : made_, 0));
    new (&reinterpret_cast<Object*>(object.get())->data) Pointer(std::move(data));
    return object;
  }

  static const Pointer& Of(PyObject* self) { return reinterpret_cast<Object*>(self)->data; }
  static bool Is(PyObject* object) { return Py_TYPE(object) == made_ || PyObject_TypeCheck(object, base_) != 0; }
  // Throws unless it is one; `name` is the argument's, `advice` says what is needed.
  static const Pointer& Of(PyObject* object, const char* name, const char* advice) {
    if (!Is(object)) throw BadType(name, advice);
    return Of(object);
  }

  static void Delete(PyObject* self) {
    Of(self).~Pointer();
    FreeObject(self);
  }

  // `name` is that of the type in the module. The slots are without tp_dealloc, and the last one is empty.
  template <std::size_t N>
  static void AddType(PyObject* module, const char* name, const char* qualified, const PyType_Slot (&slots)[N]) {
    PyType_Slot all[N + 1];
    all[0] = {Py_tp_dealloc, reinterpret_cast<void*>(Delete)};
    for (std::size_t i = 0; i < N; ++i) all[i + 1] = slots[i];
    PyType_Spec spec = {qualified, sizeof(Object), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, all};
    const Ref type = Ref::Own(PyType_FromSpec(&spec));
    base_ = made_ = reinterpret_cast<PyTypeObject*>(type.get());
    if (PyModule_AddObjectRef(module, name, type.get()) < 0) throw PythonError();
  }

  // The class of the package, if it is one made of this type; kept for good.
  static bool Use(PyObject* type) {
    if (PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(type), base_) == 0) return false;
    Py_INCREF(type);
    made_ = reinterpret_cast<PyTypeObject*>(type);
    return true;
  }

 private:
  struct Object {
    PyObject_HEAD Pointer data;
  };

  static inline PyTypeObject* base_ = nullptr;
  static inline PyTypeObject* made_ = nullptr;
};

}  // namespace zbr::python
