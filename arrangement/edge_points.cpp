#include "arrangement/edge_points.h"

#include "core/planar_inline.h"

namespace zbr {

// The ends of the edges are asked for one after the other.
template <class EndOf>
void EdgePoints::Join(EndOf endOf) {
  const auto count = static_cast<std::uint32_t>(points_.size());
  to_.resize(count);
  std::uint32_t chain = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const ZBR_PT end = endOf(i);
    const bool goesOn = i + 1 < count && AreIdentical(end, points_[i + 1]);
    const bool closes = !goesOn && AreIdentical(end, points_[chain]);
    to_[i] = goesOn ? i + 1 : closes ? chain : static_cast<std::uint32_t>(points_.size());
    if (!goesOn && !closes) points_.push_back(end);
    if (!goesOn) chain = i + 1;
  }
}

EdgePoints::EdgePoints(std::span<const DirectedEdge> edges) {
  points_.reserve(edges.size() + edges.size() / 8);
  for (const DirectedEdge& e : edges) points_.push_back(e.from);
  Join([&](std::uint32_t i) { return edges[i].to; });
}

EdgePoints::EdgePoints(const EdgePoints& all, std::span<const std::uint32_t> chosen) {
  points_.reserve(chosen.size() + chosen.size() / 8);
  for (const std::uint32_t edge : chosen) points_.push_back(all.points()[edge]);
  Join([&](std::uint32_t i) { return all[chosen[i]].to; });
}

EdgePoints::EdgePoints(std::span<const RingSpan> rings) {
  points_.reserve(CountPoints(rings));
  for (const RingSpan& ring : rings) points_.insert(points_.end(), ring.begin(), ring.end());
  std::size_t ring = 0, begin = 0;
  Join([&](std::uint32_t i) {
    while (i == begin + rings[ring].size()) begin += rings[ring++].size();
    return rings[ring][i + 1 < begin + rings[ring].size() ? i + 1 - begin : 0];
  });
}

}  // namespace zbr
