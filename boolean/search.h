// The search for crossings, as the Boolean uses it.
#pragma once

#include <cstdint>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/polygons.h"
#include "loops/simplicity.h"

namespace zbr {

// What the search learns of a polygon besides its crossings. Kept for those who walk the polygon later: to ask the loop again would
// be another wait for memory.
struct SearchedPolygon {
  const ZBR_PT* points = nullptr;
  std::uint32_t count = 0;
  bool hasRepeats = false;  // some edge is no longer than the tolerance
};

// Polygons of A and B, numbered through their lists.
struct PolygonPair {
  std::uint32_t a;
  std::uint32_t b;
};

// How far the crossings can be relied on.
struct SearchReport {
  std::vector<PolygonPair> doubts;    // meet in a way that the search can't be certain of
  std::vector<PolygonPair> contacts;  // come near each other at vertices or along edges
  bool isCoarse = false;              // coordinates are so large that a computed point may lie off its edge
  Simplicity simplicity[2] = {Simplicity::kSimple, Simplicity::kSimple};  // of A and B
};

// Appends the crossings of the polygons of A with those of B; see zbrGetLoopsCross. `seenA` and `seenB`, if not null, receive an
// entry per polygon.
void SearchCrossings(const std::vector<Polygon>& a, const std::vector<Polygon>& b, bool closedB, std::vector<ZBR_CROSS>& crosses,
                     std::vector<SearchedPolygon>* seenA, std::vector<SearchedPolygon>* seenB, SearchReport* report);

}  // namespace zbr
