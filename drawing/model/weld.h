// Making one of points that are the same.
#pragma once

#include <zbr/spatial.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Replaces `points` by its distinct ones, in order of first appearance, and returns for each former point its place among them.
// Points are the same when they are equal or closer than `tolerance` to the one that stays. About linear.
std::vector<std::uint32_t> WeldPoints(std::vector<ZBR_PT3>& points, double tolerance, unsigned threads);

}  // namespace zbr::drawing
