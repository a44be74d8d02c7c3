// Arguments of functions called with the fast protocol: positional ones, then some named ones.
#pragma once

#include "python/src/refs.h"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <string>

namespace zbr::python {

// Values by their places in the names: the first ones may be given by position, all by name. Null where not given; borrowed. Names
// are literals: they are kept as pointers.
class Arguments {
 public:
  using Words = std::initializer_list<const char*>;

  static constexpr std::size_t kMost = 16;
  // At most as many as there is room for.
  struct Names {
    template <class... Name>
    requires(sizeof...(Name) <= kMost) Names(Name... names) : list{names...}, size(sizeof...(names)) {}

    std::array<const char*, kMost> list;
    std::size_t size;
  };

  Arguments(const char* function, const Names& names, std::size_t positional, PyObject* const* args, Py_ssize_t count,
            PyObject* keywords);
  // Of a constructor: a tuple and a dictionary, or null.
  Arguments(const char* function, const Names& names, std::size_t positional, PyObject* args, PyObject* keywords);

  PyObject* operator[](std::size_t i) const { return values_[i]; }
  // Null when None was given.
  PyObject* OrNull(std::size_t i) const { return values_[i] == Py_None ? nullptr : values_[i]; }
  PyObject* Needed(std::size_t i) const;

  bool Truth(std::size_t i, bool otherwise) const;
  // A finite number, neither below `least` nor above `most`.
  double Number(std::size_t i, double otherwise, double least = -kLargest, double most = kLargest) const;
  long Integer(std::size_t i, long otherwise, long least, long most) const;
  // How many threads to use: 0 given means one for each processor.
  unsigned Threads(std::size_t i) const;
  std::string String(std::size_t i, const char* otherwise) const;
  // One of several words, by its place; `otherwise` where none is given, or None.
  std::size_t Choice(std::size_t i, std::size_t otherwise, Words words) const;

  static std::string Text(PyObject* unicode, const char* argument);

 private:
  static constexpr double kLargest = std::numeric_limits<double>::max();

  void CheckCount(const char* function, std::size_t count, std::size_t most) const;
  void Set(const char* function, PyObject* name, PyObject* value);
  // Instead of what Python says, which tells the type but not the argument.
  [[noreturn]] void Refuse(std::size_t i, const char* wanted) const;

  Names names_;
  std::array<PyObject*, kMost> values_{};
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
