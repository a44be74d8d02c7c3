// From C++ exceptions to Python's.
#include "python/src/refs.h"

#include <zbr-drawing/failure.h>

#include <new>
#include <stdexcept>

namespace zbr::python {
namespace {

// Sets file, line and cause as attributes, as far as they are known.
void SetFailure(const drawing::Failure& failure) {
  const Ref error = Ref::Own(PyObject_CallFunction(TheErrors().failure, "s", failure.what()));
  const Ref file = failure.File().empty() ? None() : Ref::Own(PyUnicode_DecodeFSDefault(failure.File().c_str()));
  const Ref line = failure.Line() == 0 ? None() : Ref::Own(PyLong_FromSize_t(failure.Line()));
  const Ref cause =
      Ref::Own(PyUnicode_DecodeUTF8(failure.Cause().data(), static_cast<Py_ssize_t>(failure.Cause().size()), "replace"));
  if (PyObject_SetAttrString(error.get(), "file", file.get()) < 0 || PyObject_SetAttrString(error.get(), "line", line.get()) < 0 ||
      PyObject_SetAttrString(error.get(), "cause", cause.get()) < 0) {
    throw PythonError();
  }
  PyErr_SetObject(TheErrors().failure, error.get());
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
      SetFailure(e);
    } catch (const PythonError&) {  // no memory for the message, most likely
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
