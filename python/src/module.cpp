// The module zbr._zbr, on which the package zbr stands.
#include "python/src/arrays.h"
#include "python/src/modules.h"
#include "python/src/regions.h"

namespace zbr::python {
namespace {

// The classes of the package that new objects shall be of; both made of the types here.
PyObject* UseClasses(PyObject*, PyObject* args) noexcept {
  PyObject *region = nullptr, *regions = nullptr;
  if (PyArg_ParseTuple(args, "O!O!", &PyType_Type, &region, &PyType_Type, &regions) == 0) return nullptr;
  Py_INCREF(region);  // for good
  Py_INCREF(regions);
  UseRegionClass(reinterpret_cast<PyTypeObject*>(region));
  UseRegionsClass(reinterpret_cast<PyTypeObject*>(regions));
  Py_INCREF(Py_None);
  return Py_None;
}

PyObject* NewError(PyObject* module, const char* name, const char* qualified, const char* doc, PyObject* base) {
  PyObject* const error = PyErr_NewExceptionWithDoc(qualified, doc, base, nullptr);
  if (error == nullptr || PyModule_AddObjectRef(module, name, error) < 0) throw PythonError();
  return error;
}

void Fill(PyObject* module) {
  AddArrayType(module);
  AddRegionType(module);
  AddRegionsType(module);
  AddRegionFunctions(module);
  AddFileFunctions(module);
  TheErrors().failure =
      NewError(module, "Failure", "zbr.Failure",
               "A file or a model that cannot be taken; `file`, `line` and `cause` say where and why.", PyExc_ValueError);
  TheErrors().cancelled =
      NewError(module, "Cancelled", "zbr.Cancelled", "The progress function answered False.", PyExc_RuntimeError);
  if (PyModule_AddStringConstant(module, "__version__", ZBR_VERSION) < 0) throw PythonError();
}

}  // namespace
}  // namespace zbr::python

PyMODINIT_FUNC PyInit__zbr() {
  using zbr::python::Ref;
  static PyMethodDef functions[] = {
      {"_use_classes", zbr::python::UseClasses, METH_VARARGS, nullptr},
      {nullptr, nullptr, 0, nullptr},
  };
  static PyModuleDef definition = {PyModuleDef_HEAD_INIT, "zbr._zbr", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr};
  return zbr::python::Guarded([] {
    Ref module = Ref::Own(PyModule_Create(&definition));
    zbr::python::Fill(module.get());
    return module;
  });
}
