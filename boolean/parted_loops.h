// Combinations of loop lists of which some part can't be walked.
#pragma once

#include <memory>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/polygons.h"

namespace zbr {

class LoopPart;

// Two operands by clusters of loops that keep apart: walked where the walk along crossings is certain, through the exact
// arrangement elsewhere.
class PartedLoops {
 public:
  // The polygons as PolygonsOf lists them. `op` is one of the operations to come: walking is tried for it.
  PartedLoops(const std::vector<Polygon>& a, const std::vector<Polygon>& b, ZBR_BOOLEAN_OPE op);
  ~PartedLoops();

  // Nested loops, the largest first, each with its holes.
  LoopList Combine(ZBR_BOOLEAN_OPE op);
  // Whether something went through the exact arrangement so far.
  bool WasExact() const { return wasExact_; }

 private:
  std::vector<std::unique_ptr<LoopPart>> parts_;
  bool wasExact_ = false;
};

}  // namespace zbr
