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
  double t0 = along.InnerProduct(other.s() - g.s());
  double t1 = along.InnerProduct(other.e() - g.s());
  if ((t0 <= 0.0 && t1 <= 0.0) || (t0 >= length2 && t1 >= length2)) return false;
  t0 /= length2;
  t1 /= length2;
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

bool IsWhole(const std::pair<double, double>& range, double least) {
  return !(range.first > least) && !(1.0 - range.second > least);
}

// Sorts the ranges and joins those that overlap.
void Join(std::vector<std::pair<double, double>>& ranges) {
  std::sort(ranges.begin(), ranges.end());
  std::size_t kept = 0;
  for (const auto& range : ranges) {
    if (kept > 0 && range.first <= ranges[kept - 1].second) {
      ranges[kept - 1].second = std::max(ranges[kept - 1].second, range.second);
    } else {
      ranges[kept++] = range;
    }
  }
  ranges.resize(kept);
}

}  // namespace

CoveredParts::CoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width)
    : segments_(segments), width_(width), beside_(segments, others, width) {}

std::vector<CoveredParts::Gap> CoveredParts::Gaps(const Sharing& sharing) const {
  std::vector<ZBR_PT> centres;
  centres.reserve(segments_.size());
  for (const ZBR_SEG& g : segments_) centres.push_back((g.s() + g.e()) / 2.0);
  const std::vector<std::uint32_t> order = SpatialOrder(centres);  // neighbours in the plane read the same part of the trees
  constexpr std::size_t kPiece = 4096;
  std::vector<std::vector<Gap>> parts(Sharing::PieceCount(order.size(), kPiece));
  sharing.InPieces(order.size(), kPiece, [&](std::size_t piece, std::size_t begin, std::size_t end) {
    Ranges ranges;
    for (std::size_t k = begin; k < end; ++k) AddGaps(order[k], ranges, parts[piece]);
  });
  std::vector<Gap> gaps;
  for (const std::vector<Gap>& part : parts) gaps.insert(gaps.end(), part.begin(), part.end());
  std::vector<Gap> scratch;
  RadixSort(gaps, scratch, [](const Gap& gap) { return gap.segment; });
  return gaps;
}

void CoveredParts::AddGaps(std::uint32_t i, Ranges& ranges, std::vector<Gap>& gaps) const {
  FindCovered(i, ranges);
  const double least = t_tolerance.eps / segments_[i].s().Distance(segments_[i].e());
  double from = 0.0;
  for (const auto& [t0, t1] : ranges) {
    if (t0 - from > least) gaps.push_back({i, from, t0});
    from = std::max(from, t1);
  }
  if (1.0 - from > least) gaps.push_back({i, from, 1.0});
}

// Where lines lie on each other by the hundred, the first few cover all there is.
void CoveredParts::FindCovered(std::uint32_t i, Ranges& ranges) const {
  const double eps = t_tolerance.eps;
  const ZBR_SEG& g = segments_[i];
  const double least = eps / g.s().Distance(g.e());
  const Box box = BoxOfSegment(g.s(), g.e()).Widened(width_);
  constexpr std::size_t kMany = 64;
  std::size_t limit = kMany;
  ranges.clear();
  std::pair<double, double> range;
  beside_.ForEach(i, [&](std::uint32_t k) {
    if (k >= i && k < segments_.size()) return true;
    const ZBR_SEG& other = beside_.At(k);
    if (!RangeAlong(g, other, eps, width_, range) || !Overlap(box, BoxOfSegment(other.s(), other.e()))) return true;
    ranges.push_back(range);
    if (ranges.size() >= limit) {
      Join(ranges);
      limit = std::max(kMany, 2 * ranges.size());
      range = ranges.front();
    }
    return !IsWhole(range, least);
  });
  Join(ranges);
}

}  // namespace zbr
