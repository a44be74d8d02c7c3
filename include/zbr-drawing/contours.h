// From the contours of a drawing to rings of straight edges: open ends joined, curves flattened.
//
//   const Contours contours = MakeContours(drawing, WithDefaults({-1, -1}, ExtentOf(drawing)));
//   const Frame frame = Frame::For(ExtentOf(contours.rings));  // frame.h
//   const Region region = MakeRegion(contours, frame);         // region.h
//
// Drawings to be combined need one set of tolerances, from their extents together: what coincides in them then still does.
#pragma once

#include <zbr-drawing/drawing.h>

#include <functional>

namespace zbr::drawing {

struct FlattenOptions {
  double deviation = 0.0;  // largest distance between a curve and its chords
  double join = 0.0;       // ends at most this far apart belong together
};

// The default tolerances for drawings of this extent, where the caller gave none (negative).
FlattenOptions WithDefaults(FlattenOptions options, const Extent& extent);

// Calls visit for every point of the path with its curves replaced by chords, with the vertex at or behind which it is and the part
// of the way from there to the next vertex.
void FlattenPath(const Path& path, double deviation, const std::function<void(const ZBR_PT&, std::size_t, double)>& visit);

// Fails, naming the line, when a coordinate overflows.
Contours MakeContours(Drawing drawing, const FlattenOptions& options);

// Leaves out lines and arcs that repeat an earlier one exactly, and returns how many those were.
std::size_t DropRepeats(std::vector<Path>& paths);

// Joins open paths end to end; what closes is marked closed. Deterministic: paths are taken up in file order, each continued with
// the nearest free end, the earlier one on a tie.
std::vector<Path> JoinPaths(std::vector<Path> paths, double tolerance);

}  // namespace zbr::drawing
