// Line work that forks evenly as rings.
#pragma once

#include <zbr-drawing/drawing.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/contours/end_nodes.h"

namespace zbr::drawing {

// The ends by which a ring leaves its nodes, one after another.
using EndCycle = std::vector<std::size_t>;

// Rings of the paths of a connected piece, each path in one of them. `ends` are those of a node each, an even number; of every path
// both have to be there. Rings visit no node twice and pass each other at nodes without crossing. Cycles start at their first node.
std::vector<EndCycle> EvenRings(const std::vector<Path>& paths, const EndNodes& nodes,
                                const std::vector<std::vector<std::size_t>>& ends);

}  // namespace zbr::drawing
