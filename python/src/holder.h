// Python objects that share an immutable C++ object.
//
// Each kind has a type here and a class in the package made of it, which adds what is easier said in Python; new objects are of
// that class, once it is known.
#pragma once

#include "python/src/refs.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace zbr::python {

template <class Data>
class Holder {
 public:
  using Pointer = std::shared_ptr<const Data>;
  static constexpr bool kIsShown = requires(const Data& data) { data.shown; };

  // A new object of the class, or of `type`.
  static Ref Make(Pointer data, PyTypeObject* type = nullptr) {
    Ref object = Ref::Own(PyType_GenericAlloc(type != nullptr ? type : made_, 0));
    if constexpr (kIsShown) data->shown = object.get();
    new (&reinterpret_cast<Object*>(object.get())->data) Pointer(std::move(data));
    return object;
  }

  // The object that was made last, unless it is gone: for data with a member `shown`, which tells.
  static Ref Show(const Pointer& data) {
    const bool isAlive = data->shown != nullptr && Py_REFCNT(data->shown) > 0;
    return isAlive ? Ref::Share(data->shown) : Make(data);
  }

  static const Pointer& Of(PyObject* self) { return reinterpret_cast<Object*>(self)->data; }
  static bool Is(PyObject* object) { return Py_TYPE(object) == made_ || PyObject_TypeCheck(object, base_) != 0; }
  // Throws unless it is one; `name` is the argument's, `advice` says what is needed.
  static const Pointer& Of(PyObject* object, const char* name, const char* advice) {
    if (!Is(object)) throw BadType(name, advice);
    return Of(object);
  }

  static void Delete(PyObject* self) {
    if constexpr (kIsShown) {
      if (Of(self)->shown == self) Of(self)->shown = nullptr;
    }
    Of(self).~Pointer();
    FreeObject(self);
  }

  // `name` is that of the type in the module, which is kept for good. The slots are without tp_dealloc, and the last one is empty.
  // Without tp_new there are only objects that functions of the module made: what object.__new__ makes would hold nothing.
  template <std::size_t N>
  static void AddType(PyObject* module, const char* name, const char* qualified, const PyType_Slot (&slots)[N]) {
    const bool isMade = std::any_of(slots, slots + N, [](const PyType_Slot& slot) { return slot.slot == Py_tp_new; });
    PyType_Slot all[N + 2];
    std::size_t count = 0;
    all[count++] = {Py_tp_dealloc, reinterpret_cast<void*>(Delete)};
    if (!isMade) all[count++] = {Py_tp_new, reinterpret_cast<void*>(Refuse)};
    std::copy(slots, slots + N, all + count);
    PyType_Spec spec = {qualified, sizeof(Object), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, all};
    PyObject* const type = Ref::Own(PyType_FromSpec(&spec)).release();
    base_ = made_ = reinterpret_cast<PyTypeObject*>(type);
    if (PyModule_AddObjectRef(module, name, type) < 0) throw PythonError();
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

  static PyObject* Refuse(PyTypeObject* type, PyObject*, PyObject*) noexcept {
    return Guarded([type] {
      const Ref name = Ref::Own(PyType_GetName(type));
      PyErr_Format(PyExc_TypeError, "%S: made by functions, as draw() and sheet() are, not by its name", name.get());
      return Ref::Own(nullptr);
    });
  }

  static inline PyTypeObject* base_ = nullptr;
  static inline PyTypeObject* made_ = nullptr;
};

}  // namespace zbr::python
