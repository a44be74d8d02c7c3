// Whether a peer's result is the same as ours, and which differences are understood.
#pragma once

#include <string>
#include <string_view>

#include "peer.h"

namespace bench {

// One result of one benchmark, beside ours for the same input.
struct Comparison {
  std::string_view peer;
  std::string_view family;
  std::string_view operation;
  Summary result;
  Summary expected;
  double operandArea = 0.0;  // of both operands together: areas are compared relative to it
};

// Returns an empty text when area and number of loops agree, and a note when they differ as this peer is known to on such input.
// Any other difference is thrown as std::runtime_error.
std::string CompareResults(const Comparison& comparison);

// Throws std::runtime_error unless the areas of our five results, in the order of kAllOps, fit together and to the operands'.
void RequireAreaIdentities(const std::vector<Summary>& results, double areaA, double areaB);

}  // namespace bench
