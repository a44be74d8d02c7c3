// From chords back to curves.
//
// Idea: the sources of a result's edge name the edges of the operands that it runs along, and these know their curve and the part
// of it that they stand for. Edges in a row that stand for one curve, each going on where the last one ended, are a run; a run
// becomes one arc. Vertices lie on the true curves, as contours have them wherever curves meet anything. Where an end does not
// (chords that cross where curves only come near each other), the chord stays what it is.
#include <zbr-drawing/lines.h>
#include <zbr-drawing/region.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "drawing/regions/bezier.h"

namespace zbr::drawing {
namespace {

constexpr double kOnCurve = 1e-9;  // of the curve's size
constexpr double kGoesOn = 1e-6;   // of the parameter, between the end of one chord and the start of the next

double SizeOf(const Curve& curve) {
  if (curve.spline != nullptr) {
    Extent extent;
    for (const ZBR_PT& p : curve.spline->control) extent.Add(p);
    return extent.Size();
  }
  return Hypot(curve.u.x(), curve.u.y()) + Hypot(curve.v.x(), curve.v.y());
}

// The shares of an edge's ends that are but for rounding those of the whole edge are these.
double Share(double t) {
  constexpr double kRounding = 1e-9;
  if (std::abs(t) < kRounding) return 0.0;
  return std::abs(t - 1.0) < kRounding ? 1.0 : t;
}

EdgeOrigin Part(const EdgeOrigin& origin, const ZBR_EDGE_SOURCE& source) {
  const double sweep = origin.t1 - origin.t0;
  const auto at = [&](double t) { return t == 1.0 ? origin.t1 : origin.t0 + sweep * t; };
  return {origin.curve, origin.line, at(Share(source.t0)), at(Share(source.t1)), origin.pen};
}

// Edges in a row, all around a ring or from one end to the other.
class Outline {
 public:
  Outline(std::span<const ZBR_PT> points, std::span<const EdgeOrigin> origins, const std::vector<Curve>& curves,
          std::size_t& beside)
      : points_(points), curves_(curves), origins_(origins.begin(), origins.end()), isOpen_(points.size() > origins.size()) {
    for (std::size_t i = 0; i < origins_.size(); ++i) {
      EdgeOrigin& origin = origins_[i];
      if (origin.curve < 0 || (IsOn(origin, origin.t0, i) && IsOn(origin, origin.t1, i + 1))) continue;
      origin = {-1, -1, 0.0, 0.0, origin.pen};
      ++beside;
    }
  }

  Path Run() const {
    const std::size_t count = origins_.size();
    Path path;
    path.closed = !isOpen_;
    std::size_t start = 0;
    while (!isOpen_ && start < count && GoesOn(start)) ++start;
    if (start == count) return Whole(std::move(path));
    for (std::size_t k = 0; k < count;) {
      std::size_t end = k + 1;
      while (end < count && GoesOn((start + end) % count)) ++end;
      AddRun(start + k, start + end, path);
      k = end;
    }
    if (isOpen_) path.points.push_back(points_.back());
    return path;
  }

 private:
  const ZBR_PT& Point(std::size_t i) const { return points_[i % points_.size()]; }
  const EdgeOrigin& Origin(std::size_t i) const { return origins_[i % origins_.size()]; }
  const Curve& CurveOf(const EdgeOrigin& origin) const { return curves_[static_cast<std::size_t>(origin.curve)]; }

  bool IsOn(const EdgeOrigin& origin, double t, std::size_t i) const {
    const Curve& curve = CurveOf(origin);
    return curve.At(t).Distance(Point(i)) <= kOnCurve * SizeOf(curve);
  }

  // Whether edge i is of what the edge before it is of, and goes on there.
  bool GoesOn(std::size_t i) const {
    const EdgeOrigin &before = Origin(i + origins_.size() - 1), &origin = Origin(i);
    if (before.pen != origin.pen) return false;
    if (origin.curve < 0) return origin.line >= 0 && before.curve < 0 && before.line == origin.line && IsStraight(i);
    if (before.curve != origin.curve) return false;
    const double gap = CurveOf(origin).spline != nullptr ? origin.t0 - before.t1 : std::remainder(origin.t0 - before.t1, kFullTurn);
    return std::abs(gap) < kGoesOn && (origin.t1 > origin.t0) == (before.t1 > before.t0);
  }

  // Two parts of a line that do not turn back.
  bool IsStraight(std::size_t i) const {
    const ZBR_PT a = Point(i) - Point(i + points_.size() - 1), b = Point(i + 1) - Point(i);
    return a.InnerProduct(b) > 0;
  }

  // Edges from one place to another, and the point where they start.
  void AddRun(std::size_t from, std::size_t to, Path& path) const {
    path.points.push_back(Point(from));
    const EdgeOrigin& origin = Origin(from);
    if (origin.pen >= 0) path.pens.push_back(origin.pen);
    if (origin.curve < 0) return;
    Curve curve = CurveOf(origin);
    curve.at = path.points.size() - 1;
    curve.t0 = origin.t0;
    curve.t1 = origin.t0;
    for (std::size_t i = from; i < to; ++i) curve.t1 += Origin(i).t1 - Origin(i).t0;
    path.curves.push_back(curve);
  }

  // A ring that is nothing but one curve.
  Path Whole(Path path) const {
    AddRun(0, origins_.size(), path);
    if (path.curves.empty()) return path;
    Curve& curve = path.curves.front();
    curve.t1 = curve.t0 + (curve.t1 > curve.t0 ? kFullTurn : -kFullTurn);
    return path;
  }

  std::span<const ZBR_PT> points_;
  const std::vector<Curve>& curves_;
  std::vector<EdgeOrigin> origins_;
  bool isOpen_;
};

double ChordArea(const std::vector<ZBR_PT>& ring) {
  double twice = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) twice += (ring[i] - ring[0]).OuterProduct(ring[i + 1] - ring[0]);
  return twice / 2;
}

// Between a curve and its chord.
double SegmentArea(const Curve& curve) {
  if (curve.spline != nullptr) return SplineArea(curve);
  const double sweep = curve.t1 - curve.t0;
  return curve.u.OuterProduct(curve.v) * (sweep - Sin(sweep)) / 2;
}

}  // namespace

double CurvedRegion::Area() const {
  double area = 0.0;
  for (const Path& path : OutlinesOf(*this)) {
    area += ChordArea(path.points);
    for (const Curve& curve : path.curves) area += SegmentArea(curve);
  }
  return area;
}

CurvedRegion Traced(ZBR_REGION result, const std::vector<const CurvedRegion*>& operands) {
  CurvedRegion traced{std::move(result), {}, nullptr, nullptr};
  bool hasCurves = false;
  for (const CurvedRegion* const operand : operands) {
    hasCurves = hasCurves || operand->HasCurves();
    if (operand->curves != nullptr) traced.curves = operand->curves;
    if (operand->pens != nullptr) traced.pens = operand->pens;
  }
  if (!hasCurves) return traced;
  const ZBR_REGION& rings = traced.rings;
  traced.origins.resize(rings.point_count());
  for (std::size_t i = 0; i < rings.point_count(); ++i) {
    EdgeOrigin& origin = traced.origins[i];
    const auto end = static_cast<std::size_t>(rings.source_offsets()[i + 1]);
    for (auto s = static_cast<std::size_t>(rings.source_offsets()[i]); s < end && origin.curve < 0; ++s) {
      const ZBR_EDGE_SOURCE& source = rings.sources()[s];
      const CurvedRegion& operand = *operands[static_cast<std::size_t>(source.operand)];
      if (!operand.HasCurves()) continue;
      const auto first = static_cast<std::size_t>(operand.rings.ring_offsets()[static_cast<std::size_t>(source.ring)]);
      const std::int32_t pen = origin.pen;
      origin = Part(operand.origins[first + static_cast<std::size_t>(source.edge)], source);
      if (pen >= 0) origin.pen = pen;
    }
  }
  return traced;
}

std::vector<Path> OutlinesOf(const CurvedRegion& region, std::size_t* beside) {
  std::vector<Path> outlines;
  std::size_t count = 0;
  for (std::size_t r = 0; r < region.rings.ring_count(); ++r) {
    if (region.HasCurves()) {
      const auto first = static_cast<std::size_t>(region.rings.ring_offsets()[r]);
      const std::size_t points = static_cast<std::size_t>(region.rings.ring_offsets()[r + 1]) - first;
      outlines.push_back(Outline(std::span(region.rings.points()).subspan(first, points),
                                 std::span(region.origins).subspan(first, points), *region.curves, count)
                             .Run());
      continue;
    }
    const auto begin = region.rings.points().begin() + region.rings.ring_offsets()[r];
    Path& path = outlines.emplace_back();
    path.points.assign(begin, region.rings.points().begin() + region.rings.ring_offsets()[r + 1]);
    path.closed = true;
  }
  if (beside != nullptr) *beside = count;
  return outlines;
}

Path OutlineOf(const std::vector<ZBR_PT>& points, const std::vector<EdgeOrigin>& origins, const std::vector<Curve>& curves) {
  std::size_t beside = 0;
  const bool isClosed = points.size() > 2 && points.front().x() == points.back().x() && points.front().y() == points.back().y();
  return Outline(std::span(points).first(points.size() - (isClosed ? 1 : 0)), origins, curves, beside).Run();
}

}  // namespace zbr::drawing
