// Turns paths of crossings into loops.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/paths.h"
#include "boolean/search.h"
#include "core/rings.h"

namespace zbr {

// What the operations of one call trace in common.
struct TracedRegions {
  std::vector<TracedCrossing> crossings;     // by place along A
  std::vector<SearchedPolygon> polygons[2];  // of each run along A and B
};

// Appends to `result` a loop for each path that encloses more than the tolerance. The paths were found with these directions.
void TracePaths(const TracedRegions& regions, const PathFinder& paths, bool forwardA, bool forwardB, LoopList& result);

}  // namespace zbr
