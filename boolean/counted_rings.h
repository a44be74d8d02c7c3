// The rings of several regions, made ready to be counted: outer rings counter-clockwise, holes clockwise.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/region.h>

#include "arrangement/flat_region.h"

namespace zbr {

// Whether the rings are simple and keep apart.
bool AreSimple(std::span<const RingSpan> rings, double tolerance);

// Rings by size, the largest first, and the place in that order of the one that each lies directly in, or kNoParent.
struct NestedRings {
  std::vector<std::uint32_t> order;
  std::vector<std::uint32_t> parents;

  // Of rings that are simple and apart.
  NestedRings(std::span<const RingSpan> rings, double tolerance);
};

// The rings of all regions as they are to be counted, with their sources in the rings that were given.
class CountedRings {
 public:
  CountedRings(double tolerance, ZBR_FILL_RULE rule, bool withSources)
      : tolerance_(tolerance), rule_(rule), withSources_(withSources) {}

  void Add(std::span<const RingSpan> rings);

  const FlatRegion& region() const { return region_; }
  // By region that was added: the end of its rings.
  const std::vector<std::uint32_t>& ends() const { return ends_; }
  // Whether a region's rings do not touch.
  bool AreApart(std::size_t i) const { return areApart_[i]; }
  bool WasExact() const { return wasExact_; }

 private:
  bool IsCountedSimply(std::span<const RingSpan> rings) const;
  void AddSimple(std::span<const RingSpan> rings);
  void AddTurned(RingSpan ring, bool isCounterClockwise, std::uint32_t firstEdge);
  void AddFlat(const FlatRegion& flat);
  void AddSource(const FlatSource& source) { region_.sources.push_back(source); }
  void EndEdge() { region_.sourceEnds.push_back(static_cast<std::uint32_t>(region_.sources.size())); }
  void EndRing() { region_.ringEnds.push_back(static_cast<std::uint32_t>(region_.points.size())); }

  double tolerance_;
  ZBR_FILL_RULE rule_;
  bool withSources_;
  std::uint32_t firstEdge_ = 0;  // of the next region
  FlatRegion region_;
  std::vector<std::uint32_t> ends_;
  std::vector<bool> areApart_;
  bool wasExact_ = false;
};

}  // namespace zbr
