// Whether rings are simple as they stand, without any tolerance.
#pragma once

#include <cstdint>
#include <span>

#include "core/rings.h"

namespace zbr {

enum class ExactSimplicity : std::uint8_t {
  kSimple,    // edges meet in common ends only, and no two boundaries pass through each other there
  kTouching,  // the same but for vertices that lie within edges, which they touch from one side
  kFaulty     // boundaries cross, overlap or fold back somewhere, or an edge has no length
};

// Of all rings together. n log n, however the edges lie.
ExactSimplicity ExactSimplicityOf(std::span<const RingSpan> rings);

}  // namespace zbr
