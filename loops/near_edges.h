// Which edges of two indices come near each other, where boxes say little.
#pragma once

#include <cstdint>
#include <vector>

#include "loops/edge_index.h"

namespace zbr {

// An edge of either index: eight times its leaf, and its place there.
struct EdgePair {
  std::uint32_t a;
  std::uint32_t b;

  bool operator==(const EdgePair&) const = default;
  std::uint64_t Key() const { return std::uint64_t{a} << 32U | b; }
};

// Appends the pairs of edges of `a` and `b` that come within `distance` of each other, and some that come within a few times of it,
// in ascending order. False, the list being of no use, when there are so many that boxes find them as quickly.
bool FindNearEdges(const EdgeIndex& a, const EdgeIndex& b, double distance, std::vector<EdgePair>& pairs);

}  // namespace zbr
