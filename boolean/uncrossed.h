// The polygons that no crossing touches: where they lie, and which of them an operation keeps.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/polygons.h"

namespace zbr {

// A polygon without crossings and how it lies in the other family.
struct UncrossedPolygon {
  const Polygon* polygon;
  ZBR_LOOP_REL relation;
};

// Relations of those of `polygons` that are not `touched` to the loop list `other`: to the innermost loop that contains them, since
// an island in a hole is a later loop of the list.
std::vector<UncrossedPolygon> RelateUncrossed(const std::vector<Polygon>& polygons, const std::vector<bool>& touched,
                                              const std::vector<Polygon>& other);

// Whether `op` keeps it. side: 0 for a polygon of A, 1 for one of B.
bool IsKept(ZBR_BOOLEAN_OPE op, int side, bool isHole, ZBR_LOOP_REL relation);

}  // namespace zbr
