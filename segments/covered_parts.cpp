#include "segments/covered_parts.h"

#include <algorithm>
#include <cmath>

#include "core/planar_inline.h"
#include "core/radix_sort.h"
#include "core/tolerance_state.h"

namespace zbr {
namespace {

// The range of g over which `other` runs within `width` of it; false when there is none longer than eps.
bool RangeAlong(const ZBR_SEG& g, const ZBR_SEG& other, double eps, double width, std::pair<double, double>& range) {
  const ZBR_PT along = g.e() - g.s();
  const double length2 = along.Length2();
  double t0 = along.InnerProduct(other.s() - g.s()) / length2;
  double t1 = along.InnerProduct(other.e() - g.s()) / length2;
  ZBR_PT p0 = other.s();
  ZBR_PT p1 = other.e();
  if (t0 > t1) {
    std::swap(t0, t1);
    std::swap(p0, p1);
  }
  const double least = eps / std::sqrt(length2);
  range = {std::max(t0, 0.0), std::min(t1, 1.0)};
  if (!(range.second - range.first > least)) return false;
  // Distances at the ends of the common range: a long line may leave g's elsewhere.
  const auto isNear = [&](double t) {
    const ZBR_PT at = p0 + (p1 - p0) * ((t - t0) / (t1 - t0));
    const double c = Cross(along, at - g.s());
    return c * c <= width * width * length2;
  };
  return isNear(range.first) && isNear(range.second);
}

}  // namespace

CoveredParts::CoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width)
    : others_(others), segments_(segments), width_(width) {
  const std::size_t n = segments.size() + others.size();
  std::vector<ZBR_PT> centres(n);
  for (std::size_t i = 0; i < n; ++i) centres[i] = (At(i).s() + At(i).e()) / 2.0;
  order_ = SpatialOrder(centres);
  const std::span<Box> leaves = tree_.StartLeaves(n);
  for (std::size_t i = 0; i < n; ++i) leaves[i] = BoxOfSegment(At(order_[i]).s(), At(order_[i]).e());
  tree_.BuildInner();
}

std::vector<CoveredParts::Gap> CoveredParts::Gaps() const {
  std::vector<Gap> gaps;
  Ranges ranges;
  for (const std::uint32_t i : order_) {  // neighbours in the plane read the same part of the tree
    if (i >= segments_.size()) continue;
    FindCovered(i, ranges);
    const double least = t_tolerance.eps / segments_[i].s().Distance(segments_[i].e());
    double from = 0.0;
    for (const auto& [t0, t1] : ranges) {
      if (t0 - from > least) gaps.push_back({i, from, t0});
      from = std::max(from, t1);
    }
    if (1.0 - from > least) gaps.push_back({i, from, 1.0});
  }
  std::vector<Gap> scratch;
  RadixSort(gaps, scratch, [](const Gap& gap) { return gap.segment; });
  return gaps;
}

void CoveredParts::FindCovered(std::size_t i, Ranges& ranges) const {
  const double eps = t_tolerance.eps;
  const ZBR_SEG& g = segments_[i];
  const Box box = BoxOfSegment(g.s(), g.e()).Widened(width_);
  ranges.clear();
  std::pair<double, double> range;
  tree_.Walk([&box](const Box& node, int, std::uint32_t) { return Overlap(box, node); },
             [&](std::uint32_t leaf) {
               const std::size_t k = order_[leaf];
               const bool counts = k < i || k >= segments_.size();
               if (counts && RangeAlong(g, At(k), eps, width_, range)) ranges.push_back(range);
               return true;
             });
  std::sort(ranges.begin(), ranges.end());
}

}  // namespace zbr
