// Boundaries of hatches, which the format describes in a fixed order of groups.
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include "formats/dxf/dxf_curves.h"
#include "formats/dxf/dxf_entities.h"
#include "formats/dxf/dxf_splines.h"

namespace zbr::formats {
namespace {

// The groups of a hatch one by one, in the order that the format asks for.
class Groups {
 public:
  explicit Groups(const DxfRecord& entity) : entity_(entity) {}

  // Moves on to the next group of this code.
  bool Seek(int code) {
    while (next_ < entity_.groups.size() && entity_.groups[next_].code != code) ++next_;
    return next_ < entity_.groups.size();
  }
  bool IsAt(int code) const { return next_ < entity_.groups.size() && entity_.groups[next_].code == code; }
  // The value of the next group, which must have this code; else the boundary is no good.
  double Real(int code) { return Take(code) ? entity_.Real(entity_.groups[next_ - 1]) : 0.0; }
  long long Integer(int code) { return Take(code) ? entity_.Integer(entity_.groups[next_ - 1]) : 0; }
  ZBR_PT Point(int code) {
    const double x = Real(code);
    return {x, Real(code + 10)};
  }
  void Skip(int code) {
    if (IsAt(code)) ++next_;
  }
  bool IsGood() const { return isGood_; }
  void Reject() { isGood_ = false; }

 private:
  bool Take(int code) {
    isGood_ = isGood_ && IsAt(code);
    if (isGood_) ++next_;
    return isGood_;
  }

  const DxfRecord& entity_;
  std::size_t next_ = 0;
  bool isGood_ = true;
};

// Appends the edge from the end of the path, which it has to start from, at least nearly.
void AddEdge(Path& path, const ZBR_PT& from, const ZBR_PT& to, const std::optional<Curve>& curve) {
  if (path.points.empty()) path.points.push_back(from);
  if (curve) {
    path.curves.push_back(*curve);
    path.curves.back().at = path.points.size() - 1;
  }
  path.points.push_back(to);
}

Path PolylineBoundary(Groups& groups) {
  const bool hasBulges = groups.Integer(72) != 0;
  groups.Integer(73);  // closed: boundaries are
  const long long count = groups.Integer(93);
  Path path;
  std::vector<double> bulges;
  for (long long i = 0; i < count && groups.IsGood(); ++i) {
    path.points.push_back(groups.Point(10));
    bulges.push_back(hasBulges && groups.IsAt(42) ? groups.Real(42) : 0.0);
  }
  path.closed = true;
  if (!groups.IsGood() || path.points.empty()) return {};
  const std::size_t n = path.points.size();
  if (n > 1 && path.points.front().Distance(path.points.back()) == 0 && !IsArc(bulges[n - 1])) path.points.pop_back();
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    const ZBR_PT &from = path.points[i], &to = path.points[(i + 1) % path.points.size()];
    if (!IsArc(bulges[i]) || from.Distance(to) == 0) continue;
    path.curves.push_back(BulgeArc(from, to, bulges[i]));
    path.curves.back().at = i;
  }
  return path;
}

// Angles are in degrees, and those of clockwise arcs are counted clockwise. A circle is an ellipse of ratio 1.
void AddEllipseEdge(Groups& groups, Path& path, bool isCircle) {
  Curve curve;
  curve.centre = groups.Point(10);
  curve.u = isCircle ? ZBR_PT() : groups.Point(11);
  const double ratio = groups.Real(40);  // or the radius
  if (isCircle) curve.u.Set(ratio, 0);
  const double start = groups.Real(50), end = groups.Real(51);
  const bool isCounterClockwise = groups.Integer(73) != 0;
  if (!groups.IsGood()) return;
  curve.v = ZBR_PT(-curve.u.y(), curve.u.x()) * (isCircle ? 1.0 : ratio) * (isCounterClockwise ? 1.0 : -1.0);
  constexpr double kTurn = 360.0;
  const double sweep = std::fmod(end - start, kTurn);
  curve.t0 = std::fmod(start, kTurn) * kPi / 180.0;
  curve.t1 = curve.t0 + (sweep > 0 ? sweep : sweep + kTurn) * kPi / 180.0;
  AddEdge(path, curve.At(curve.t0), curve.At(curve.t1), curve);
}

void AddSplineEdge(Groups& groups, Path& path) {
  Spline spline;
  spline.degree = static_cast<int>(std::clamp(groups.Integer(94), 0LL, 1000LL));
  const bool isRational = groups.Integer(73) != 0;
  groups.Integer(74);  // periodic: the knots say so
  const long long knots = groups.Integer(95), points = groups.Integer(96);
  for (long long i = 0; i < knots && groups.IsGood(); ++i) spline.knots.push_back(groups.Real(40));
  for (long long i = 0; i < points && groups.IsGood(); ++i) {
    spline.control.push_back(groups.Point(10));
    if (isRational) spline.weights.push_back(groups.IsAt(42) ? groups.Real(42) : 1.0);
  }
  if (!groups.IsGood() || !spline.IsValid()) return groups.Reject();
  // Points that it passes through and directions at its ends may follow; they say the same.
  if (groups.IsAt(97) && groups.Integer(97) > 0) {
    while (groups.IsAt(11) && groups.IsGood()) groups.Point(11);
  }
  for (const int direction : {12, 13}) {
    if (groups.IsAt(direction)) groups.Point(direction);
  }
  const Path whole = SplinePath(spline);
  AddEdge(path, whole.points.front(), whole.points.back(), whole.curves.front());
}

Path EdgeBoundary(Groups& groups) {
  enum { kLine = 1, kArc, kEllipse, kSpline };
  Path path;
  const long long count = groups.Integer(93);
  for (long long i = 0; i < count && groups.IsGood(); ++i) {
    const long long kind = groups.Integer(72);
    if (kind == kLine) {
      const ZBR_PT from = groups.Point(10);
      AddEdge(path, from, groups.Point(11), std::nullopt);
    } else if (kind == kArc || kind == kEllipse) {
      AddEllipseEdge(groups, path, kind == kArc);
    } else if (kind == kSpline) {
      AddSplineEdge(groups, path);
    } else {
      groups.Reject();
    }
  }
  if (!groups.IsGood() || path.points.empty()) return {};
  path.closed = true;
  path.points.pop_back();
  return path;
}

}  // namespace

void DxfEntities::TakeHatch(const DxfRecord& entity) {
  constexpr int kPaths = 91, kPathKind = 92;
  constexpr long long kIsPolyline = 2, kIsTextBox = 8;
  const DxfPlane plane(entity);
  if (plane.IsEdgeOn()) return EdgeOn(entity);
  Groups groups(entity);
  groups.Seek(kPaths);
  const long long count = groups.Integer(kPaths);
  for (long long i = 0; i < count && groups.IsGood(); ++i) {
    if (!groups.Seek(kPathKind)) return Malformed(entity);
    const long long kind = groups.Integer(kPathKind);
    Path path = (kind & kIsPolyline) != 0 ? PolylineBoundary(groups) : EdgeBoundary(groups);
    if (!groups.IsGood() || path.points.empty()) return Malformed(entity);
    if ((kind & kIsTextBox) != 0) continue;
    path.fills = true;
    AddInPlane(std::move(path), entity, plane, entity.Real(30));
  }
}

}  // namespace zbr::formats
