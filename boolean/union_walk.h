// The union of many regions by walking along their crossings.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "arrangement/flat_region.h"

namespace zbr {

// Regions one after the other: their rings, outer ones counter-clockwise and holes clockwise, each region valid, its rings apart
// from each other.
struct UnitedRings {
  const FlatRegion& rings;
  std::span<const std::uint32_t> ends;  // by region: the end of its rings
};

// The rings of what the regions cover together, again apart from each other, with the sources of edges among those of the given
// rings when asked for; no polygons. Nothing when some regions come within some tolerances of each other in another way than to
// cross in the middle of edges, or when crossings lie that close together.
std::optional<FlatRegion> WalkUnion(const UnitedRings& regions, double tolerance, bool withSources);

}  // namespace zbr
