// The walk for regions that meet at vertices and along edges.
#pragma once

#include <vector>

#include "boolean/region_input.h"

namespace zbr {

// Large operands with few crossings beside their edges, such as a drawing and its revision, or two countries along their border.
// True when all results are certain, and valid polygons; they are unchanged otherwise.
bool WalkAlongContacts(const RegionInput& input, const ZBR_BOOLEAN_OPE* ops, ZBR_REGION* results, int count);

}  // namespace zbr
