// What the parts of the module add to it, and the little that they share.
#pragma once

#include "python/src/refs.h"

#include <string>

namespace zbr::python {

void AddFileFunctions(PyObject* module);
void AddArrowFunctions(PyObject* module);

// The code of a unit by its name.
long UnitCodeOf(const std::string& name);

// A copy of a buffer of bytes; `name` is the argument's.
std::string BytesOf(PyObject* object, const char* name);

// A path, as text, bytes or an object of one, as the library wants it.
std::string FileName(PyObject* object);

}  // namespace zbr::python
