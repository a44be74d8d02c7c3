// From the contours of a drawing to rings of straight edges: open ends joined, curves flattened.
//
//   const Contours contours = MakeContours(drawing, WithDefaults({-1, -1}, ExtentOf(drawing)));
//   const Region region = MakeRegion(contours);  // region.h
//
// Drawings to be combined are best made contours of together: what coincides in them then still does, and where their curves meet
// is exact.
#pragma once

#include <zbr-drawing/drawing.h>

#include <functional>

namespace zbr::drawing {

// What open lines that fork bound. Rings: a connected piece of which an even number of ends meet everywhere is what closed contours
// were before they were cut where they meet, and bounds what they do; of others, what each encloses, divisions within it
// disregarded. Outer: that of all pieces. All: every cell into which all lines of the drawing, closed ones too, cut the plane.
enum class LineFaces { kRings, kOuter, kAll };

struct FlattenOptions {
  double deviation = 0.0;  // largest distance between a curve and its chords
  double join = 0.0;       // ends at most this far apart belong together; with all faces, an end and the middle of an edge, too
  LineFaces faces = LineFaces::kRings;
  bool pens = false;  // edges know what they are drawn with
};

// The default tolerances for drawings of this extent, where the caller gave none (negative).
FlattenOptions WithDefaults(FlattenOptions options, const Extent& extent);

// Calls visit for every point of the path with its curves replaced by chords, with the vertex at or behind which it is and the part
// of the way from there to the next vertex.
void FlattenPath(const Path& path, double deviation, const std::function<void(const ZBR_PT&, std::size_t, double)>& visit);

// Fails, naming the line, when a coordinate overflows. Curves get vertices at fixed parameters, where they begin and end, and where
// they meet lines or each other, in any of the drawings. With faces of all lines, each cell becomes the rings of a polygon.
Contours MakeContours(Drawing drawing, const FlattenOptions& options);
std::vector<Contours> MakeContours(std::vector<Drawing> drawings, const FlattenOptions& options);

// Leaves out lines and arcs that repeat an earlier one exactly, and whole contours that repeat one on their layer, from any vertex
// in either direction. Returns how many those were.
std::size_t DropRepeats(std::vector<Path>& paths);

// Leaves out boundaries of hatches where other contours are drawn, and returns how many those were.
std::size_t DropFillings(std::vector<Path>& paths);

// Open paths joined end to end.
struct LineWork {
  std::vector<Path> contours;             // what closes, marked so, and what is open: dead ends, joined as far as they do not fork
  std::vector<std::vector<Path>> pieces;  // connected open paths that fork, without dead ends; where rings are wanted, not evenly
  std::vector<Fork> forks;                // of the pieces
};

// Ends that are at most `tolerance` apart belong together. The order of the paths does not matter, but that contours are listed by
// the first path of each.
LineWork JoinPaths(std::vector<Path> paths, double tolerance, LineFaces faces = LineFaces::kRings);

}  // namespace zbr::drawing
