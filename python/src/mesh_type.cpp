// The type under zbr.Mesh.
#include "python/src/drawings.h"
#include "python/src/modules.h"
#include "python/src/options.h"

#include <zbr-drawing/outlines.h>
#include <zbr-drawing/survey.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <thread>
#include <utility>

namespace zbr::python {
namespace {

using Objects = Holder<MeshData>;
constexpr double kAnyCrease = 180.0;  // where no lines are drawn

const MeshPtr& DataOf(PyObject* self) {
  return Objects::Of(self);
}

drawing::Mesh MeshOf(PyObject* points, PyObject* faces) {
  const Doubles xyz(points, "points", 3);
  if (xyz.rows() > drawing::kMostMeshPoints) throw BadArgument("points", "too many");
  drawing::Mesh mesh;
  mesh.points.reserve(xyz.rows());
  for (std::size_t i = 0; i < xyz.rows(); ++i) {
    const double* const p = xyz.data() + 3 * i;
    mesh.points.emplace_back(p[0], p[1], p[2]);
    if (!drawing::IsMeshCoordinate(mesh.points.back()))
      throw BadArgument("points", "point " + std::to_string(i) + " is not finite, or beyond 1e75");
  }
  const std::int64_t last = static_cast<std::int64_t>(xyz.rows()) - 1;
  const std::vector<std::int32_t> corners = ReadIntegers(faces, "faces", 3, 0, last);
  mesh.triangles.resize(corners.size() / 3);
  for (std::size_t i = 0; i < corners.size(); ++i) mesh.triangles[i / 3][i % 3] = static_cast<std::uint32_t>(corners[i]);
  return mesh;
}

// `file` is what people know it by; the other name is for titles and layers.
std::shared_ptr<MeshData> Named(drawing::Mesh mesh, const std::string& file, const std::string& name) {
  auto data = std::make_shared<MeshData>();
  data->mesh = std::move(mesh);
  data->name = name;
  data->sources.push_back({file, name, {}, 0});
  return data;
}

PyObject* New(PyTypeObject* type, PyObject* args, PyObject* keywords) noexcept {
  return Guarded([&] {
    static const char* names[] = {"points", "faces", "y_up", "name", nullptr};
    PyObject *points = nullptr, *faces = nullptr;
    int yUp = 0;
    const char* name = "mesh";
    if (PyArg_ParseTupleAndKeywords(args, keywords, "OO|$ps:Mesh", const_cast<char**>(names), &points, &faces, &yUp, &name) == 0)
      throw PythonError();
    drawing::Mesh mesh = MeshOf(points, faces);
    mesh.yUp = yUp != 0;
    return Objects::Make(Named(std::move(mesh), name, name), type);
  });
}

PyObject* Points(PyObject* self, void*) noexcept {
  static_assert(sizeof(ZBR_PT3) == 3 * sizeof(double));
  return Guarded([&] {
    const auto& points = DataOf(self)->mesh.points;
    return MakeArray(DataOf(self), reinterpret_cast<const double*>(points.data()), {points.size(), 3});
  });
}

PyObject* Faces(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const auto& triangles = DataOf(self)->mesh.triangles;
    return MakeArray(DataOf(self), reinterpret_cast<const std::int32_t*>(triangles.data()), {triangles.size(), 3});
  });
}

PyObject* Name(PyObject* self, void*) noexcept {
  const std::string& name = DataOf(self)->name;
  return PyUnicode_DecodeUTF8(name.data(), static_cast<Py_ssize_t>(name.size()), "replace");
}

PyObject* YUp(PyObject* self, void*) noexcept {
  return PyBool_FromLong(DataOf(self)->mesh.yUp ? 1 : 0);
}

Py_ssize_t Length(PyObject* self) noexcept {
  return static_cast<Py_ssize_t>(DataOf(self)->mesh.triangles.size());
}

PyObject* Read(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments<4> given("read_mesh", {"file", "data", "format", "progress"}, 2, args, count, keywords);
    const Ref path = Ref::Own(PyOS_FSPath(given.Needed(0)));
    const std::string file = FileName(path.get());
    const std::string format = given.OrNull(2) == nullptr ? "" : given.String(2, "");
    const bool isFromMemory = given.OrNull(1) != nullptr;
    std::string bytes = isFromMemory ? BytesOf(given[1], "data") : std::string();
    return Objects::Make(Run(kSmallCall, given[3], [=, bytes = std::move(bytes)](Monitor&) mutable -> MeshPtr {
      return Named(isFromMemory ? formats::ParseMesh(format, std::move(bytes), file) : formats::ReadMesh(file, format),
                   formats::BaseName(file), formats::StemOf(file));
    }));
  });
}

// Several meshes as one, each an object of its own; names for layers and messages are made different.
PyObject* Join(PyObject*, PyObject* meshes) noexcept {
  return Guarded([&] {
    std::vector<MeshPtr> parts;
    const Ref iterator = Ref::Own(PyObject_GetIter(meshes));
    while (PyObject* const next = PyIter_Next(iterator.get())) {
      const Ref item = Ref::Own(next);
      parts.push_back(Objects::Of(item.get(), "meshes", "a list of Mesh is needed"));
    }
    if (PyErr_Occurred() != nullptr) throw PythonError();
    return Objects::Make(Run(kSmallCall, nullptr, [parts](Monitor&) -> MeshPtr {
      drawing::Objects objects;
      for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto same = [&](const MeshPtr& o) { return o->name == parts[i]->name; };
        const bool isTaken = std::any_of(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(i), same);
        std::string id = parts[i]->name;
        if (isTaken) id.append(1, '-').append(std::to_string(i + 1));
        drawing::Mesh mesh = parts[i]->mesh;
        mesh.objects.clear();
        drawing::AddObject(objects, std::move(mesh), {parts[i]->name, id, {}, 0});
      }
      const auto joined = std::make_shared<MeshData>();
      joined->mesh = std::move(objects.mesh);
      joined->sources = std::move(objects.sources);
      joined->name = "assembly";
      return joined;
    }));
  });
}

// A view that is no section.
drawing::NamedDirection WholeView(PyObject* object, bool yUp) {
  drawing::NamedDirection view = ViewOf(object, yUp);
  if (view.section) throw BadArgument("view", "sections can only be drawn");
  return view;
}

// The outlines of all objects, in the model's coordinates.
PyObject* Outline(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments<4> given("outline", {"view", "weld", "threads", "progress"}, 1, args, count, keywords);
    const MeshPtr mesh = DataOf(self);
    const drawing::NamedDirection view = WholeView(given[0], mesh->mesh.yUp);
    const double weld = given.Number(1, 0.0, 0.0);
    const unsigned threads = given.Threads(2);
    return NewRegion(Run(kSmallCall, given[3], [mesh, view, weld, threads](Monitor& monitor) -> RegionPtr {
      const ModelPtr model = mesh->ModelFor(kAnyCrease, weld);
      monitor.TellOrThrow(0.3);
      drawing::Scene scene = drawing::MakeScene(*model, view.view);
      monitor.TellOrThrow(0.5);
      drawing::FindOutlines(*model, scene, false, threads != 0 ? threads : std::max(1U, std::thread::hardware_concurrency()));
      std::vector<ZBR_REGION> parts;
      for (const drawing::LoopList& loops : drawing::OutlinesInPlace(*model, scene)) parts.push_back(zbrRegionOfLoops(loops));
      const auto result = std::make_shared<RegionData>();
      result->region = parts.size() == 1 ? std::move(parts.front()) : zbrUniteRegions(parts);
      return result;
    }));
  });
}

PyObject* Pick(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments<4> given("pick", {"points", "view", "weld", "progress"}, 2, args, count, keywords);
    const MeshPtr mesh = DataOf(self);
    const drawing::NamedDirection view = WholeView(given[1], mesh->mesh.yUp);
    const double weld = given.Number(2, 0.0, 0.0);
    given.Needed(0);
    const auto picker = Run(kSmallCall, nullptr, [mesh, view, weld](Monitor&) {
      return std::make_shared<const Picker>(mesh->ModelFor(kAnyCrease, weld), view.view);
    });
    return PickAll(picker, given[0], ZBR_PT(0, 0), given[3]);
  });
}

// (shells, closed ones, borders, junctions, turned, pinches, inward, flat, repeated)
PyObject* Survey(PyObject* self, PyObject*) noexcept {
  return Guarded([&] {
    const MeshPtr mesh = DataOf(self);
    const drawing::Survey s =
        Run(kSmallCall, nullptr, [mesh](Monitor&) { return drawing::MakeSurvey(*mesh->ModelFor(kAnyCrease, 0.0)); });
    const auto closed =
        std::count_if(s.shells.begin(), s.shells.end(), [](const drawing::ShellSurvey& shell) { return shell.isClosed; });
    return Ref::Own(Py_BuildValue("(nnnnnnnnn)", static_cast<Py_ssize_t>(s.shells.size()), static_cast<Py_ssize_t>(closed),
                                  static_cast<Py_ssize_t>(s.borders), static_cast<Py_ssize_t>(s.junctions),
                                  static_cast<Py_ssize_t>(s.turned), static_cast<Py_ssize_t>(s.pinches),
                                  static_cast<Py_ssize_t>(s.inward), static_cast<Py_ssize_t>(s.flat),
                                  static_cast<Py_ssize_t>(s.repeated)));
  });
}

std::array<double, 3> Vector(PyObject* object, const char* name) {
  const Ref row = Ref::Own(PyTuple_Pack(1, object));
  const Doubles xyz(row.get(), name, 3);
  if (xyz.rows() != 1) throw BadArgument(name, "three numbers are needed");
  return {xyz.data()[0], xyz.data()[1], xyz.data()[2]};
}

// What a view's description says, or why it says nothing.
template <class Parse>
auto Parsed(Parse parse) -> decltype(parse()) {
  try {
    return parse();
  } catch (const drawing::Failure& failure) {
    throw BadArgument("view", failure.what());
  }
}

}  // namespace

ModelPtr MeshData::ModelFor(double crease, double weld) const {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (!kept_.model || kept_.crease != crease || kept_.weld != weld) {
    if (mesh.triangles.empty()) throw BadArgument("faces", "there are none");
    kept_ = {crease, weld, std::make_shared<const drawing::Model>(drawing::MakeModel(mesh, crease, weld))};
  }
  return kept_.model;
}

drawing::NamedDirection ViewOf(PyObject* object, bool yUp) {
  if (object == nullptr) return {"iso", *drawing::NamedView("iso", yUp)};
  if (PyUnicode_Check(object) != 0) {
    const std::string name = Arguments<1>::Text(object);
    if (const auto view = drawing::NamedView(name, yUp)) return {name, *view};
    if (name.find('=') != std::string::npos) {
      const drawing::SectionPlane plane = Parsed([&] { return drawing::ParseSection(name, yUp); });
      return {name, drawing::SectionView(plane, yUp), plane};
    }
    std::string known;
    for (const std::string& one : drawing::ViewNames()) known += (known.empty() ? "" : ", ") + one;
    throw BadArgument("view", "one of " + known + ", a direction, or a direction and what is up is needed");
  }
  const bool isPair = PySequence_Check(object) != 0 && PySequence_Size(object) == 2;
  PyErr_Clear();
  const auto vectorOf = [](PyObject* from) {
    const std::array<double, 3> v = Vector(from, "view");
    return ZBR_PT3(v[0], v[1], v[2]);
  };
  const auto vector = [&](Py_ssize_t i) { return vectorOf(Ref::Own(PySequence_GetItem(object, i)).get()); };
  const ZBR_PT3 look = isPair ? vector(0) : vectorOf(object);
  return {"look", Parsed([&] { return drawing::LookAlong(look, isPair ? vector(1) : drawing::UsualUp(look, yUp)); })};
}

void AddMeshType(PyObject* module) {
  static PyGetSetDef properties[] = {
      {"points", Points, nullptr, "(v, 3) float64. A view; read-only.", nullptr},
      {"faces", Faces, nullptr, "(f, 3) int32: places of points. A view; read-only.", nullptr},
      {"name", Name, nullptr, "What titles call it.", nullptr},
      {"y_up", YUp, nullptr, "Whether y points up, else z.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  static PyMethodDef methods[] = {
      Fast("outline", Outline,
           "outline($self, /, view=\"iso\", *, weld=0.0, threads=1, progress=None)\n--\n\n"
           "What the mesh covers in a view, a Region in the axes of the view and from the origin of the model."),
      Fast("pick", Pick, nullptr),
      Fast("_draw", DrawMesh, nullptr),
      {"_survey", Survey, METH_NOARGS, nullptr},
      {"join", Join, METH_O | METH_STATIC,
       "join(meshes, /)\n--\n\nOne mesh of several, each an object of its own, never welded to others."},
      {nullptr, nullptr, 0, nullptr},
  };
  static const PyType_Slot slots[] = {
      {Py_tp_new, reinterpret_cast<void*>(New)},
      {Py_tp_getset, properties},
      {Py_tp_methods, methods},
      {Py_mp_length, reinterpret_cast<void*>(Length)},
      {0, nullptr},
  };
  Objects::AddType(module, "Mesh", "zbr._zbr.Mesh", slots);
  static PyMethodDef functions[] = {Fast("read_mesh", Read, nullptr), {nullptr, nullptr, 0, nullptr}};
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
}

}  // namespace zbr::python
