// Which rims are drawn as wholes: of several in one place these make the better curve.
#pragma once

#include <cstdint>
#include <vector>

#include "drawing/views/drawn_segments.h"

namespace zbr::drawing {

// What is no chord of a circle has a rank behind all rims.
inline constexpr std::uint32_t kNoRim = 0xffffffffU;

// By line the rank of its rim, which is what one shell has of a circle: first the rims of which more is drawn, of these the nearer
// ones, then the earlier shells'. Empty if no line is a chord. `lines` stand in the order of their shells. Linear in these.
std::vector<std::uint32_t> RankRims(const DrawnSegments& drawn, double contact, const std::vector<DrawnSegment>& lines);

}  // namespace zbr::drawing
