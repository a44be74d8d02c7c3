// Triangles that cover a region.
#pragma once

#include <zbr/region.h>

#include <array>
#include <vector>

namespace zbr::drawing {

// Counter-clockwise. Their points are those of the region and others on its edges. n log n and, besides, as many steps for each
// point as edges pass it at its height.
std::vector<std::array<ZBR_PT, 3>> CoverOf(const ZBR_REGION& region);

}  // namespace zbr::drawing
