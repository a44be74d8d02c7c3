// Sizes of regions as integrals along their boundaries (Green's theorem).
//
// Idea: area and moments are integrals of x^i y^j dy or dx around the region. Each edge is integrated by Gauss's rule, which is
// exact for what straight edges and most splines give, and exact but for rounding for an eighth of a turn of an ellipse. Only the
// length, with its square root, is halved until it settles. Everything is computed in a frame in which the region lies around the
// origin and has about unit size: far from the origin, moments would drown in rounding.
#include <zbr-drawing/affine.h>
#include <zbr-drawing/measures.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "drawing/regions/bezier.h"
#include "drawing/regions/gauss.h"

namespace zbr::drawing {
namespace {

using Way = std::function<Motion(double)>;

constexpr double kEighth = 0.7853981633974483;  // of a turn

double Speed(const Motion& motion) {
  return Hypot(motion.along.x(), motion.along.y());
}

double LengthOf(const Way& way, double a, double b, int halvings) {
  constexpr double kSettled = 1e-13;  // of the frame's unit: relative to short pieces it would ask for more than rounding gives
  const auto speed = [&](double t) { return Speed(way(t)); };
  const double middle = (a + b) / 2, whole = Integral(a, b, speed);
  const double first = Integral(a, middle, speed), second = Integral(middle, b, speed);
  if (halvings == 0 || !(std::abs(first + second - whole) > kSettled)) return first + second;
  return LengthOf(way, a, middle, halvings - 1) + LengthOf(way, middle, b, halvings - 1);
}

Motion OnEllipse(const Curve& curve, double t) {
  return {curve.At(t), curve.v * Cos(t) - curve.u * Sin(t)};
}

// Calls visit with the ways that make up the curve, each with the range of its parameter.
template <class Visit>
void ForEachWay(const Curve& curve, Visit visit) {
  if (curve.spline != nullptr) {
    for (const Bezier& piece : PiecesOf(curve)) visit([&](double t) { return piece.At(t); }, 0.0, 1.0);
    return;
  }
  const double sweep = curve.t1 - curve.t0;
  const int parts = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kEighth)));
  for (int i = 0; i < parts; ++i)
    visit([&](double t) { return OnEllipse(curve, t); }, curve.t0 + sweep * i / parts, curve.t0 + sweep * (i + 1) / parts);
}

// Sums over a boundary in the frame.
class Sums {
 public:
  Sums(const ZBR_PT& middle, double scale) : middle_(middle), scale_(scale) {}

  void AddLine(const ZBR_PT& start, const ZBR_PT& end) {
    // Simpson's rule is exact for cubics, which is all there is.
    constexpr double kSixth = 1.0 / 6;
    const ZBR_PT from = (start - middle_) * scale_, to = (end - middle_) * scale_, along = to - from;
    Add({from, along}, kSixth);
    Add({(from + to) * 0.5, along}, 4 * kSixth);
    Add({to, along}, kSixth);
    perimeter_ += from.Distance(to);
  }

  void AddCurve(Curve curve) {
    constexpr int kMostHalvings = 24;
    Map(curve, Affine::Scale(scale_, scale_).After(Affine::Move(middle_ * -1.0)));
    ForEachWay(curve, [&](const auto& way, double a, double b) {
      ForEachNode(a, b, [&](double t, double weight) { Add(way(t), weight); });
      if (!curve.IsCircular()) perimeter_ += std::abs(LengthOf(way, a, b, kMostHalvings));
    });
    if (curve.IsCircular()) perimeter_ += Hypot(curve.u.x(), curve.u.y()) * std::abs(curve.t1 - curve.t0);
  }

  RegionMeasures Result(double area) const {
    RegionMeasures measures;
    measures.area = area;
    measures.perimeter = perimeter_ / scale_;
    measures.centroid = middle_;
    if (!(std::abs(area_) > 0)) return measures;
    const double x = x_ / area_, y = y_ / area_, back2 = 1 / (scale_ * scale_);
    measures.centroid += ZBR_PT(x, y) * (1 / scale_);
    measures.ix = (yy_ - area_ * y * y) * back2 * back2;
    measures.iy = (xx_ - area_ * x * x) * back2 * back2;
    measures.ixy = (xy_ - area_ * x * y) * back2 * back2;
    return measures;
  }

 private:
  void Add(const Motion& motion, double weight) {
    const double x = motion.at.x(), y = motion.at.y(), dx = motion.along.x() * weight, dy = motion.along.y() * weight;
    area_ += (x * dy - y * dx) / 2;
    x_ += x * x * dy / 2;
    y_ -= y * y * dx / 2;
    xx_ += x * x * x * dy / 3;
    yy_ -= y * y * y * dx / 3;
    xy_ += x * x * y * dy / 2;
  }

  ZBR_PT middle_;
  double scale_;
  double area_ = 0.0, x_ = 0.0, y_ = 0.0, xx_ = 0.0, yy_ = 0.0, xy_ = 0.0, perimeter_ = 0.0;
};

// Where u cos t + v sin t turns back in a coordinate that u and v have: at atan(v / u) and half a turn on. Not next to the ends,
// which are in the box already: what is rounded in an arc would push the box beyond a corner.
void AddTurns(const Curve& curve, double u, double v, Extent& extent) {
  constexpr double kHalfTurn = 4 * kEighth, kNextTo = 1e-6;
  const double low = std::min(curve.t0, curve.t1) + kNextTo, high = std::max(curve.t0, curve.t1) - kNextTo;
  const double turn = Atan2(v, u);
  for (double k = std::ceil((low - turn) / kHalfTurn); turn + k * kHalfTurn <= high; ++k)
    extent.Add(curve.At(turn + k * kHalfTurn));
}

// The ends are in the box already; pieces whose hull is, too, but for rounding, add nothing.
void AddBezier(const Bezier& piece, int halvings, double rounding, Extent& extent) {
  const auto isIn = [&](const ZBR_PT& p) {
    return p.x() >= extent.xmin - rounding && p.x() <= extent.xmax + rounding && p.y() >= extent.ymin - rounding &&
           p.y() <= extent.ymax + rounding;
  };
  if (halvings == 0 || std::all_of(piece.control.begin(), piece.control.end(), isIn)) return;
  const auto [first, second] = piece.Halves();
  extent.Add(second.control.front());
  AddBezier(first, halvings - 1, rounding, extent);
  AddBezier(second, halvings - 1, rounding, extent);
}

void AddCurve(const Curve& curve, Extent& extent) {
  constexpr int kMostHalvings = 26;  // after each, what may be missing is a quarter
  if (curve.spline == nullptr) {
    AddTurns(curve, curve.u.x(), curve.v.x(), extent);
    AddTurns(curve, curve.u.y(), curve.v.y(), extent);
    return;
  }
  const std::vector<Bezier> pieces = PiecesOf(curve);
  for (const Bezier& piece : pieces) {
    extent.Add(piece.control.front());
    extent.Add(piece.control.back());
  }
  constexpr double kRounding = 4e-15;
  for (const Bezier& piece : pieces) AddBezier(piece, kMostHalvings, kRounding * extent.Magnitude(), extent);
}

}  // namespace

Extent TrueExtentOf(const Path& path) {
  Extent extent;
  for (const ZBR_PT& p : path.points) extent.Add(p);
  for (const Curve& curve : path.curves) AddCurve(curve, extent);
  return extent;
}

Extent TrueExtentOf(const CurvedRegion& region) {
  Extent extent;
  for (const Path& path : OutlinesOf(region)) extent.Add(TrueExtentOf(path));
  return extent;
}

RegionMeasures MeasuresOf(const CurvedRegion& region) {
  const Extent extent = TrueExtentOf(region);
  if (extent.empty()) return {};
  const ZBR_PT middle(extent.xmin / 2 + extent.xmax / 2, extent.ymin / 2 + extent.ymax / 2);
  const double size = extent.Size();
  Sums sums(middle, std::isnormal(size) ? std::ldexp(1.0, -std::ilogb(size)) : 1.0);  // a power of two: no rounding
  for (const Path& path : OutlinesOf(region)) {
    auto curve = path.curves.begin();
    for (std::size_t i = 0; i < path.points.size(); ++i) {
      if (curve != path.curves.end() && curve->at == i) {
        sums.AddCurve(*curve++);
      } else {
        sums.AddLine(path.points[i], path.points[i + 1 < path.points.size() ? i + 1 : 0]);
      }
    }
  }
  return sums.Result(region.Area());
}

}  // namespace zbr::drawing
