// Points of rings that say nothing about their shape. Those that stay are named by their places in the ring, in order.
#pragma once

#include <cstdint>
#include <vector>

#include "core/rings.h"

namespace zbr {

// Without points within the width of the one before.
std::vector<std::uint32_t> ThinnedRing(RingSpan ring, double width);

// Without points that lie straight between those that stay, up to the width beside the edge there. All points left out since the
// last one kept are held that near, so that small deviations do not add up. No point may repeat the one before.
std::vector<std::uint32_t> StraightenedRing(RingSpan ring, double width);

// What both leave: thinned, then straightened.
std::vector<std::uint32_t> SimplifiedRing(RingSpan ring, double thin, double straight);

inline std::vector<ZBR_PT> PointsAt(RingSpan ring, const std::vector<std::uint32_t>& places) {
  std::vector<ZBR_PT> points;
  points.reserve(places.size());
  for (const std::uint32_t i : places) points.push_back(ring[i]);
  return points;
}

}  // namespace zbr
