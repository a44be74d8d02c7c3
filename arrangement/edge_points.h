// Directed edges by their points, those that they share once.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/rings.h"

namespace zbr {

struct DirectedEdge {
  ZBR_PT from;
  ZBR_PT to;
};

// Edge i begins at point i. It mostly ends where the next one begins, or where the first of its chain did; ends that are no such
// place stand behind the points at which edges begin.
class EdgePoints {
 public:
  explicit EdgePoints(std::span<const DirectedEdge> edges);
  explicit EdgePoints(std::span<const RingSpan> rings);  // of finite points
  // Some edges of others.
  EdgePoints(const EdgePoints& all, std::span<const std::uint32_t> chosen);

  // A point of no edge. Returns its place.
  std::uint32_t AddPoint(const ZBR_PT& p) {
    points_.push_back(p);
    return static_cast<std::uint32_t>(points_.size() - 1);
  }

  std::uint32_t size() const { return static_cast<std::uint32_t>(to_.size()); }
  std::uint32_t To(std::uint32_t edge) const { return to_[edge]; }
  DirectedEdge operator[](std::uint32_t edge) const { return {points_[edge], points_[to_[edge]]}; }
  const std::vector<ZBR_PT>& points() const { return points_; }

 private:
  template <class EndOf>
  void Join(EndOf endOf);
  void AddEnd(std::uint32_t count, const ZBR_PT& end, std::uint32_t& chain);

  std::vector<ZBR_PT> points_;
  std::vector<std::uint32_t> to_;
};

}  // namespace zbr
