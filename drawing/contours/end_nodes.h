// Which ends of open paths meet.
#pragma once

#include <zbr-drawing/drawing.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// End 2 i is the first point of path i, end 2 i + 1 the last one; closed paths and single points have none (kNoNode).
struct EndNodes {
  static constexpr std::uint32_t kNoNode = ~std::uint32_t{0};

  std::vector<std::uint32_t> nodeOf;  // by end
  std::vector<ZBR_PT> points;         // by node, in the order of their coordinates
};

// Ends within the tolerance of each other form a node; see the source for what keeps short lines from collapsing. Independent of
// the order of the paths.
EndNodes FindEndNodes(const std::vector<Path>& paths, double tolerance);

}  // namespace zbr::drawing
