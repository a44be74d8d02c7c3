// The walk for regions that meet at vertices and along edges.
#pragma once

#include "boolean/open_operations.h"
#include "boolean/region_input.h"

namespace zbr {

// Large operands with few crossings beside their edges, such as a drawing and its revision, or two countries along their border.
// Forms the results that are certain, and valid polygons.
void WalkAlongContacts(const RegionInput& input, OpenOperations& open);

}  // namespace zbr
