#include "arrangement/edge_points.h"

#include "core/planar_inline.h"

namespace zbr {

// The ends of all edges, one after the other.
template <class EndOf>
void EdgePoints::Join(EndOf endOf) {
  const auto count = static_cast<std::uint32_t>(points_.size());
  to_.reserve(count);
  std::uint32_t chain = 0;
  for (std::uint32_t i = 0; i < count; ++i) AddEnd(count, endOf(i), chain);
}

// Of the next of so many edges. `chain` is where its chain began, and becomes where the next edge's did.
void EdgePoints::AddEnd(std::uint32_t count, const ZBR_PT& end, std::uint32_t& chain) {
  const auto next = static_cast<std::uint32_t>(to_.size()) + 1;
  const bool goesOn = next < count && AreIdentical(end, points_[next]);
  const bool closes = !goesOn && AreIdentical(end, points_[chain]);
  to_.push_back(goesOn ? next : closes ? chain : static_cast<std::uint32_t>(points_.size()));
  if (!goesOn && !closes) points_.push_back(end);
  if (!goesOn) chain = next;
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
  const auto count = static_cast<std::uint32_t>(points_.size());
  to_.reserve(count);
  std::uint32_t chain = 0;
  for (const RingSpan& ring : rings) {
    for (std::size_t k = 1; k < ring.size(); ++k) to_.push_back(static_cast<std::uint32_t>(to_.size()) + 1);
    if (!ring.empty()) AddEnd(count, ring[0], chain);
  }
}

}  // namespace zbr
