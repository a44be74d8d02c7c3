// Which parts of a set of segments nothing else runs over.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/sharing.h"

namespace zbr {

// A part of a segment, longer than the tolerance, that is not covered.
struct Gap {
  std::uint32_t segment;
  double from;  // parameters along the segment
  double to;
};

// All of them, by segment and then along it. A segment is covered where a segment of `others`, or an earlier one of `segments`,
// runs no farther than `width` beside it. About n log n (beside.h); linear as far as segments repeat each other.
std::vector<Gap> UncoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width,
                                const Sharing& sharing = Sharing());

}  // namespace zbr
