// Lines, arcs, circles, ellipses, splines, solids and inserts of a DXF file.
#include "formats/dxf/dxf_entities.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string_view>
#include <utility>

#include "formats/dxf/dxf_curves.h"

namespace zbr::formats {
namespace {

// Entities that show something other than contours.
bool IsAnnotation(std::string_view kind) {
  static constexpr std::array<std::string_view, 22> kKinds = {
      "ACAD_TABLE", "ARC_DIMENSION", "ATTDEF",    "ATTRIB",   "DIMENSION",   "ENDBLK",    "IMAGE",    "LARGE_RADIAL_DIMENSION",
      "LEADER",     "LIGHT",         "MLEADER",   "MTEXT",    "MULTILEADER", "OLE2FRAME", "OLEFRAME", "POINT",
      "RAY",        "TEXT",          "TOLERANCE", "VIEWPORT", "WIPEOUT",     "XLINE"};
  return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end();
}

Curve ArcCurve(const ZBR_PT& centre, double radius, double start, double end) {
  Curve arc;
  arc.centre = centre;
  // Measured from the start, so that both ends are as exact as their angles allow.
  arc.u = Direction(start) * radius;
  arc.v.Set(-arc.u.y(), arc.u.x());
  const double sweep = std::fmod(end - start, 360.0);
  arc.t1 = (sweep > 0 ? sweep : sweep + 360.0) * kPi / 180.0;
  return arc;
}

Path WholeCurve(const Curve& curve) {
  Path path;
  path.closed = true;
  path.points = {curve.At(curve.t0)};
  path.curves = {curve};
  return path;
}

}  // namespace

const DxfEntities::Kind* DxfEntities::KindOf(std::string_view kind) {
  using E = DxfEntities;
  static const std::map<std::string_view, Kind> kKinds = {{"LINE", {&E::TakeLine, {10, 20, 11, 21}}},
                                                          {"ARC", {&E::TakeArc, {10, 20, 40, 50, 51}}},
                                                          {"CIRCLE", {&E::TakeCircle, {10, 20, 40}}},
                                                          {"ELLIPSE", {&E::TakeEllipse, {10, 20, 11, 21, 40}}},
                                                          {"SPLINE", {&E::TakeSpline, {71}}},
                                                          {"LWPOLYLINE", {&E::TakeFlatPolyline, {90}}},
                                                          {"POLYLINE", {&E::TakePolyline, {}}},
                                                          {"SOLID", {&E::TakeSolid, {10, 20, 11, 21, 12, 22}}},
                                                          {"TRACE", {&E::TakeSolid, {10, 20, 11, 21, 12, 22}}},
                                                          {"MLINE", {&E::TakeMultiline, {72, 73}}},
                                                          {"HATCH", {&E::TakeHatch, {91}}},
                                                          {"INSERT", {&E::TakeInsert, {2}}}};
  const auto found = kKinds.find(kind);
  return found == kKinds.end() ? nullptr : &found->second;
}

void DxfEntities::Take(const DxfRecord& entity) {
  constexpr int kOnPaper = 67;
  if (entity.kind == "SEQEND") return;
  const Kind* const kind = KindOf(entity.kind);
  if (entity.Integer(kOnPaper) != 0) return LeaveOut("entity in paper space", entity, false);
  if (kind == nullptr) return LeaveOut(std::string(entity.kind), entity, !IsAnnotation(entity.kind));
  if (!std::all_of(kind->required.begin(), kind->required.end(), [&](int code) { return entity.Has(code); }))
    return Malformed(entity);
  (this->*kind->take)(entity);
}

void DxfEntities::LeaveOut(const std::string& what, const DxfRecord& entity, bool bearsContours) {
  LeftOut& left = contents_.leftOut[what];
  if (left.count++ == 0) left.line = entity.line;
  left.bearsContours = left.bearsContours || bearsContours;
}

void DxfEntities::Malformed(const DxfRecord& entity) {
  LeaveOut("malformed " + std::string(entity.kind), entity, true);
}
void DxfEntities::WithoutSize(const DxfRecord& entity) {
  LeaveOut(std::string(entity.kind) + " without size", entity, false);
}
void DxfEntities::EdgeOn(const DxfRecord& entity) {
  LeaveOut("upright " + std::string(entity.kind), entity, true);
}

void DxfEntities::Add(Path path, const DxfRecord& entity) {
  constexpr int kLayer = 8, kLineType = 6, kColour = 62, kInvisible = 60;
  if (!keepHeights_ || std::all_of(path.heights.begin(), path.heights.end(), [](double z) { return z == 0; })) path.heights.clear();
  path.line = entity.line;
  path.layer = names_.Keep(entity.Name(kLayer));
  path.lineType = names_.Keep(entity.Name(kLineType));
  path.colour = static_cast<int>(std::clamp(entity.Integer(kColour, kColourByLayer), 0LL, static_cast<long long>(kColourByLayer)));
  path.hidden = entity.Integer(kInvisible) != 0;
  contents_.paths.push_back(std::move(path));
}

void DxfEntities::AddInPlane(Path path, const DxfRecord& entity, const DxfPlane& plane, double elevation) {
  if (path.heights.empty()) {
    for (const ZBR_PT& p : path.points) path.heights.push_back(plane.HeightOf(p, elevation));
  }
  if (plane.normal().z() != 1) Map(path, plane.At(elevation));
  Add(std::move(path), entity);
}

void DxfEntities::TakeLine(const DxfRecord& entity) {
  const ZBR_PT3 from = entity.Point(10), to = entity.Point(11);
  if (from.x() == to.x() && from.y() == to.y() && (!keepHeights_ || from.z() == to.z())) return WithoutSize(entity);
  Path path;
  path.points = {from.xy(), to.xy()};
  path.heights = {from.z(), to.z()};
  Add(std::move(path), entity);
}

void DxfEntities::TakeArc(const DxfRecord& entity) {
  const ZBR_PT3 centre = entity.Point(10);
  const double radius = entity.Real(40);
  if (radius <= 0) return radius == 0 ? WithoutSize(entity) : Malformed(entity);
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  const Curve arc = ArcCurve(centre.xy(), radius, entity.Real(50), entity.Real(51));
  Path path;
  path.points = {arc.centre + arc.u, arc.centre + Direction(entity.Real(51)) * radius};
  path.curves = {arc};
  AddInPlane(std::move(path), entity, plane, centre.z());
}

void DxfEntities::TakeCircle(const DxfRecord& entity) {
  const ZBR_PT3 centre = entity.Point(10);
  const double radius = entity.Real(40);
  if (radius <= 0) return radius == 0 ? WithoutSize(entity) : Malformed(entity);
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  Curve circle;
  circle.centre = centre.xy();
  circle.u.Set(radius, 0);
  circle.v.Set(0, radius);
  circle.t1 = 2 * kPi;
  AddInPlane(WholeCurve(circle), entity, plane, centre.z());
}

// Centre and axes are points of space; the normal tells the side of the shorter axis.
void DxfEntities::TakeEllipse(const DxfRecord& entity) {
  constexpr double kRounding = 1e-9;
  const ZBR_PT3 centre = entity.Point(10), axis = entity.Point(11);
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  const double ratio = entity.Real(40), start = entity.Real(41, 0.0), end = entity.Real(42, 2 * kPi);
  Curve ellipse;
  ellipse.centre = centre.xy();
  ellipse.u = axis.xy();
  ellipse.v = (plane.normal().OuterProduct(axis) * ratio).xy();
  if (ratio < 0) return Malformed(entity);
  if (ellipse.u.OuterProduct(ellipse.v) == 0) return WithoutSize(entity);
  const double sweep = std::fmod(end - start, 2 * kPi);
  const bool closed = std::abs(std::abs(end - start) - 2 * kPi) < kRounding || sweep == 0;
  ellipse.t0 = start;
  ellipse.t1 = start + (closed ? 2 * kPi : (sweep > 0 ? sweep : sweep + 2 * kPi));
  Path path = WholeCurve(ellipse);
  path.closed = closed;
  if (!closed) path.points.push_back(ellipse.At(ellipse.t1));
  path.heights.assign(path.points.size(), centre.z());
  Add(std::move(path), entity);
}

// Corners stand as a person writes a Z: the third and the fourth are exchanged.
void DxfEntities::TakeSolid(const DxfRecord& entity) {
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  const ZBR_PT3 first = entity.Point(10), third = entity.Point(12);
  Path path;
  path.closed = true;
  path.points = {first.xy(), entity.Point(11).xy(), entity.Point(13, third).xy(), third.xy()};
  path.points.erase(std::unique(path.points.begin(), path.points.end(), AreIdentical), path.points.end());
  if (AreIdentical(path.points.front(), path.points.back())) path.points.pop_back();
  if (path.points.size() < 3) return WithoutSize(entity);
  AddInPlane(std::move(path), entity, plane, first.z());
}

void DxfEntities::TakeInsert(const DxfRecord& entity) {
  constexpr int kAngle = 50, kColumns = 70, kRows = 71;
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  const double xScale = entity.Real(41, 1), yScale = entity.Real(42, 1);
  if (xScale == 0 || yScale == 0) return WithoutSize(entity);
  const ZBR_PT3 at = entity.Point(10);
  const Affine turn = Affine::Turn(entity.Real(kAngle)), flat = plane.At(at.z());
  DxfInsert insert;
  insert.block = names_.Keep(entity.Name(2));
  insert.before = contents_.paths.size();
  insert.line = entity.line;
  insert.place = flat.After(Affine::Move(at.xy()).After(turn.After(Affine::Scale(xScale, yScale))));
  insert.column = flat.OfVector(turn.OfVector({entity.Real(44), 0}));
  insert.row = flat.OfVector(turn.OfVector({0, entity.Real(45)}));
  insert.columns = std::max(1LL, entity.Integer(kColumns, 1));
  insert.rows = std::max(1LL, entity.Integer(kRows, 1));
  insert.heightScale = entity.Real(43, 1) * plane.normal().z();
  insert.height = plane.HeightOf(at.xy(), at.z());
  insert.layer = names_.Keep(entity.Name(8));
  insert.lineType = names_.Keep(entity.Name(6));
  insert.colour = static_cast<int>(std::clamp(entity.Integer(62, kColourByLayer), 0LL, static_cast<long long>(kColourByLayer)));
  insert.hidden = entity.Integer(60) != 0;
  contents_.inserts.push_back(insert);
}

}  // namespace zbr::formats
