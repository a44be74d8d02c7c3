// Whether rings are simple as they stand, without any tolerance.
#pragma once

#include "loops/edge_index.h"

namespace zbr {

enum class ExactSimplicity : std::uint8_t {
  kSimple,  // edges meet in common ends only, and no two boundaries pass through each other there
  kFaulty,  // they cross, overlap or fold back somewhere, or a vertex lies within another edge
  kUnknown  // so many edges meet in one place that they were not all compared
};

// Of the rings in the index, none of whose edges is without length. n log n, and pairs of edges with common boxes.
ExactSimplicity ExactSimplicityOf(const EdgeIndex& index);

}  // namespace zbr
