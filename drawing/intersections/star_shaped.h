// Whether all of a closed body can be seen from one place within, as of balls, blocks and most that is round.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "drawing/intersections/exact_sign.h"

namespace zbr::drawing {

// Of a closed shell whose triangles are oriented alike and whose points are `count` from the first on. Such a shell does not meet
// itself: no two triangles have anything in common but corners and edges. False in doubt, too.
bool IsStarShaped(const std::vector<GridPoint>& points, std::uint32_t first, std::uint32_t count,
                  std::span<const std::array<std::uint32_t, 3>> corners);

}  // namespace zbr::drawing
