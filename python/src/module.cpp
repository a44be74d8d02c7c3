// The module zbr._zbr, on which the package zbr stands.
#include "python/src/arrays.h"
#include "python/src/calls.h"
#include "python/src/drawings.h"
#include "python/src/modules.h"
#include "python/src/regions.h"

#include <new>

namespace zbr::python {
namespace {

// Tells which class of the package stands for which type.
PyObject* UseClass(PyObject*, PyObject* type) noexcept {
  return Guarded([&] {
    const bool isKnown =
        PyType_Check(type) != 0 && (Holder<RegionData>::Use(type) || Holder<RegionList>::Use(type) || Holder<MeshData>::Use(type) ||
                                    Holder<DrawingData>::Use(type) || Holder<SheetData>::Use(type));
    if (!isKnown) throw BadType("type", "a class made of a type of this module is needed");
    return Ref::Share(type);
  });
}

PyObject* NewError(PyObject* module, const char* name, const char* qualified, const char* doc, PyObject* base) {
  PyObject* const error = PyErr_NewExceptionWithDoc(qualified, doc, base, nullptr);
  if (error == nullptr || PyModule_AddObjectRef(module, name, error) < 0) throw PythonError();
  return error;
}

void Fill(PyObject* module) {
  if (Py_AtExit(EndCalls) != 0) throw std::bad_alloc();  // no room in Python's list of what to do then
  AddArrayType(module);
  AddRegionType(module);
  AddRegionsType(module);
  AddRegionFunctions(module);
  AddMeshType(module);
  AddDrawingType(module);
  AddSheetType(module);
  AddFileFunctions(module);
  AddArrowFunctions(module);
  TheErrors().failure =
      NewError(module, "Failure", "zbr.Failure",
               "A file or a model that cannot be taken; `file`, `line` and `cause` say where and why.", PyExc_ValueError);
  TheErrors().unknownFormat = NewError(module, "UnknownFormat", "zbr.UnknownFormat",
                                       "Neither the name of a file nor format= tells what it is.", TheErrors().failure);
  TheErrors().cancelled =
      NewError(module, "Cancelled", "zbr.Cancelled", "The progress function answered False.", PyExc_RuntimeError);
  if (PyModule_AddStringConstant(module, "__version__", ZBR_VERSION) < 0) throw PythonError();
}

}  // namespace
}  // namespace zbr::python

PyMODINIT_FUNC PyInit__zbr() {
  using zbr::python::Ref;
  static PyMethodDef functions[] = {
      {"use_class", zbr::python::UseClass, METH_O, nullptr},
      {nullptr, nullptr, 0, nullptr},
  };
  static PyModuleDef definition = {PyModuleDef_HEAD_INIT, "zbr._zbr", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr};
  return zbr::python::Guarded([] {
    Ref module = Ref::Own(PyModule_Create(&definition));
    zbr::python::Fill(module.get());
    return module;
  });
}
