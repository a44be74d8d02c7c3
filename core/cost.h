// Work counted instead of timed: what searches do most often, so that a test can tell n log n from n^2 on any machine.
//
// Counted where ZBR_CHECKS is defined. Elsewhere ZBR_COUNT is nothing, and there is no state.
#pragma once

#if defined(ZBR_CHECKS)

#include <cstdint>

namespace zbr {

struct Cost {
  std::uint64_t nodes = 0;      // boxes of hierarchies that were looked at
  std::uint64_t pairs = 0;      // pairs of edges, rings or triangles handed to an exact test
  std::uint64_t crossings = 0;  // crossings looked at while they are cleaned, ordered and chained
};

inline thread_local Cost t_cost;

}  // namespace zbr

#define ZBR_COUNT(what, n) (zbr::t_cost.what += static_cast<std::uint64_t>(n))

#else

#define ZBR_COUNT(what, n) static_cast<void>(0)

#endif
