// From the contours of a drawing to rings of straight edges: open ends joined, curves flattened.
#pragma once

#include "geometry/drawing.h"

namespace tool {

struct FlattenOptions {
  double deviation = 0.0;  // largest distance between a curve and its chords
  double join = 0.0;       // ends at most this far apart belong together
};

// The default tolerances for drawings of this extent, where the caller gave none (negative).
FlattenOptions WithDefaults(FlattenOptions options, const Extent& extent);

// Fails, naming the line, when a coordinate overflows.
Contours MakeContours(Drawing drawing, const FlattenOptions& options);

// Joins open paths end to end; what closes is marked closed. Deterministic: paths are taken up in file order, each continued with
// the nearest free end, the earlier one on a tie.
std::vector<Path> JoinPaths(std::vector<Path> paths, double tolerance);

}  // namespace tool
