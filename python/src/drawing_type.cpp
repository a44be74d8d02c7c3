// The type under zbr.Drawing: the lines of one view.
#include "python/src/drawings.h"
#include "python/src/options.h"

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <utility>

namespace zbr::python {
namespace {

using Objects = Holder<DrawingData>;

const DrawingPtr& DataOf(PyObject* self) {
  return Objects::Of(self);
}

std::shared_ptr<const LineArrays> ArraysOf(const drawing::ViewLines& view) {
  const auto arrays = std::make_shared<LineArrays>();
  for (const drawing::Line& line : view.lines) {
    arrays->points.insert(arrays->points.end(), line.chain.points.begin(), line.chain.points.end());
    arrays->lines.push_back(static_cast<std::int32_t>(arrays->points.size()));
    arrays->kinds.push_back(static_cast<std::uint8_t>(line.edgeClass));
    arrays->hidden.push_back(line.hidden ? 1 : 0);
    arrays->shells.push_back(static_cast<std::int32_t>(line.shell));
    for (const drawing::EdgeRef& edge : line.chain.edges) {
      arrays->edges.push_back(static_cast<std::int32_t>(edge.triangle));
      arrays->edges.push_back(edge.edge);
    }
    arrays->edgeOffsets.push_back(static_cast<std::int32_t>(arrays->edges.size() / 2));
  }
  return arrays;
}

// What callers see of a view's lines and outlines.
void Finish(DrawingData& data) {
  data.lines = ArraysOf(data.view);
  for (const drawing::LoopList& loops : data.view.outlines) {
    const auto outline = std::make_shared<RegionData>();
    outline->region = zbrRegionOfLoops(loops);
    data.outlines.push_back(outline);
  }
}

// What views are drawn with.
struct Request {
  std::vector<WantedView> views;
  drawing::DrawingOptions options;
  double crease = 30.0;
  double weld = 0.0;
  bool yUp = false;
  std::optional<bool> smoothSilhouettes;  // none: for rough models only
};

// All but the views.
Request RequestOf(const Arguments& given) {
  Request request;
  if (given[1] != nullptr && PyUnicode_Check(given[1]) != 0) {
    request.options.hidden = static_cast<drawing::HiddenLines>(given.Choice(1, 0, {"none", "principal", "all"}));
  } else {
    request.options.hidden = given.Truth(1, true) ? drawing::HiddenLines::kInAllViews : drawing::HiddenLines::kNone;
  }
  request.crease = given.Number(2, 30.0, 0.0, 180.0);
  request.weld = given.Number(3, 0.0, 0.0, kMostWeld);
  request.options.tangents = given.Truth(4, false);
  request.options.intersections = given.Truth(5, true);
  request.options.outlines = given.Truth(6, false);
  request.options.threads = given.Threads(7);
  if (given.OrNull(9) != nullptr) request.smoothSilhouettes = given.Choice(9, 0, {"facets", "smooth"}) == 1;
  request.options.centreLines = given.Truth(10, false);
  request.options.curves = given.Truth(11, true);
  if (given.OrNull(12) != nullptr) request.options.contact = given.Number(12, 0.0, 0.0);
  return request;
}

// Sections are known by letters, in their order.
void AddView(PyObject* object, bool yUp, std::vector<WantedView>& views) {
  WantedView view = ViewOf(object, yUp);
  if (view.direction.section) {
    const auto before = static_cast<std::size_t>(
        std::count_if(views.begin(), views.end(), [](const auto& v) { return v.direction.section.has_value(); }));
    try {
      view.direction.name = drawing::SectionName(before);
    } catch (const drawing::Failure& failure) {
      throw BadArgument("views", failure.what());
    }
  }
  views.push_back(std::move(view));
}

// The share of the work that has been done when a stage begins, roughly.
double ShareAt(drawing::DrawStage stage) {
  switch (stage) {
    case drawing::DrawStage::kScene:
      return 0.0;
    case drawing::DrawStage::kRemoval:
      return 0.1;
    case drawing::DrawStage::kLines:
      return 0.8;
    case drawing::DrawStage::kOutlines:
      return 0.9;
    default:
      return 1.0;
  }
}

std::vector<DrawingPtr> Draw(const MeshPtr& mesh, Request& request, Monitor& monitor) {
  const ModelPtr model = mesh->ModelFor(request.crease, request.weld);
  request.options.smoothSilhouettes = request.smoothSilhouettes.value_or(model->isRough);
  static constexpr double kModel = 0.2;  // share of the work that all views have in common
  monitor.TellOrThrow(kModel / 2);
  std::vector<std::atomic<double>> shares(request.views.size());
  const auto total = [&shares] {
    double sum = 0.0;
    for (const auto& share : shares) sum += share;
    return kModel + (1.0 - kModel) * sum / static_cast<double>(shares.size());
  };
  request.options.progress = [&](std::size_t view, drawing::DrawStage stage) {
    shares[view] = ShareAt(stage);
    monitor.TellOrThrow(total());
  };
  request.options.removal = [&](std::size_t view, double share) {
    constexpr double kBegin = 0.1, kEnd = 0.8;  // of ShareAt()
    shares[view] = kBegin + (kEnd - kBegin) * share;
    return monitor.Tell(total());
  };
  std::vector<DrawingPtr> drawings;
  std::vector<drawing::NamedDirection> directions;
  for (const WantedView& view : request.views) directions.push_back(view.Of(*model, request.yUp));
  for (drawing::ViewLines& view : drawing::DrawViews(*model, directions, request.options)) {
    const auto data = std::make_shared<DrawingData>();
    data->mesh = mesh;
    data->model = model;
    data->crease = request.crease;
    data->weld = request.weld;
    data->shells = model->ShellCount();
    data->view = std::move(view);
    Finish(*data);
    drawings.push_back(data);
  }
  return drawings;
}

template <class T>
Ref ByLine(PyObject* self, const std::vector<T> LineArrays::*member, std::size_t columns = 0) {
  const auto& lines = DataOf(self)->lines;
  const std::vector<T>& items = (*lines).*member;
  return MakeArray(lines, items.data(), {columns == 0 ? items.size() : items.size() / columns, columns});
}

PyObject* Coords(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const auto& lines = DataOf(self)->lines;
    return MakeArray(lines, reinterpret_cast<const double*>(lines->points.data()), {lines->points.size(), 2});
  });
}
PyObject* Lines(PyObject* self, void*) noexcept {
  return Guarded([&] { return ByLine(self, &LineArrays::lines); });
}
PyObject* Kinds(PyObject* self, void*) noexcept {
  return Guarded([&] { return ByLine(self, &LineArrays::kinds); });
}
PyObject* Hidden(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const auto& lines = DataOf(self)->lines;
    return MakeArray(lines, reinterpret_cast<const bool*>(lines->hidden.data()), {lines->hidden.size()});
  });
}
PyObject* Shells(PyObject* self, void*) noexcept {
  return Guarded([&] { return ByLine(self, &LineArrays::shells); });
}
PyObject* Edges(PyObject* self, void*) noexcept {
  return Guarded([&] { return ByLine(self, &LineArrays::edges, 2); });
}
PyObject* EdgeOffsets(PyObject* self, void*) noexcept {
  return Guarded([&] { return ByLine(self, &LineArrays::edgeOffsets); });
}

PyObject* Outlines(PyObject* self, void*) noexcept {
  return Guarded([&] {
    Ref list = Ref::Own(PyList_New(0));
    for (const RegionPtr& outline : DataOf(self)->outlines) {
      if (PyList_Append(list.get(), NewRegion(outline).get()) != 0) throw PythonError();
    }
    return list;
  });
}

// What a section lays open, in the coordinates of the drawing.
PyObject* SectionFaces(PyObject* self, void*) noexcept {
  return Guarded([&] {
    Ref list = Ref::Own(PyList_New(0));
    const auto& section = DataOf(self)->view.section;
    for (std::size_t i = 0; section && i < section->faces.size(); ++i) {
      const auto face = std::make_shared<RegionData>();
      face->region = section->faces[i].region;
      if (PyList_Append(list.get(), NewRegion(face).get()) != 0) throw PythonError();
    }
    return list;
  });
}

PyObject* Name(PyObject* self, void*) noexcept {
  return PyUnicode_FromString(DataOf(self)->view.name.c_str());
}

PyObject* Bounds(PyObject* self, void*) noexcept {
  const drawing::Extent& e = DataOf(self)->view.extent;
  return Py_BuildValue("(dddd)", e.xmin, e.ymin, e.xmax, e.ymax);
}

PyObject* Middle(PyObject* self, void*) noexcept {
  const ZBR_PT3& m = DataOf(self)->view.middle;
  return Py_BuildValue("(ddd)", m.x(), m.y(), m.z());
}

PyObject* Axes(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const drawing::View& v = DataOf(self)->view.view;
    std::vector<double> axes;
    for (const ZBR_PT3& axis : {v.right, v.up, v.toViewer}) axes.insert(axes.end(), {axis.x(), axis.y(), axis.z()});
    return MakeArray<double>(std::move(axes), 3);
  });
}

Py_ssize_t Length(PyObject* self) noexcept {
  return static_cast<Py_ssize_t>(DataOf(self)->lines->kinds.size());
}

PyObject* TheMesh(PyObject* self, void*) noexcept {
  return Guarded([&] { return ShowMesh(DataOf(self)->mesh); });
}

PyObject* Pack(PyObject* self, PyObject*) noexcept {
  return Guarded([&] { return PackDrawing(*DataOf(self)); });
}

// (mesh, what _pack() gave)
PyObject* Restore(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("restore_drawing", {"mesh", "rest"}, 2, args, count, keywords);
    const MeshPtr& mesh = Holder<MeshData>::Of(given.Needed(0), "mesh", "a Mesh is needed");
    const auto data = UnpackDrawing(mesh, given.Needed(1));
    Finish(*data);
    return Objects::Make(data);
  });
}

PyObject* Pick(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("pick", {"points", "progress"}, 1, args, count, keywords);
    const DrawingPtr data = DataOf(self);
    if (data->view.section || data->view.view.perspective) throw BadArgument("pick", "not in sections and perspectives");
    std::vector<ZBR_PT> points = PointsOf(given.Needed(0), given[1]);
    Run(kSmallCall, nullptr, [data](Monitor&) { return &data->ThePicker(); });
    const std::shared_ptr<const drawing::Picker> picker(data, &data->ThePicker());
    return PickAll(picker, std::move(points), data->view.middle.xy(), given[1]);
  });
}

}  // namespace

const drawing::Picker& DrawingData::ThePicker() const {
  std::call_once(once_, [this] { picker_.emplace(model ? model : mesh->ModelFor(crease, weld), view.view); });
  return picker_->picker;
}

Ref PickAll(const std::shared_ptr<const drawing::Picker>& picker, std::vector<ZBR_PT> points, const ZBR_PT& shift,
            PyObject* progress) {
  constexpr std::size_t kEvery = 1024;
  struct Hits {
    std::vector<std::int32_t> shells, triangles;
    std::vector<double> heights;
  };
  const std::size_t size = points.size();
  Hits hits = Run(size, progress, [picker, shift, copy = std::move(points)](Monitor& monitor) {
    Hits found{std::vector<std::int32_t>(copy.size(), -1), std::vector<std::int32_t>(copy.size(), -1),
               std::vector<double>(copy.size(), std::numeric_limits<double>::quiet_NaN())};
    for (std::size_t i = 0; i < copy.size(); ++i) {
      if (i % kEvery == 0) monitor.TellOrThrow(static_cast<double>(i) / static_cast<double>(copy.size()));
      const auto hit = picker->At(copy[i] + shift);
      if (!hit) continue;
      found.shells[i] = static_cast<std::int32_t>(hit->shell);
      found.triangles[i] = static_cast<std::int32_t>(hit->triangle);
      found.heights[i] = hit->height;
    }
    return found;
  });
  const Ref s = MakeArray<std::int32_t>(std::move(hits.shells)), t = MakeArray<std::int32_t>(std::move(hits.triangles)),
            h = MakeArray<double>(std::move(hits.heights));
  return Ref::Own(PyTuple_Pack(3, s.get(), t.get(), h.get()));
}

PyObject* DrawMesh(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("draw",
                          {"views", "hidden", "crease", "weld", "tangents", "intersections", "outlines", "threads", "progress",
                           "silhouettes", "centre_lines", "curves", "contact", "axes"},
                          1, args, count, keywords);
    const MeshPtr mesh = Holder<MeshData>::Of(self);
    Request request = RequestOf(given);
    request.yUp = given.Choice(13, mesh->mesh.yUp ? 1 : 0, {"z", "y"}) == 1;
    ForEachItem(given.Needed(0), "views", [&](PyObject* view) { AddView(view, request.yUp, request.views); });
    const auto isPerspective = [](const WantedView& view) { return view.eye.has_value(); };
    if (request.options.centreLines && std::all_of(request.views.begin(), request.views.end(), isPerspective) &&
        !request.views.empty())
      throw BadArgument("centre_lines", "perspectives have none");
    const auto drawings = Run(kSmallCall, given[8], [mesh, request = std::move(request)](Monitor& monitor) mutable {
      return Draw(mesh, request, monitor);
    });
    Ref list = Ref::Own(PyList_New(0));
    for (const DrawingPtr& data : drawings) {
      if (PyList_Append(list.get(), Objects::Make(data).get()) != 0) throw PythonError();
    }
    return list;
  });
}

const DrawingPtr& DrawingOf(PyObject* object, const char* name) {
  return Objects::Of(object, name, "a Drawing is needed");
}

void AddDrawingType(PyObject* module) {
  static PyGetSetDef properties[] = {
      {"coords", Coords, nullptr, "(n, 2) float64: the points of all lines, one behind the other. A view; read-only.", nullptr},
      {"lines", Lines, nullptr, "(m + 1,) int32: line i is coords[lines[i]:lines[i + 1]]; a closed one ends where it starts.",
       nullptr},
      {"kind", Kinds, nullptr, "(m,) uint8: why a line is drawn, a place in KINDS.", nullptr},
      {"hidden", Hidden, nullptr, "(m,) bool.", nullptr},
      {"shell", Shells, nullptr, "(m,) int32: the shell that a line belongs to; shells are numbered by their first triangles.",
       nullptr},
      {"edges", Edges, nullptr,
       "(k, 2) int32: triangle of the mesh and its edge (3: across it) that lines are made of, in their order.", nullptr},
      {"edge_offsets", EdgeOffsets, nullptr, "(m + 1,) int32: the edges of line i are edges[edge_offsets[i]:edge_offsets[i + 1]].",
       nullptr},
      {"outlines", Outlines, nullptr, "What is seen of each object, a list of Region, where asked for.", nullptr},
      {"section_faces", SectionFaces, nullptr, "What a section lays open, a list of Region.", nullptr},
      {"mesh", TheMesh, nullptr, "The mesh that is drawn.", nullptr},
      {"name", Name, nullptr, "The name of the view.", nullptr},
      {"bounds", Bounds, nullptr, "(xmin, ymin, xmax, ymax) of the model in the view.", nullptr},
      {"middle", Middle, nullptr, "(x, y, z): where the origin of the drawing lies, in the axes of the view.", nullptr},
      {"axes", Axes, nullptr, "(3, 3) float64: what is drawn to the right, upwards, and towards the viewer.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  static PyMethodDef methods[] = {
      Fast("pick", Pick, nullptr),
      {"_pack", Pack, METH_NOARGS, nullptr},
      {nullptr, nullptr, 0, nullptr},
  };
  static const PyType_Slot slots[] = {
      {Py_tp_getset, properties},
      {Py_tp_methods, methods},
      {Py_mp_length, reinterpret_cast<void*>(Length)},
      {0, nullptr},
  };
  Objects::AddType(module, "Drawing", "zbr._zbr.Drawing", slots);
  static PyMethodDef functions[] = {Fast("restore_drawing", Restore, nullptr), {nullptr, nullptr, 0, nullptr}};
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
  const Ref kinds = Ref::Own(PyList_New(0));
  for (int kind = 0; kind <= static_cast<int>(drawing::EdgeClass::kCentre); ++kind) {
    const Ref name = Ref::Own(PyUnicode_FromString(drawing::NameOf(static_cast<drawing::EdgeClass>(kind))));
    if (PyList_Append(kinds.get(), name.get()) != 0) throw PythonError();
  }
  const Ref tuple = Ref::Own(PyList_AsTuple(kinds.get()));
  if (PyModule_AddObjectRef(module, "KINDS", tuple.get()) < 0) throw PythonError();
}

}  // namespace zbr::python
