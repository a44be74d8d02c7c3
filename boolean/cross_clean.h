// Clean-up of crossings, as the Boolean uses it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/cross_sort.h"

namespace zbr {

// What tracing needs of a crossing, close together: paths meet the crossings in an order of their own, and every record they touch
// is a wait for memory.
struct TracedCrossing {
  ZBR_PT pt;
  double pos[2];  // along A and B
};

// The crossings left after clean-up, in order along both sides.
struct SortedCrossings {
  std::vector<PlacedCrossing> side[2];
  std::vector<TracedCrossing> traced;    // by place along A
  std::vector<std::uint32_t> placesOnB;  // of the same
};

// Which families hold rings that touch each other or themselves.
struct Touching {
  bool a = false;
  bool b = false;
};

// See zbrOptimizeCross. Returns whether what is left is certain: no ring was crossed one way only, crossings that count as one
// place lie in one place but for rounding, those that do not lie apart, and along every ring B's boundary goes to the left and to
// the right in turn but for stretches that the two rings share.
bool CleanCrossings(const std::vector<std::shared_ptr<ZBR_LOOP>>& a, const std::vector<std::shared_ptr<ZBR_LOOP>>& b,
                    std::vector<ZBR_CROSS>& crosses, bool bothClosed, SortedCrossings& sorted, Touching touching);

}  // namespace zbr
