// Points of curves, and boxes.
#include <zbr-drawing/drawing.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zbr::drawing {

ZBR_PT Curve::At(double t) const {
  if (spline != nullptr) return spline->At(t);
  return centre + u * Cos(t) + v * Sin(t);
}

bool Curve::IsCircular() const {
  constexpr double kRounding = 1e-10;
  const double u2 = u.x() * u.x() + u.y() * u.y(), v2 = v.x() * v.x() + v.y() * v.y();
  return spline == nullptr && std::abs(u2 - v2) <= kRounding * u2 && std::abs(u.x() * v.x() + u.y() * v.y()) <= kRounding * u2;
}

// The half axes are the points of the ellipse where position and direction are at right angles: tan 2s = 2 u v / (u u - v v).
Curve OnAxes(const Curve& ellipse) {
  const ZBR_PT &p = ellipse.u, &q = ellipse.v;
  const double across = 2 * (p.x() * q.x() + p.y() * q.y());
  const double difference = p.x() * p.x() + p.y() * p.y() - q.x() * q.x() - q.y() * q.y();
  double start = across == 0 && difference >= 0 ? 0.0 : Atan2(across, difference) / 2;
  Curve turned = ellipse;
  if (start != 0) {
    turned.u = p * Cos(start) + q * Sin(start);
    turned.v = q * Cos(start) - p * Sin(start);
    if (start == kFullTurn / 4) {  // no rounding for axes that are only exchanged
      turned.u = q;
      turned.v = p * -1.0;
    }
    turned.t0 -= start;
    turned.t1 -= start;
  }
  if (turned.u.x() * turned.v.y() < turned.u.y() * turned.v.x()) {
    turned.v *= -1.0;
    turned.t0 = -turned.t0;
    turned.t1 = -turned.t1;
  }
  if (turned.t1 < turned.t0) std::swap(turned.t0, turned.t1);
  return turned;
}

void Drawing::LeaveOut(const std::string& what, std::size_t line, bool bearsContours) {
  LeftOut& left = leftOut[what];
  if (left.count++ == 0) left.line = line;
  left.bearsContours = left.bearsContours || bearsContours;
}

Extent::Extent() : xmin(std::numeric_limits<double>::infinity()), xmax(-xmin), ymin(xmin), ymax(-xmin) {}

void Extent::Add(const ZBR_PT& p) {
  xmin = std::min(xmin, p.x());
  xmax = std::max(xmax, p.x());
  ymin = std::min(ymin, p.y());
  ymax = std::max(ymax, p.y());
}

void Extent::Add(const Extent& e) {
  if (e.empty()) return;
  Add({e.xmin, e.ymin});
  Add({e.xmax, e.ymax});
}

double Extent::Size() const {
  if (empty()) return 0.0;
  const double half = std::max(xmax / 2 - xmin / 2, ymax / 2 - ymin / 2);
  return std::min(half, std::numeric_limits<double>::max() / 2) * 2;
}

double Extent::Magnitude() const {
  return empty() ? 0.0 : std::max({std::abs(xmin), std::abs(xmax), std::abs(ymin), std::abs(ymax)});
}

Extent ExtentOf(const Drawing& drawing) {
  // A coarse box is enough: it only sets default tolerances.
  constexpr int kSamples = 16;
  Extent extent;
  for (const Path& path : drawing.paths) {
    for (const ZBR_PT& p : path.points) extent.Add(p);
    for (const Curve& curve : path.curves) {
      for (int i = 1; i < kSamples; ++i) extent.Add(curve.At(curve.t0 + (curve.t1 - curve.t0) * i / kSamples));
    }
  }
  return extent;
}

Extent ExtentOf(const std::vector<Ring>& rings) {
  Extent extent;
  for (const Ring& ring : rings) {
    for (const ZBR_PT& p : ring.points) extent.Add(p);
  }
  return extent;
}

}  // namespace zbr::drawing
