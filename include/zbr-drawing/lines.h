// The lines of a drawing: polylines in space, to be cut where a region in the plane begins and ends.
#pragma once

#include <zbr-drawing/contours.h>
#include <zbr-drawing/drawing.h>
#include <zbr/spatial.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::drawing {

struct SpaceLine {
  std::vector<ZBR_PT3> points;           // of a closed one the last repeats the first
  std::string_view layer;                // kept by the names of the drawing it was read from
  std::vector<EdgeOrigin> origins = {};  // by edge, where the drawing or the region it meets has curves
  Path outline = {};                     // the same with curves, where there are origins and no heights
  std::string_view lineType = {};        // kept like the layer
  int colour = kColourByLayer;

  bool IsClosed() const;
  double Length() const;
};

// A named result in the coordinates of the drawing.
struct LineLayer {
  std::string name;
  std::string side;  // of the region: "inside" or "outside"
  std::vector<SpaceLine> lines;

  double Length() const;
};

// Every contour of the drawing as a line of its own, open or closed, curves flattened. Fails, naming the line of the file, when a
// coordinate is above 1e300. What has only one point is left out.
std::vector<SpaceLine> MakeLines(const Drawing& drawing, const FlattenOptions& options);

// The same for lines that a region is to cut, together with the contours of its drawing: where curves meet is a vertex of both.
std::vector<SpaceLine> MakeLines(const Drawing& drawing, Drawing region, const FlattenOptions& options, Contours& contours);

// What edges from origins.size() + 1 points in a row stand for: an open path, or a closed one.
Path OutlineOf(const std::vector<ZBR_PT>& points, const std::vector<EdgeOrigin>& origins, const std::vector<Curve>& curves);

// Whether the drawing tells heights; else those of the lines are 0 and need not be written.
bool HasHeights(const Drawing& drawing);

Extent ExtentOf(const std::vector<SpaceLine>& lines);

}  // namespace zbr::drawing
