// Combinations of loop lists on the exact arrangement, for operands that the walk along crossings can't be certain of.
#pragma once

#include <memory>
#include <vector>

#include <zbr/boolean.h>

#include "arrangement/overlay.h"
#include "boolean/polygons.h"

namespace zbr {

// Whether a place is in the result of an operation, by where it lies in the operands.
bool IsInResult(ZBR_BOOLEAN_OPE op, bool inA, bool inB);

// The largest first.
void SortBySize(LoopList& loops);

// Two operands, each the places that an odd number of its polygons winds around. Polygons that are not finite are left out.
class ExactLoops {
 public:
  ExactLoops(const std::vector<Polygon>& a, const std::vector<Polygon>& b);

  // Nested loops, the largest first, each with its holes. Rings of an area within the thread's tolerance are left out.
  std::vector<std::shared_ptr<ZBR_LOOP>> Combine(ZBR_BOOLEAN_OPE op) const;

 private:
  static std::vector<RingSpan> RingsOf(const std::vector<Polygon>& a, const std::vector<Polygon>& b);

  std::vector<RingSpan> rings_;
  Overlay overlay_;
};

}  // namespace zbr
