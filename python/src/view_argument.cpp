// Views as callers say them: names, planes, directions, an eye.
#include "python/src/drawings.h"
#include "python/src/options.h"

#include <zbr-drawing/failure.h>

#include <string_view>

namespace zbr::python {
namespace {

constexpr const char* kArgument = "view";

ZBR_PT3 Vector(PyObject* object, const std::string& name) {
  const Ref row = Ref::Own(PyTuple_Pack(1, object));
  try {
    const Doubles xyz(row.get(), name.c_str(), 3);
    if (xyz.rows() == 1) return ZBR_PT3(xyz.data()[0], xyz.data()[1], xyz.data()[2]);
  } catch (const BadArgument&) {  // which speaks of rows
  }
  throw BadArgument(name, "three numbers are needed");
}

// What a view's description says, or why it says nothing.
template <class Parse>
auto Parsed(Parse parse) -> decltype(parse()) {
  try {
    return parse();
  } catch (const drawing::Failure& failure) {
    throw BadArgument(kArgument, failure.what());
  }
}

WantedView Named(const std::string& name, bool yUp) {
  if (const auto view = drawing::NamedView(name, yUp)) return {{name, *view}};
  if (name.find('=') != std::string::npos) {
    const drawing::SectionPlane plane = Parsed([&] { return drawing::ParseSection(name, yUp); });
    return {{name, drawing::SectionView(plane, yUp), plane}};
  }
  std::string known;
  for (const std::string& one : drawing::ViewNames()) known += (known.empty() ? "" : ", ") + one;
  throw BadArgument(kArgument,
                    "one of " + known + ", a section's plane, a direction, a direction and what is up, or where the eye is");
}

double FieldOfView(PyObject* object) {
  const double degrees = PyFloat_AsDouble(object);
  if (PyErr_Occurred() != nullptr) {
    DropError();
    throw BadType(kArgument, "fov is a number of degrees");
  }
  return degrees;
}

WantedView FromEye(PyObject* mapping) {
  Eye eye;
  bool isPlaced = false;
  PyObject *key = nullptr, *value = nullptr;
  Py_ssize_t place = 0;
  while (PyDict_Next(mapping, &place, &key, &value) != 0) {
    const std::string name = PyUnicode_Check(key) != 0 ? Arguments::Text(key, kArgument) : "";
    const std::string argument = std::string(kArgument) + "[\"" + name + "\"]";
    if (name == "eye") {
      eye.place = Vector(value, argument);
      isPlaced = true;
    } else if (name == "fov") {
      eye.fieldOfView = FieldOfView(value);
    } else if (name == "at") {
      eye.at = Vector(value, argument);
    } else if (name == "up") {
      eye.up = Vector(value, argument);
    } else {
      throw BadArgument(kArgument, "of an eye there are the keys eye, at, up and fov");
    }
  }
  if (!isPlaced) throw BadArgument(kArgument, "the key eye is missing");
  return {{"eye", {}}, eye};
}

}  // namespace

drawing::NamedDirection WantedView::Of(const drawing::Model& model, bool yUp) const {
  if (!eye) return direction;
  const ZBR_PT3 at = eye->at ? *eye->at : model.Centre();
  drawing::NamedDirection seen = direction;
  seen.view = Parsed([&] {
    return drawing::LookFrom(eye->place, at, eye->up ? *eye->up : drawing::UsualUp(at - eye->place, yUp), eye->fieldOfView);
  });
  return seen;
}

WantedView ViewOf(PyObject* object, bool yUp) {
  if (object == nullptr) return Named("iso", yUp);
  if (PyUnicode_Check(object) != 0) return Named(Arguments::Text(object, kArgument), yUp);
  if (PyDict_Check(object) != 0) return FromEye(object);
  const bool isPair = PySequence_Check(object) != 0 && PySequence_Size(object) == 2;
  DropError();
  const auto vector = [&](Py_ssize_t i) { return Vector(Ref::Own(PySequence_GetItem(object, i)).get(), kArgument); };
  const ZBR_PT3 look = isPair ? vector(0) : Vector(object, kArgument);
  return {{"look", Parsed([&] { return drawing::LookAlong(look, isPair ? vector(1) : drawing::UsualUp(look, yUp)); })}};
}

}  // namespace zbr::python
