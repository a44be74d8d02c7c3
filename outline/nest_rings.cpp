// From rings to a region: straight points, slivers, nesting.
//
// Nesting compares areas and distances with one absolute tolerance. It therefore sees the rings moved to the origin and scaled to a
// fixed size; the true points are put in place afterwards.
#include <algorithm>
#include <cmath>

#include "core/box.h"
#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "outline/loop_builder.h"

namespace zbr {
namespace {

using Points = std::vector<ZBR_PT>;

// Distance from a straight line up to which a point on it counts as such, relative to the size of the coordinates: what rounding
// errors amount to.
constexpr double kStraight = 1e-14;
// The side to which the rings' box is scaled for nesting (or half of it): it makes the Boolean's tolerance 1e-12 of it, and areas
// at most that count as none.
constexpr int kNestingExponent = 10;

// Takes from rings the points that say nothing about their shape.
class RingShape {
 public:
  RingShape(const Box& box, double width)
      : straight_(kStraight * std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)})),
        width_(width) {}

  Points Simplify(const Points& ring) const { return Straighten(Thin(ring)); }

 private:
  // Without points closer than the width to the one before: a crossing of more than two edges may be several vertices.
  Points Thin(const Points& ring) const {
    Points kept;
    kept.reserve(ring.size());
    for (const ZBR_PT& p : ring) {
      if (kept.empty() || p.Distance(kept.back()) > width_) kept.push_back(p);
    }
    while (kept.size() > 1 && !(kept.back().Distance(kept[0]) > width_)) kept.pop_back();
    return kept;
  }

  // Without points that lie straight between their neighbours.
  Points Straighten(const Points& ring) const {
    Points kept;
    kept.reserve(ring.size());
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ZBR_PT& before = kept.empty() ? ring.back() : kept.back();
      if (!IsStraight(before, ring[i], ring[i + 1 < ring.size() ? i + 1 : 0])) kept.push_back(ring[i]);
    }
    // The first point was judged by a last one that may be gone.
    if (kept.size() > 2 && IsStraight(kept.back(), kept[0], kept[1])) kept.erase(kept.begin());
    return kept;
  }

  bool IsStraight(const ZBR_PT& before, const ZBR_PT& p, const ZBR_PT& after) const {
    const ZBR_PT d = after - before;
    const double off = Cross(d, p - before);
    return std::fabs(off) <= straight_ * d.Length() && (p - before).InnerProduct(after - p) > 0.0;
  }

  double straight_;
  double width_;
};

// Twice the signed area, computed near the origin.
double TwiceArea(const Points& ring) {
  double sum = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) sum += Cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
  return sum;
}

double Perimeter(const Points& ring) {
  double sum = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) sum += ring[i].Distance(ring[i + 1 < ring.size() ? i + 1 : 0]);
  return sum;
}

bool IsNarrow(const Points& ring, double width) {
  return ring.size() < 3 || !(std::fabs(TwiceArea(ring)) > width * Perimeter(ring));
}

// A loop of the ring's shape, moved and scaled.
std::shared_ptr<ZBR_LOOP> ScaledLoop(const Points& ring, const ZBR_PT& centre, int exponent) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt().reserve(ring.size());
  for (const ZBR_PT& p : ring) {
    loop->pt().emplace_back(std::ldexp(p.x() - centre.x(), exponent), std::ldexp(p.y() - centre.y(), exponent));
  }
  loop->Setup();
  return loop;
}

}  // namespace

std::vector<std::shared_ptr<ZBR_LOOP>> NestRings(std::span<const Ring> rings, std::span<const ZBR_PT> points, double width) {
  if (rings.empty()) return {};
  Box box;
  for (const Ring& ring : rings) {
    for (const std::uint32_t v : ring) box.Add(points[v]);
  }
  const RingShape shape(box, width);
  std::vector<Points> shapes;
  for (const Ring& ring : rings) {
    Points given(ring.size());
    std::transform(ring.begin(), ring.end(), given.begin(), [&](std::uint32_t v) { return points[v]; });
    Points kept = shape.Simplify(given);
    if (!IsNarrow(kept, width)) shapes.push_back(std::move(kept));
  }
  const int exponent = kNestingExponent - std::ilogb(std::max(box.xmax - box.xmin, box.ymax - box.ymin));
  std::vector<std::shared_ptr<ZBR_LOOP>> loops;
  for (const Points& ring : shapes) loops.push_back(ScaledLoop(ring, box.Center(), exponent));
  const std::vector<std::shared_ptr<ZBR_LOOP>> all = loops;
  std::vector<bool> wasPositive(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) wasPositive[i] = all[i]->area() > 0.0;
  {
    const ToleranceScope scope(kBooleanEps);
    zbrMakeLoopTree(loops);
  }
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (wasPositive[i] != (all[i]->area() > 0.0)) std::reverse(shapes[i].begin(), shapes[i].end());
    all[i]->pt() = std::move(shapes[i]);
    all[i]->Reset();
    all[i]->Setup();
  }
  return loops;
}

}  // namespace zbr
