// Workloads as the integer paths of Clipper 6.4.
#pragma once

#include <polyclipping/clipper.hpp>
#include <vector>

#include "peer.h"
#include "workloads.h"

namespace bench {

// Outer rings and holes.
std::vector<Ring> RingsOf(const Region& region);

double LargestCoordinate(const std::vector<Ring>& rings);

// The largest power of two that keeps coordinates within 30 bits, where Clipper multiplies in plain 64-bit integers. Beyond that it
// turns to a slow 128-bit arithmetic, and the measurement would be of that. Finer than `finest` gains nothing: by default the grid
// of the workloads.
double ScaleFor(double largest, double finest = 0x1p20);

ClipperLib::Path Scaled(const Ring& ring, double scale);
ClipperLib::Paths Scaled(const std::vector<Ring>& rings, double scale);

// Clipper gives holes the opposite orientation, so that their areas are negative.
Summary Summarise(const ClipperLib::Paths& paths, double scale);
Summary Summarise(const ClipperLib::PolyTree& tree, double scale);

}  // namespace bench
