#include "python/src/options.h"

#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <thread>

namespace zbr::python {
namespace {

std::string WantedNumber(double least, double most) {
  if (most < std::numeric_limits<double>::max())
    return "a number from " + drawing::NumberText(least) + " to " + drawing::NumberText(most);
  return least == 0.0 ? "a finite number of 0 or more" : "a finite number";
}

}  // namespace

Arguments::Arguments(const char* function, const Names& names, std::size_t positional, PyObject* const* args, Py_ssize_t count,
                     PyObject* keywords)
    : names_(names) {
  CheckCount(function, static_cast<std::size_t>(count), positional);
  for (Py_ssize_t i = 0; i < count; ++i) values_[static_cast<std::size_t>(i)] = args[i];
  if (keywords == nullptr) return;
  const Py_ssize_t named = PyTuple_Size(keywords);
  for (Py_ssize_t k = 0; k < named; ++k) Set(function, PyTuple_GetItem(keywords, k), args[count + k]);
}

Arguments::Arguments(const char* function, const Names& names, std::size_t positional, PyObject* args, PyObject* keywords)
    : names_(names) {
  const auto count = static_cast<std::size_t>(PyTuple_Size(args));
  CheckCount(function, count, positional);
  for (std::size_t i = 0; i < count; ++i) values_[i] = PyTuple_GetItem(args, static_cast<Py_ssize_t>(i));
  if (keywords == nullptr) return;
  PyObject *name = nullptr, *value = nullptr;
  Py_ssize_t place = 0;
  while (PyDict_Next(keywords, &place, &name, &value) != 0) Set(function, name, value);
}

PyObject* Arguments::Needed(std::size_t i) const {
  if (values_[i] == nullptr) throw BadType(names_.list[i], "is missing");
  return values_[i];
}

bool Arguments::Truth(std::size_t i, bool otherwise) const {
  if (values_[i] == nullptr) return otherwise;
  const int truth = PyObject_IsTrue(values_[i]);
  if (truth < 0) Refuse(i, "True or False");
  return truth != 0;
}

double Arguments::Number(std::size_t i, double otherwise, double least, double most) const {
  if (values_[i] == nullptr) return otherwise;
  const double value = PyFloat_AsDouble(values_[i]);
  if (value == -1.0 && PyErr_Occurred() != nullptr) Refuse(i, "a number");
  if (!(value >= least && value <= most)) throw BadArgument(names_.list[i], WantedNumber(least, most) + " is needed");
  return value;
}

long Arguments::Integer(std::size_t i, long otherwise, long least, long most) const {
  if (values_[i] == nullptr) return otherwise;
  const long value = PyLong_AsLong(values_[i]);
  if (value == -1 && PyErr_Occurred() != nullptr) {
    if (PyErr_ExceptionMatches(PyExc_OverflowError) == 0) Refuse(i, "an integer");
    DropError();
    throw BadArgument(names_.list[i], "is out of range");
  }
  if (value < least || value > most)
    throw BadArgument(names_.list[i], "a number from " + std::to_string(least) + " to " + std::to_string(most) + " is needed");
  return value;
}

unsigned Arguments::Threads(std::size_t i) const {
  const auto threads = static_cast<unsigned>(Integer(i, 1, 0, 1024));
  return threads != 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
}

std::string Arguments::String(std::size_t i, const char* otherwise) const {
  if (values_[i] == nullptr) return otherwise;
  if (PyUnicode_Check(values_[i]) == 0) throw BadType(names_.list[i], "a string is needed");
  return Text(values_[i], names_.list[i]);
}

std::size_t Arguments::Choice(std::size_t i, std::size_t otherwise, Words words) const {
  if (OrNull(i) == nullptr) return otherwise;
  const std::string word = String(i, "");
  std::string known;
  for (const auto* one = words.begin(); one != words.end(); ++one) {
    if (word == *one) return static_cast<std::size_t>(one - words.begin());
    if (one != words.begin()) known += one + 1 == words.end() ? " and " : ", ";
    known += *one;
  }
  throw BadArgument(names_.list[i], "one of " + known + " is needed");
}

std::string Arguments::Text(PyObject* unicode, const char* argument) {
  PyObject* const encoded = PyUnicode_AsUTF8String(unicode);
  if (encoded == nullptr) {
    DropError();
    throw BadArgument(argument, "a text without halves of surrogate pairs is needed");
  }
  const Ref bytes = Ref::Own(encoded);
  return {PyBytes_AsString(bytes.get()), static_cast<std::size_t>(PyBytes_Size(bytes.get()))};
}

void Arguments::CheckCount(const char* function, std::size_t count, std::size_t most) const {
  if (count > most)
    throw BadType(function, "takes " + std::to_string(most) + " positional arguments, not " + std::to_string(count));
}

void Arguments::Set(const char* function, PyObject* name, PyObject* value) {
  std::size_t i = 0;
  while (i < names_.size && PyUnicode_CompareWithASCIIString(name, names_.list[i]) != 0) ++i;
  if (i == names_.size || values_[i] != nullptr)
    throw BadType(function, (i == names_.size ? "unknown argument " : "given twice: ") + Text(name, function));
  values_[i] = value;
}

void Arguments::Refuse(std::size_t i, const char* wanted) const {
  DropError();
  throw BadType(names_.list[i], std::string(wanted) + " is needed");
}

}  // namespace zbr::python
