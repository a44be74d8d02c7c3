// Points of rings that say nothing about their shape.
#pragma once

#include <vector>

#include "core/rings.h"

namespace zbr {

// Without points within the width of the one before.
std::vector<ZBR_PT> ThinnedRing(RingSpan ring, double width);

// Without points that lie straight between those that stay, up to the width beside the edge there. All points left out since the
// last one kept are held that near, so that small deviations do not add up. No point may repeat the one before.
std::vector<ZBR_PT> StraightenedRing(RingSpan ring, double width);

}  // namespace zbr
