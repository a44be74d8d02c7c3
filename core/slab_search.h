// Pairs of segments that come near each other, found without boxes.
//
// Boxes around long slanted segments that lie beside each other overlap, every two of them, however far the segments keep apart.
// Slabs tell them apart: where segments go all across a slab between two vertical lines, those that meet are those whose order on
// the left differs from that on the right.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include <zbr/planar.h>

namespace zbr {

struct SlabSegment {
  ZBR_PT p;
  ZBR_PT q;
};

// Calls visit(i, j), i < j, for all pairs of segments within `distance` of each other, and for some that are within a few times of
// that; in no order, and for some more than once. Rounding of coordinates is allowed for. False as soon as a visit says so.
// n log^2 n, and the pairs; where segments that cross a slab also cross each other, those that end in it are compared with each of
// the layers that they make.
bool SearchSlabs(std::span<const SlabSegment> segments, double distance,
                 const std::function<bool(std::uint32_t, std::uint32_t)>& visit);

}  // namespace zbr
