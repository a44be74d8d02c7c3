// Polylines of a DXF file: with bulges, with a width, in space, old and new; multiple lines.
#include <algorithm>
#include <cmath>
#include <utility>

#include "formats/dxf/dxf_curves.h"
#include "formats/dxf/dxf_entities.h"
#include "formats/dxf/dxf_wide.h"

namespace zbr::formats {
namespace {

constexpr int kClosed = 1;

Path PathOf(const std::vector<WideVertex>& vertices, bool closed) {
  Path path;
  path.closed = closed;
  for (const WideVertex& vertex : vertices) path.points.push_back(vertex.at);
  const std::size_t edges = closed ? vertices.size() : vertices.size() - 1;
  for (std::size_t i = 0; i < edges; ++i) {
    if (!IsArc(vertices[i].bulge)) continue;
    path.curves.push_back(BulgeArc(path.points[i], path.points[(i + 1) % path.points.size()], vertices[i].bulge));
    path.curves.back().at = i;
  }
  return path;
}

bool HasSize(const std::vector<WideVertex>& vertices) {
  return std::any_of(vertices.begin(), vertices.end(),
                     [&](const WideVertex& vertex) { return !AreIdentical(vertex.at, vertices[0].at); });
}

}  // namespace

void DxfEntities::AddPolyline(const std::vector<WideVertex>& vertices, bool closed, double elevation, const DxfRecord& entity) {
  if (vertices.empty()) return Malformed(entity);
  if (!HasSize(vertices)) return WithoutSize(entity);
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  const bool isWide =
      std::any_of(vertices.begin(), vertices.end(), [](const WideVertex& v) { return v.startWidth > 0 || v.endWidth > 0; });
  if (!isWide) return AddInPlane(PathOf(vertices, closed), entity, plane, elevation);
  for (Path& border : BordersOf(vertices, closed)) AddInPlane(std::move(border), entity, plane, elevation);
}

void DxfEntities::TakeFlatPolyline(const DxfRecord& entity) {
  const double width = entity.Real(43);
  std::vector<WideVertex> vertices;
  std::size_t ys = 0;
  bool isOrdered = true;
  for (const DxfGroup& group : entity.groups) {
    if (group.code == 10) {
      isOrdered = isOrdered && ys == vertices.size();
      vertices.push_back({{entity.Real(group), 0}, 0, width, width});
    }
    if (group.code == 20) isOrdered = isOrdered && ++ys == vertices.size();
    if (vertices.empty()) {
      isOrdered = isOrdered && group.code != 42;
      continue;
    }
    WideVertex& vertex = vertices.back();
    if (group.code == 20) vertex.at.Set(vertex.at.x(), entity.Real(group));
    if (group.code == 40) vertex.startWidth = entity.Real(group);
    if (group.code == 41) vertex.endWidth = entity.Real(group);
    if (group.code == 42) vertex.bulge = entity.Real(group);
  }
  const long long announced = entity.Integer(90);
  if (!isOrdered || ys != vertices.size() || announced != static_cast<long long>(vertices.size())) return Malformed(entity);
  AddPolyline(vertices, (entity.Integer(70) & kClosed) != 0, entity.Real(38), entity);
}

void DxfEntities::TakePolyline(const DxfRecord& entity) {
  constexpr int kInSpace = 8, kMeshes = 16 | 64, kSplineFrame = 16;
  const long long flags = entity.Integer(70);
  if ((flags & kMeshes) != 0) return LeaveOut("polygon mesh", entity, true);
  if ((flags & kInSpace) != 0) return TakeSpacePolyline(entity);
  const double startWidth = entity.Real(40), endWidth = entity.Real(41);
  std::vector<WideVertex> vertices;
  double height = entity.Real(30);
  for (const DxfRecord& vertex : entity.vertices) {
    if ((vertex.Integer(70) & kSplineFrame) != 0) continue;  // a control point: not on the curve, which has vertices of its own
    if (!vertex.Has(10) || !vertex.Has(20)) return Malformed(entity);
    if (vertices.empty()) height += vertex.Real(30);
    vertices.push_back({vertex.Point(10).xy(), vertex.Real(42), vertex.Real(40, startWidth), vertex.Real(41, endWidth)});
  }
  AddPolyline(vertices, (flags & kClosed) != 0, height, entity);
}

void DxfEntities::TakeSpacePolyline(const DxfRecord& entity) {
  constexpr int kSplineFrame = 16;
  Path path;
  path.closed = (entity.Integer(70) & kClosed) != 0;
  for (const DxfRecord& vertex : entity.vertices) {
    if ((vertex.Integer(70) & kSplineFrame) != 0) continue;
    if (!vertex.Has(10) || !vertex.Has(20)) return Malformed(entity);
    const ZBR_PT3 p = vertex.Point(10);
    path.points.push_back(p.xy());
    path.heights.push_back(p.z());
  }
  if (path.points.empty()) return Malformed(entity);
  Add(std::move(path), entity);
}

// Each vertex has a direction along which all lines of the style are off it, and for each line how far. What is drawn is bounded by
// the outermost two.
void DxfEntities::TakeMultiline(const DxfRecord& entity) {
  constexpr int kClosedMultiline = 2;
  struct Joint {
    ZBR_PT at, across;
    std::vector<double> offsets;
  };
  std::vector<Joint> joints;
  long long counted = 0;
  for (const DxfGroup& group : entity.groups) {
    if (group.code == 11) joints.push_back({{entity.Real(group), 0}, {}, {}});
    if (joints.empty()) continue;
    Joint& joint = joints.back();
    if (group.code == 21) joint.at.Set(joint.at.x(), entity.Real(group));
    if (group.code == 13) joint.across.Set(entity.Real(group), 0);
    if (group.code == 23) joint.across.Set(joint.across.x(), entity.Real(group));
    if (group.code == 74) counted = entity.Integer(group);
    // Of the numbers of a line the first is its offset; the others are breaks.
    if (group.code == 41 && counted > 0) joint.offsets.push_back(entity.Real(group));
    if (group.code == 41) counted = 0;
  }
  Path low, high;
  for (const Joint& joint : joints) {
    if (joint.offsets.empty()) return Malformed(entity);
    const auto [least, most] = std::minmax_element(joint.offsets.begin(), joint.offsets.end());
    low.points.push_back(joint.at + joint.across * *least);
    high.points.push_back(joint.at + joint.across * *most);
  }
  if (joints.size() < 2) return Malformed(entity);
  low.closed = high.closed = true;
  if ((entity.Integer(71) & kClosedMultiline) == 0) {
    low.points.insert(low.points.end(), high.points.rbegin(), high.points.rend());
    return Add(std::move(low), entity);
  }
  Add(std::move(low), entity);
  Add(std::move(high), entity);
}

}  // namespace zbr::formats
