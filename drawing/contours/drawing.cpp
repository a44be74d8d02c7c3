// Points of curves, and boxes.
#include <zbr-drawing/drawing.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zbr::drawing {

ZBR_PT Curve::At(double t) const {
  return centre + u * std::cos(t) + v * std::sin(t);
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
