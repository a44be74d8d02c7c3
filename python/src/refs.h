// Owned references, the global lock and errors: what keeps the rest of the module free of Py_DECREF and of goto.
//
// The module uses the limited interface of CPython and the buffer protocol only, nothing of NumPy's: one binary serves every
// CPython from 3.11 on and every NumPy.
#pragma once

#ifndef Py_LIMITED_API
#define Py_LIMITED_API 0x030B0000
#endif
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <exception>
#include <string>
#include <utility>

namespace zbr::python {

// Thrown when Python's own error indicator says what went wrong.
struct PythonError {};

// Thrown for an argument that cannot be taken; becomes a ValueError.
class BadArgument : public std::exception {
 public:
  BadArgument(const std::string& argument, const std::string& cause) : text_(argument + ": " + cause) {}
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// Likewise, for an argument of a wrong type; becomes a TypeError.
class BadType : public BadArgument {
 public:
  using BadArgument::BadArgument;
};

// An owned reference, or none.
class Ref {
 public:
  Ref() = default;
  // Takes over a new reference; throws when there is none, as Python's functions return null after an error.
  static Ref Own(PyObject* object) {
    if (object == nullptr) throw PythonError();
    return Ref(object);
  }
  static Ref Share(PyObject* object) {
    Py_XINCREF(object);
    return Ref(object);
  }
  Ref(const Ref& o) : object_(o.object_) { Py_XINCREF(object_); }
  Ref(Ref&& o) noexcept : object_(std::exchange(o.object_, nullptr)) {}
  Ref& operator=(Ref o) noexcept {
    std::swap(object_, o.object_);
    return *this;
  }
  ~Ref() { Py_XDECREF(object_); }

  PyObject* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  PyObject* release() { return std::exchange(object_, nullptr); }

 private:
  explicit Ref(PyObject* object) : object_(object) {}

  PyObject* object_ = nullptr;
};

// Lets other threads run Python for as long as it lives.
class WithoutGil {
 public:
  WithoutGil() : state_(PyEval_SaveThread()) {}
  ~WithoutGil() { PyEval_RestoreThread(state_); }
  WithoutGil(const WithoutGil&) = delete;
  WithoutGil& operator=(const WithoutGil&) = delete;

 private:
  PyThreadState* state_;
};

// Sets Python's error indicator by the exception being handled.
void TranslateException() noexcept;

// Forgets an error of Python's, for one that says more; but what is no fault of an argument (an interrupt, lack of memory) leaves.
inline void DropError() {
  if (PyErr_Occurred() == nullptr) return;
  if (PyErr_ExceptionMatches(PyExc_Exception) == 0 || PyErr_ExceptionMatches(PyExc_MemoryError) != 0) throw PythonError();
  PyErr_Clear();
}

// The border to Python: `work` returns a Ref, or throws.
template <class Work>
PyObject* Guarded(Work work) noexcept {
  try {
    return work().release();
  } catch (...) {
    TranslateException();
    return nullptr;
  }
}

// The same for slots that answer by a number, -1 being an error.
template <class Number, class Work>
Number GuardedNumber(Work work) noexcept {
  try {
    return static_cast<Number>(work());
  } catch (...) {
    TranslateException();
    return static_cast<Number>(-1);
  }
}

// The end of a dealloc slot. Classes that Python code derives from a type are collected, and freed another way.
inline void FreeObject(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(self);
  Py_DECREF(type);
}

inline Ref None() {
  return Ref::Share(Py_None);
}

// Exceptions of the module, set when it is made.
struct Errors {
  PyObject* failure = nullptr;        // zbr.Failure: a file or a model that cannot be read
  PyObject* unknownFormat = nullptr;  // zbr.UnknownFormat: neither the name nor the caller tells the format
  PyObject* cancelled = nullptr;      // zbr.Cancelled: progress() answered False
};
Errors& TheErrors();

}  // namespace zbr::python
