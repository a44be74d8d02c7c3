// Clean-up of crossings, as the Boolean uses it.
#pragma once

#include <memory>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/cross_sort.h"

namespace zbr {

// The crossings left after clean-up, in order along both sides.
struct SortedCrossings {
  std::vector<PlacedCrossing> side[2];
};

// See zbrOptimizeCross.
void CleanCrossings(const std::vector<std::shared_ptr<ZBR_LOOP>>& a, const std::vector<std::shared_ptr<ZBR_LOOP>>& b,
                    std::vector<ZBR_CROSS>& crosses, bool bothClosed, SortedCrossings& sorted);

}  // namespace zbr
