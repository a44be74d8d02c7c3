// Lines, arcs, circles, ellipses and polylines of a DXF file as paths.
#include "formats/dxf/dxf_entities.h"

#include <zbr-drawing/affine.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "formats/dxf/dxf_curves.h"

namespace zbr::formats {
namespace {

constexpr double kPi = 3.141592653589793;

// Entities with an extrusion of (0, 0, -1) are drawn as seen from behind.
ZBR_PT Mirrored(const ZBR_PT& p) {
  return {-p.x(), p.y()};
}

void Mirror(Curve& curve) {
  curve.centre = Mirrored(curve.centre);
  curve.u = Mirrored(curve.u);
  curve.v = Mirrored(curve.v);
}

}  // namespace

const std::vector<int>* RequiredDxfCodes(std::string_view entity) {
  static const std::map<std::string_view, std::vector<int>> kCodes = {{"LINE", {10, 20, 11, 21}}, {"ARC", {10, 20, 40, 50, 51}},
                                                                      {"CIRCLE", {10, 20, 40}},   {"ELLIPSE", {10, 20, 11, 21, 40}},
                                                                      {"LWPOLYLINE", {90}},       {"POLYLINE", {}},
                                                                      {"VERTEX", {10, 20}}};
  const auto found = kCodes.find(entity);
  return found == kCodes.end() ? nullptr : &found->second;
}

void DxfEntities::setVariableInt(const std::string& key, int value, int) {
  if (key == "$INSUNITS") drawing_.units = value;
}

void DxfEntities::addLine(const DL_LineData& data) {
  Path path;
  path.points = {{data.x1, data.y1}, {data.x2, data.y2}};
  SetHeights(path, {data.z1, data.z2});
  AddPath(std::move(path));
}

void DxfEntities::addArc(const DL_ArcData& data) {
  if (!IsFlat("ARC")) return;
  Curve arc;
  arc.centre.Set(data.cx, data.cy);
  // Measured from the start, so that both ends are as exact as their angles allow.
  const ZBR_PT start = Direction(data.angle1);
  arc.u = start * data.radius;
  arc.v.Set(-arc.u.y(), arc.u.x());
  const double sweep = std::fmod(data.angle2 - data.angle1, 360.0);
  arc.t1 = (sweep > 0 ? sweep : sweep + 360.0) * kPi / 180.0;
  const ZBR_PT end = arc.centre + Direction(data.angle2) * data.radius;
  Path path;
  path.points = {arc.centre + arc.u, end};
  path.curves = {arc};
  const double height = IsMirrored() ? -data.cz : data.cz;
  SetHeights(path, {height, height});
  if (IsMirrored()) {
    Mirror(path.curves[0]);
    for (ZBR_PT& p : path.points) p = Mirrored(p);
  }
  AddPath(std::move(path));
}

void DxfEntities::addCircle(const DL_CircleData& data) {
  if (!IsFlat("CIRCLE")) return;
  Curve circle;
  circle.centre.Set(data.cx, data.cy);
  circle.u.Set(data.radius, 0);
  circle.v.Set(0, data.radius);
  circle.t1 = 2 * kPi;
  if (IsMirrored()) Mirror(circle);
  AddCurve(circle, true, IsMirrored() ? -data.cz : data.cz);
}

// The axes of an ellipse are given in the drawing's own plane; only its direction of travel depends on the extrusion.
void DxfEntities::addEllipse(const DL_EllipseData& data) {
  if (!IsFlat("ELLIPSE")) return;
  Curve ellipse;
  ellipse.centre.Set(data.cx, data.cy);
  ellipse.u.Set(data.mx, data.my);
  ellipse.v = ZBR_PT(-data.my, data.mx) * (IsMirrored() ? -data.ratio : data.ratio);
  const double sweep = std::fmod(data.angle2 - data.angle1, 2 * kPi);
  const bool closed = std::abs(std::abs(data.angle2 - data.angle1) - 2 * kPi) < 1e-9 || sweep == 0;
  ellipse.t0 = data.angle1;
  ellipse.t1 = data.angle1 + (closed ? 2 * kPi : (sweep > 0 ? sweep : sweep + 2 * kPi));
  AddCurve(ellipse, closed, data.cz);
}

void DxfEntities::addPolyline(const DL_PolylineData& data) {
  constexpr int kClosed = 1;
  constexpr int kMeshes = 16 | 64;
  inPolyline_ = false;
  if (!IsFlat("POLYLINE")) return;
  if ((data.flags & kMeshes) != 0) {
    drawing_.LeaveOut("polygon mesh", line_, true);
    return;
  }
  inPolyline_ = true;
  polyline_ = Path();
  polyline_.closed = (data.flags & kClosed) != 0;
  isMirrored_ = IsMirrored();
  elevation_ = data.elevation;
  bulges_.clear();
  heights_.clear();
}

void DxfEntities::addVertex(const DL_VertexData& data) {
  if (!inPolyline_) return;
  polyline_.points.emplace_back(data.x, data.y);
  bulges_.push_back(data.bulge);
  if (keepHeights_) heights_.push_back(elevation_ + data.z);
}

void DxfEntities::endEntity() {
  FinishPolyline();
}
void DxfEntities::endSequence() {
  FinishPolyline();
}

void DxfEntities::FinishPolyline() {
  constexpr double kStraight = 1e-9;  // of the chord: an arc that flat is a line, and its centre would be all rounding
  if (!inPolyline_) return;
  inPolyline_ = false;
  std::vector<ZBR_PT>& points = polyline_.points;
  if (isMirrored_) {
    for (double& z : heights_) z = -z;
    for (ZBR_PT& p : points) p = Mirrored(p);
  }
  const std::size_t edges = polyline_.closed ? points.size() : std::max<std::size_t>(points.size(), 1) - 1;
  for (std::size_t i = 0; i < edges; ++i) {
    const double bulge = isMirrored_ ? -bulges_[i] : bulges_[i];
    if (std::abs(bulge) < kStraight) continue;
    polyline_.curves.push_back(BulgeArc(points[i], points[(i + 1) % points.size()], bulge));
    polyline_.curves.back().at = i;
  }
  SetHeights(polyline_, std::move(heights_));
  if (!points.empty()) AddPath(std::move(polyline_));
}

bool DxfEntities::IsMirrored() {
  return getExtrusion()->getDirection()[2] < 0;
}

bool DxfEntities::IsFlat(const char* name) {
  constexpr double kUpright = 1e-9;
  const double* normal = getExtrusion()->getDirection();
  const bool flat = std::hypot(normal[0], normal[1]) <= kUpright * std::abs(normal[2]);
  if (!flat) drawing_.LeaveOut(std::string("tilted ") + name, line_, true);
  return flat;
}

void DxfEntities::SetHeights(Path& path, std::vector<double> heights) const {
  if (keepHeights_ && std::any_of(heights.begin(), heights.end(), [](double z) { return z != 0; }))
    path.heights = std::move(heights);
}

void DxfEntities::AddPath(Path path) {
  path.line = line_;
  path.layer = drawing_.names->Keep(attributes.getLayer());
  drawing_.paths.push_back(std::move(path));
}

void DxfEntities::AddCurve(const Curve& curve, bool closed, double height) {
  Path path;
  path.closed = closed;
  path.points = {curve.At(curve.t0)};
  if (!closed) path.points.push_back(curve.At(curve.t1));
  path.curves = {curve};
  SetHeights(path, std::vector<double>(path.points.size(), height));
  AddPath(std::move(path));
}

}  // namespace zbr::formats
