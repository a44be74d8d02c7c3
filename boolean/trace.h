// Turns paths of crossings into loops.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/paths.h"
#include "boolean/search.h"

namespace zbr {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;

// One family of polygons as the tracer reads it.
struct TracedFamily {
  const std::vector<Polygon>* polygons = nullptr;            // in list order
  const std::vector<std::uint32_t>* firstPolygon = nullptr;  // number of each loop's polygon 0
  const std::vector<SearchedPolygon>* seen = nullptr;        // by polygon number
  bool forward = true;
};

// Appends to `result` a loop for each path that encloses more than the tolerance.
void TracePaths(const std::vector<ZBR_CROSS>& crosses, const std::vector<PlacedCrossing>& alongA, const PathFinder& paths,
                const TracedFamily& a, const TracedFamily& b, LoopList& result);

}  // namespace zbr
