// Which pieces of an arrangement bound what its edges wind around.
#pragma once

#include <cstdint>
#include <vector>

#include "arrangement/arrangement.h"

namespace zbr {

// For each piece: 1 when the winding number is positive on its left only, as seen from its `from` to its `to`; -1 when it is so on
// its right only; 0 when both sides are alike. n log n.
std::vector<std::int8_t> BoundarySides(const Arrangement& arrangement);

}  // namespace zbr
