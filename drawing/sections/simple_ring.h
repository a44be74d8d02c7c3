// Regions of rings that bound one as they are.
#pragma once

#include <zbr/region.h>

#include <vector>

namespace zbr::drawing {

// Sets the region to what zbrMakeValidRegion makes of the ring alone, to the bit, where it can be seen at a glance that the ring is
// simple: a few points, far from the edges they are no ends of. False, and nothing done, for others. Quadratic, with few points.
bool SetSimpleRegion(const std::vector<ZBR_PT>& ring, ZBR_REGION& region);

}  // namespace zbr::drawing
