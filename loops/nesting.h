// Which loop of a list each loop is nested in.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <zbr/loop.h>

#include "loops/include.h"

namespace zbr {

inline constexpr std::uint32_t kNoParent = 0xffffffff;

// Inserts the loops one by one, in the given order, into a forest that starts empty, and returns each loop's parent at the end.
// Inserting L: go down, at every level into the first loop (in order) that L lies inside; hang L there; loops of that level that
// lie inside L move below it. Lists of the forest are always in the given order, so the parents say all.
// The loops must be set up and have three points or more.
std::vector<std::uint32_t> NestLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, double eps);

// The same by geometry alone, for loops nested so deep that going down level by level is too slow. Works only if no two loops come
// within the tolerance of each other and every parent precedes its children in the order; otherwise it returns false.
bool NestSeparateLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, std::span<LoopProbe> probes, double eps,
                       IncludeScratch& scratch, std::vector<std::uint32_t>& parents);

}  // namespace zbr
