// Arguments of functions called with the fast protocol: positional ones, then some named ones.
#pragma once

#include "python/src/refs.h"

#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <thread>

namespace zbr::python {

// Values by their places in `names`: the first ones may be given by position, all by name. Null where not given; borrowed.
template <std::size_t N>
class Arguments {
 public:
  Arguments(const char* function, const std::array<const char*, N>& names, std::size_t positional, PyObject* const* args,
            Py_ssize_t count, PyObject* keywords)
      : names_(names) {
    CheckCount(function, static_cast<std::size_t>(count), positional);
    for (Py_ssize_t i = 0; i < count; ++i) values_[static_cast<std::size_t>(i)] = args[i];
    if (keywords == nullptr) return;
    const Py_ssize_t named = PyTuple_Size(keywords);
    for (Py_ssize_t k = 0; k < named; ++k) Set(function, PyTuple_GetItem(keywords, k), args[count + k]);
  }
  // Of a constructor: a tuple and a dictionary, or null.
  Arguments(const char* function, const std::array<const char*, N>& names, std::size_t positional, PyObject* args,
            PyObject* keywords)
      : names_(names) {
    const auto count = static_cast<std::size_t>(PyTuple_Size(args));
    CheckCount(function, count, positional);
    for (std::size_t i = 0; i < count; ++i) values_[i] = PyTuple_GetItem(args, static_cast<Py_ssize_t>(i));
    if (keywords == nullptr) return;
    PyObject *name = nullptr, *value = nullptr;
    Py_ssize_t place = 0;
    while (PyDict_Next(keywords, &place, &name, &value) != 0) Set(function, name, value);
  }

  PyObject* operator[](std::size_t i) const { return values_[i]; }
  // Null when None was given.
  PyObject* OrNull(std::size_t i) const { return values_[i] == Py_None ? nullptr : values_[i]; }
  PyObject* Needed(std::size_t i) const {
    if (values_[i] == nullptr) throw BadType(names_[i], "is missing");
    return values_[i];
  }

  bool Truth(std::size_t i, bool otherwise) const {
    if (values_[i] == nullptr) return otherwise;
    const int truth = PyObject_IsTrue(values_[i]);
    if (truth < 0) Refuse(i, "True or False");
    return truth != 0;
  }
  // A finite number, neither below `least` nor above `most`.
  double Number(std::size_t i, double otherwise, double least = -kLargest, double most = kLargest) const {
    if (values_[i] == nullptr) return otherwise;
    const double value = PyFloat_AsDouble(values_[i]);
    if (value == -1.0 && PyErr_Occurred() != nullptr) Refuse(i, "a number");
    if (!(value >= least && value <= most)) throw BadArgument(names_[i], WantedNumber(least, most) + " is needed");
    return value;
  }
  long Integer(std::size_t i, long otherwise, long least, long most) const {
    if (values_[i] == nullptr) return otherwise;
    const long value = PyLong_AsLong(values_[i]);
    if (value == -1 && PyErr_Occurred() != nullptr) {
      if (PyErr_ExceptionMatches(PyExc_OverflowError) == 0) Refuse(i, "an integer");
      DropError();
      throw BadArgument(names_[i], "is out of range");
    }
    if (value < least || value > most)
      throw BadArgument(names_[i], "a number from " + std::to_string(least) + " to " + std::to_string(most) + " is needed");
    return value;
  }
  // How many threads to use: 0 given means one for each processor.
  unsigned Threads(std::size_t i) const {
    const auto threads = static_cast<unsigned>(Integer(i, 1, 0, 1024));
    return threads != 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
  }
  std::string String(std::size_t i, const char* otherwise) const {
    if (values_[i] == nullptr) return otherwise;
    if (PyUnicode_Check(values_[i]) == 0) throw BadType(names_[i], "a string is needed");
    return Text(values_[i], names_[i]);
  }

  static std::string Text(PyObject* unicode, const char* argument) {
    PyObject* const encoded = PyUnicode_AsUTF8String(unicode);
    if (encoded == nullptr) {
      DropError();
      throw BadArgument(argument, "a text without halves of surrogate pairs is needed");
    }
    const Ref bytes = Ref::Own(encoded);
    return {PyBytes_AsString(bytes.get()), static_cast<std::size_t>(PyBytes_Size(bytes.get()))};
  }

 private:
  static constexpr double kLargest = std::numeric_limits<double>::max();

  static std::string WantedNumber(double least, double most) {
    if (most < kLargest) return "a number from " + drawing::NumberText(least) + " to " + drawing::NumberText(most);
    return least == 0.0 ? "a finite number of 0 or more" : "a finite number";
  }
  static void CheckCount(const char* function, std::size_t count, std::size_t most) {
    if (count > most)
      throw BadType(function, "takes " + std::to_string(most) + " positional arguments, not " + std::to_string(count));
  }
  void Set(const char* function, PyObject* name, PyObject* value) {
    std::size_t i = 0;
    while (i < N && PyUnicode_CompareWithASCIIString(name, names_[i]) != 0) ++i;
    if (i == N || values_[i] != nullptr)
      throw BadType(function, (i == N ? "unknown argument " : "given twice: ") + Text(name, function));
    values_[i] = value;
  }
  // Instead of what Python says, which tells the type but not the argument.
  [[noreturn]] void Refuse(std::size_t i, const char* wanted) const {
    DropError();
    throw BadType(names_[i], std::string(wanted) + " is needed");
  }

  std::array<const char*, N> names_;
  PyObject* values_[N] = {};
};

// Calls visit for each item of a list, or whatever can be gone through; `name` is the argument's.
template <class Visit>
void ForEachItem(PyObject* object, const char* name, Visit visit) {
  PyObject* const found = PyUnicode_Check(object) != 0 ? nullptr : PyObject_GetIter(object);
  if (found == nullptr) {
    DropError();
    throw BadType(name, "a list is needed");
  }
  const Ref iterator = Ref::Own(found);
  while (PyObject* const next = PyIter_Next(iterator.get())) visit(Ref::Own(next).get());
  if (PyErr_Occurred() != nullptr) throw PythonError();
}

// An entry of a method table for a function with the fast protocol.
using FastFunction = PyObject* (*)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*);
inline PyMethodDef Fast(const char* name, FastFunction function, const char* doc, int flags = 0) {
  return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(function)), METH_FASTCALL | METH_KEYWORDS | flags, doc};
}

}  // namespace zbr::python
