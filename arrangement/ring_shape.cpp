#include "arrangement/ring_shape.h"

#include <algorithm>

#include "core/planar_inline.h"

namespace zbr {
namespace {

// The directions in which a line from a fixed point passes all the points that it has to, within a distance.
class Corridor {
 public:
  Corridor(const ZBR_PT& from, double width) : from_(from), width_(width) {}

  // From now on, p is to be passed.
  void Pass(const ZBR_PT& p) {
    const ZBR_PT d = p - from_;
    const ZBR_PT aside = ZBR_PT(-d.y(), d.x()) * (width_ / d.Length());
    if (!bounded_ || Cross(d + aside, left_) > 0.0) left_ = d + aside;
    if (!bounded_ || Cross(right_, d - aside) > 0.0) right_ = d - aside;
    bounded_ = true;
  }
  bool Allows(const ZBR_PT& p) const {
    const ZBR_PT d = p - from_;
    return !bounded_ || (Cross(right_, d) >= 0.0 && Cross(d, left_) >= 0.0);
  }

 private:
  ZBR_PT from_;
  double width_;
  ZBR_PT left_;
  ZBR_PT right_;
  bool bounded_ = false;
};

bool IsStraight(const ZBR_PT& before, const ZBR_PT& p, const ZBR_PT& after, double width) {
  Corridor corridor(before, width);
  corridor.Pass(p);
  return corridor.Allows(after) && (p - before).InnerProduct(after - p) > 0.0;
}

}  // namespace

std::vector<std::uint32_t> ThinnedRing(RingSpan ring, double width) {
  std::vector<std::uint32_t> kept;
  kept.reserve(ring.size());
  for (std::uint32_t i = 0; i < ring.size(); ++i) {
    if (kept.empty() || ring[i].Distance(ring[kept.back()]) > width) kept.push_back(i);
  }
  while (kept.size() > 1 && !(ring[kept.back()].Distance(ring[kept[0]]) > width)) kept.pop_back();
  return kept;
}

std::vector<std::uint32_t> StraightenedRing(RingSpan ring, double width) {
  const std::size_t n = ring.size();
  const auto at = [&](std::size_t i) { return ring[i < n ? i : i - n]; };
  std::size_t start = 0;
  while (start < n && IsStraight(at(start + n - 1), at(start), at(start + 1), width)) ++start;
  if (n == 0) return {};
  if (start == n) {  // a round so fine that no point is a corner by itself: the leftmost has to do
    start = static_cast<std::size_t>(std::min_element(ring.begin(), ring.end(), IsLess) - ring.begin());
  }
  std::vector<std::uint32_t> kept{static_cast<std::uint32_t>(start)};
  Corridor corridor(ring[start], width);
  for (std::size_t i = start + 1; i < start + n; ++i) {
    const ZBR_PT& p = at(i);
    const ZBR_PT next = at(i + 1);
    corridor.Pass(p);
    if (corridor.Allows(next) && (p - ring[kept.back()]).InnerProduct(next - p) > 0.0) continue;
    kept.push_back(static_cast<std::uint32_t>(i < n ? i : i - n));
    corridor = Corridor(p, width);
  }
  return kept;
}

std::vector<std::uint32_t> SimplifiedRing(RingSpan ring, double thin, double straight) {
  std::vector<std::uint32_t> thinned = ThinnedRing(ring, thin);
  std::vector<std::uint32_t> kept = StraightenedRing(PointsAt(ring, thinned), straight);
  for (std::uint32_t& i : kept) i = thinned[i];
  return kept;
}

}  // namespace zbr
