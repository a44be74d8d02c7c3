// Engines that combine regions, behind one signature, so that the same pairs can be put to each of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/judge.h"

// With `ends`, polygons as an engine gave them: rings up to ends[k] belong to polygon k, its outer ring first, then its holes.
// Without, rings of a drawing in any order, of which `fill` makes a region.
struct Region {
  std::vector<Ring> rings;
  std::vector<std::size_t> ends;
  JudgeFill fill = kFillEvenOdd;
};

struct Answer {
  Region region;
  bool failed = false;    // the engine gave up
  bool fellBack = false;  // the engine says that it left its fast way
};

struct Engine {
  std::string name;
  std::function<Answer(const Region&, const Region&, ZBR_BOOLEAN_OPE)> combine;
  bool takesFills;      // knows rules other than even-odd
  bool xorSharesEdges;  // its symmetric difference may hold polygons with a common edge
};

// Those whose libraries were found, this library first.
const std::vector<Engine>& Engines();

// Whether the region's polygons are valid by the rules for simple features, all together or each by itself.
bool IsValid(const Region& region, bool eachAlone);
