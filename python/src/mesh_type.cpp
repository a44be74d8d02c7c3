// The type under zbr.Mesh.
#include "python/src/drawings.h"
#include "python/src/modules.h"
#include "python/src/options.h"

#include <zbr-drawing/outlines.h>
#include <zbr-drawing/survey.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <limits>
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

std::vector<std::uint32_t> ShellNumbers(PyObject* shells, std::size_t triangles) {
  const std::vector<std::int32_t> numbers = ReadIntegers(shells, "shells", 0, 0, std::numeric_limits<std::int32_t>::max());
  if (numbers.size() != triangles)
    throw BadArgument(
        "shells", "a number for each of " + std::to_string(triangles) + " faces is needed, not " + std::to_string(numbers.size()));
  return {numbers.begin(), numbers.end()};
}

PyObject* New(PyTypeObject* type, PyObject* args, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("Mesh", {"points", "faces", "y_up", "name", "shells"}, 2, args, keywords);
    const std::string name = given.String(3, "mesh");
    const bool yUp = given.Truth(2, false);
    drawing::Mesh mesh = MeshOf(given.Needed(0), given.Needed(1));
    mesh.yUp = yUp;
    if (PyObject* const shells = given.OrNull(4)) mesh.shells = ShellNumbers(shells, mesh.triangles.size());
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

PyObject* Shells(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const auto& shells = DataOf(self)->mesh.shells;
    if (shells.empty()) return Ref::Share(Py_None);
    return MakeArray(DataOf(self), reinterpret_cast<const std::int32_t*>(shells.data()), {shells.size()});
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
    const Arguments given("read_mesh", {"file", "data", "format", "progress"}, 2, args, count, keywords);
    const std::string file = FileName(given.Needed(0));
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
    ForEachItem(meshes, "meshes",
                [&parts](PyObject* item) { parts.push_back(Objects::Of(item, "meshes", "a list of Mesh is needed")); });
    return Objects::Make(Run(kSmallCall, nullptr, [parts](Monitor&) -> MeshPtr {
      drawing::Objects objects;
      for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto same = [&](const MeshPtr& o) { return o->name == parts[i]->name; };
        const bool isTaken = std::any_of(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(i), same);
        std::string id = parts[i]->name;
        if (isTaken) id.append(1, '-').append(std::to_string(i + 1));
        drawing::AddObject(objects, parts[i]->mesh, {parts[i]->name, id, {}, 0});
      }
      const auto joined = std::make_shared<MeshData>();
      joined->mesh = std::move(objects.mesh);
      joined->sources = std::move(objects.sources);
      joined->name = "assembly";
      return joined;
    }));
  });
}

// A parallel view of the whole.
drawing::View WholeView(PyObject* object, bool yUp) {
  const WantedView view = ViewOf(object, yUp);
  if (view.direction.section || view.eye) throw BadArgument("view", "sections and perspectives can only be drawn");
  return view.direction.view;
}

// Makes the model that a function for outlines asks for, and gives what find(model, view, threads) does. Coordinates are the
// model's.
template <class Find>
auto OutlinesBy(const char* function, PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords, Find find) {
  const Arguments given(function, {"view", "weld", "threads", "progress"}, 1, args, count, keywords);
  const MeshPtr mesh = DataOf(self);
  const drawing::View view = WholeView(given[0], mesh->mesh.yUp);
  const double weld = given.Number(1, 0.0, 0.0, kMostWeld);
  const unsigned threads = given.Threads(2);
  return Run(kSmallCall, given[3], [mesh, view, weld, threads, find](Monitor& monitor) {
    const ModelPtr model = mesh->ModelFor(kAnyCrease, weld);
    monitor.TellOrThrow(0.3);
    return find(*model, view, threads);
  });
}

// Of all objects.
PyObject* Outline(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const auto find = [](const drawing::Model& model, const drawing::View& view, unsigned threads) -> RegionPtr {
      std::vector<ZBR_REGION> parts;
      for (const drawing::LoopList& loops : drawing::FindOutlines(model, view, false, threads))
        parts.push_back(zbrRegionOfLoops(loops));
      const auto result = std::make_shared<RegionData>();
      result->region = parts.size() == 1 ? std::move(parts.front()) : zbrUniteRegions(parts);
      return result;
    };
    return NewRegion(OutlinesBy("outline", self, args, count, keywords, find));
  });
}

// (region, offsets, shell, triangle, edge, along)
Ref TracedTuple(drawing::TracedOutline&& traced) {
  const auto data = std::make_shared<RegionData>();
  data->region = zbrRegionOfLoops(traced.loops);
  std::vector<std::int32_t> offsets(traced.offsets.begin(), traced.offsets.end()), shells, triangles, edges;
  std::vector<double> along;
  for (const drawing::OutlinePiece& piece : traced.pieces) {
    shells.push_back(static_cast<std::int32_t>(piece.shell));
    triangles.push_back(static_cast<std::int32_t>(piece.edge.triangle));
    edges.push_back(piece.edge.edge);
    along.insert(along.end(), {piece.t0, piece.t1});
  }
  const Ref region = NewRegion(data), o = MakeArray<std::int32_t>(std::move(offsets)),
            s = MakeArray<std::int32_t>(std::move(shells)), t = MakeArray<std::int32_t>(std::move(triangles)),
            e = MakeArray<std::int32_t>(std::move(edges)), a = MakeArray<double>(std::move(along), 2);
  return Ref::Own(PyTuple_Pack(6, region.get(), o.get(), s.get(), t.get(), e.get(), a.get()));
}

// By object.
PyObject* TracedOutlines(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    auto traced = OutlinesBy("traced_outlines", self, args, count, keywords, drawing::TraceOutlines);
    Ref list = Ref::Own(PyList_New(0));
    for (drawing::TracedOutline& outline : traced) {
      if (PyList_Append(list.get(), TracedTuple(std::move(outline)).get()) != 0) throw PythonError();
    }
    return list;
  });
}

PyObject* Pick(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("pick", {"points", "view", "weld", "progress"}, 2, args, count, keywords);
    const MeshPtr mesh = DataOf(self);
    const drawing::View view = WholeView(given[1], mesh->mesh.yUp);
    const double weld = given.Number(2, 0.0, 0.0, kMostWeld);
    std::vector<ZBR_PT> points = PointsOf(given.Needed(0), given[3]);
    const auto own = Run(kSmallCall, nullptr, [mesh, view, weld](Monitor&) {
      return std::make_shared<const OwnPicker>(mesh->ModelFor(kAnyCrease, weld), view);
    });
    const std::shared_ptr<const drawing::Picker> picker(own, &own->picker);
    return PickAll(picker, std::move(points), ZBR_PT(0, 0), given[3]);
  });
}

PyObject* Pack(PyObject* self, PyObject*) noexcept {
  return Guarded([&] { return PackMesh(*DataOf(self)); });
}

// (points, faces, what _pack() gave)
PyObject* Restore(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("restore_mesh", {"points", "faces", "rest"}, 3, args, count, keywords);
    return Objects::Make(UnpackMesh(MeshOf(given.Needed(0), given.Needed(1)), given.Needed(2)));
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

}  // namespace

ModelPtr MeshData::ModelFor(double crease, double weld) const {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (!kept_.model || kept_.crease != crease || kept_.weld != weld) {
    if (mesh.triangles.empty()) throw BadArgument("faces", "there are none");
    kept_ = {crease, weld, std::make_shared<const drawing::Model>(drawing::MakeModel(mesh, crease, weld))};
  }
  return kept_.model;
}

Ref ShowMesh(const MeshPtr& mesh) {
  return Objects::Show(mesh);
}

void AddMeshType(PyObject* module) {
  static PyGetSetDef properties[] = {
      {"points", Points, nullptr, "(v, 3) float64. A view; read-only.", nullptr},
      {"faces", Faces, nullptr, "(f, 3) int32: places of points. A view; read-only.", nullptr},
      {"shells", Shells, nullptr, "(f,) int32: which shell each face is of, as given, or None. A view; read-only.", nullptr},
      {"name", Name, nullptr, "What titles call it.", nullptr},
      {"y_up", YUp, nullptr, "Whether y points up, else z.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  static PyMethodDef methods[] = {
      Fast("outline", Outline,
           "outline($self, /, view=\"iso\", *, weld=0.0, threads=1, progress=None)\n--\n\n"
           "What the mesh covers in a view, a Region in the axes of the view and from the origin of the model."),
      Fast("_traced_outlines", TracedOutlines, nullptr),
      Fast("pick", Pick, nullptr),
      Fast("_draw", DrawMesh, nullptr),
      {"_survey", Survey, METH_NOARGS, nullptr},
      {"_pack", Pack, METH_NOARGS, nullptr},
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
  static PyMethodDef functions[] = {
      Fast("read_mesh", Read, nullptr), Fast("restore_mesh", Restore, nullptr), {nullptr, nullptr, 0, nullptr}};
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
}

}  // namespace zbr::python
