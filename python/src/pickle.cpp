// Meshes and drawings as bytes and back, so that processes hand them to each other. The arrays of a mesh are NumPy's part.
#include "python/src/drawings.h"
#include "python/src/modules.h"
#include "python/src/options.h"
#include "python/src/pack.h"

#include <zbr/region.h>

#include <utility>

namespace zbr::python {

// The records, in an order in which each is described before others hold it. All are found by their archive's namespace.

template <class Archive>
void Describe(Archive& a, drawing::MeshObject& o) {
  All(a, o.firstPoint, o.firstTriangle);
}

template <class Archive>
void Describe(Archive& a, drawing::ObjectSource& o) {
  All(a, o.name, o.id, o.shift);
  DescribeAsNumber(a, o.firstTriangle);
}

template <class Archive>
void Describe(Archive& a, ZBR_REGION& region) {
  std::vector<ZBR_PT> points = region.points();
  std::vector<std::int32_t> rings = region.ring_offsets(), polygons = region.polygon_offsets();
  All(a, points, rings, polygons);
  if constexpr (Archive::kReads) {
    std::size_t polygon = 0;
    for (std::size_t r = 0; r + 1 < rings.size(); ++r) {
      const std::int32_t begin = rings[r], end = rings[r + 1];
      if (begin < 0 || end - std::int64_t{begin} < 3 || static_cast<std::size_t>(end) > points.size())
        throw BadArgument("pickle", "its rings are wrong");
      const bool starts = polygon < polygons.size() && polygons[polygon] == static_cast<std::int32_t>(r);
      polygon += starts ? 1 : 0;
      region.AddRing(points.data() + begin, static_cast<std::size_t>(end - begin), starts);
    }
  }
}

template <class Archive>
void Describe(Archive& a, drawing::LoopList& loops) {
  ZBR_REGION region = zbrRegionOfLoops(loops);
  Describe(a, region);
  if constexpr (Archive::kReads) loops = zbrLoopsOfRegion(region.view());
}

template <class Archive>
void Describe(Archive& a, drawing::EdgeRef& e) {
  All(a, e.triangle, e.edge);
}

template <class Archive>
void Describe(Archive& a, drawing::CircleRun& run) {  // an arc: views have no splines
  DescribeAsNumber(a, run.at);
  All(a, run.centre, run.u, run.v, run.t0, run.t1, run.circle);
  DescribeAsNumber(a, run.last);
}

template <class Archive>
void Describe(Archive& a, drawing::Line& line) {
  DescribeAsNumber(a, line.edgeClass);
  All(a, line.hidden, line.shell, line.other, line.chain.points, line.chain.edges, line.chain.curves, line.chain.closed);
}

template <class Archive>
void Describe(Archive& a, drawing::Perspective& p) {
  All(a, p.eye, p.distance, p.fieldOfView);
}

template <class Archive>
void Describe(Archive& a, drawing::View& view) {
  All(a, view.right, view.up, view.toViewer, view.perspective);
}

template <class Archive>
void Describe(Archive& a, drawing::Extent& e) {
  All(a, e.xmin, e.xmax, e.ymin, e.ymax);
}

template <class Archive>
void Describe(Archive& a, drawing::SectionFace& face) {
  All(a, face.object, face.shell, face.region);
}

template <class Archive>
void Describe(Archive& a, drawing::SectionOfView& s) {
  All(a, s.letter, s.plane.normal, s.plane.offset, s.plane.depth, s.faces, s.isMarked);
  DescribeAsNumber(a, s.openLines);
  DescribeAsNumber(a, s.bridged);
}

template <class Archive>
void Describe(Archive& a, drawing::CentreMark& mark) {
  All(a, mark.centre, mark.radius);
}

template <class Archive>
void Describe(Archive& a, drawing::CentreAxis& axis) {
  All(a, axis.from, axis.to, axis.radius);
}

template <class Archive>
void Describe(Archive& a, drawing::ViewLines& view) {
  All(a, view.name, view.view, view.middle, view.extent, view.lines, view.outlines, view.section, view.centres.marks,
      view.centres.axes, view.seenCentres.marks, view.seenCentres.axes, view.pairs);
  DescribeAsNumber(a, view.drawable);
}

template <class Archive>
void Describe(Archive& a, DrawingData& data) {
  All(a, data.crease, data.weld, data.view);
  DescribeAsNumber(a, data.shells);
}

template <class Archive>
void Describe(Archive& a, MeshData& data) {
  All(a, data.name, data.sources, data.mesh.objects, data.mesh.bodies, data.mesh.shells, data.mesh.rounding, data.mesh.yUp);
}

namespace {

// Bytes start with this: a pickle of another version is refused.
constexpr const char* kVersion = "zbr " ZBR_VERSION;

template <class Data>
Ref Packed(const Data& data) {
  Packer packer;
  std::string version = kVersion;
  All(packer, version, const_cast<Data&>(data));  // which a packer only reads
  return Ref::Own(PyBytes_FromStringAndSize(packer.bytes.data(), static_cast<Py_ssize_t>(packer.bytes.size())));
}

template <class Data>
void Unpack(PyObject* bytes, Data& data) {
  const std::string held = BytesOf(bytes, "pickle");
  Unpacker unpacker{held};
  std::string version;
  Describe(unpacker, version);
  if (version != kVersion) throw BadArgument("pickle", "it is of another version, or damaged");
  Describe(unpacker, data);
  if (!unpacker.rest.empty()) throw BadArgument("pickle", "it is too long");
}

}  // namespace

Ref PackMesh(const MeshData& data) {
  return Packed(data);
}

Ref PackDrawing(const DrawingData& data) {
  return Packed(data);
}

std::shared_ptr<MeshData> UnpackMesh(drawing::Mesh mesh, PyObject* rest) {
  auto data = std::make_shared<MeshData>();
  data->mesh = std::move(mesh);
  Unpack(rest, *data);
  CheckRestored(*data);
  return data;
}

std::shared_ptr<DrawingData> UnpackDrawing(MeshPtr mesh, PyObject* bytes) {
  auto data = std::make_shared<DrawingData>();
  data->mesh = std::move(mesh);
  Unpack(bytes, *data);
  CheckRestored(*data);
  return data;
}

}  // namespace zbr::python
