// The families and sizes of the Booleans that are measured, and what their times are divided by.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "peer.h"
#include "selection.h"
#include "workloads.h"

namespace bench {

const std::vector<Sizes>& BooleanSizes();

// b-a is left out where time is short: it is a-b with the operands exchanged.
inline constexpr Op kFirstOps[] = {Op::kUnion, Op::kIntersection, Op::kAMinusB, Op::kXor};

struct Units {
  std::string name;
  double count = 0.0;
};

// Input edges, or crossings for the combs; pairs for the pairs.
Units UnitsOf(std::string_view family, std::size_t size, const RegionPair& pair);
Units UnitsOf(std::string_view family, std::size_t size, const std::vector<Ring>& rings);
Units UnitsOf(std::string_view family, std::size_t size, const std::vector<RegionPair>& pairs);

}  // namespace bench
