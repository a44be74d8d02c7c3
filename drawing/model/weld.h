// Making one of points that are the same.
#pragma once

#include <zbr/spatial.h>

#include <cstdint>
#include <span>
#include <vector>

namespace zbr::drawing {

// Adds the distinct ones of the points to `kept`, in order of first appearance, and returns for each of them its place there.
// Points are the same when they are equal or closer than `tolerance` to the one that stays. About linear.
std::vector<std::uint32_t> WeldPoints(std::span<const ZBR_PT3> points, double tolerance, unsigned threads,
                                      std::vector<ZBR_PT3>& kept);

}  // namespace zbr::drawing
