// The borders of polylines that have a width.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>

#include <cmath>
#include <vector>

namespace zbr::formats {

struct WideVertex {
  ZBR_PT at;
  double bulge = 0.0;                       // of the edge to the next vertex
  double startWidth = 0.0, endWidth = 0.0;  // of that edge
};

// An arc that flat is a line, and its centre would be all rounding.
inline bool IsArc(double bulge) {
  constexpr double kStraight = 1e-9;
  return std::abs(bulge) >= kStraight;
}

// What bounds the band that is drawn: a closed path, or for a closed polyline two, one on each side. Needs two vertices that
// differ. Edges are mitred where they meet, cut off where they turn back sharply. Arcs keep their centre; of those that change
// their width the borders are arcs of the right ends.
std::vector<Path> BordersOf(const std::vector<WideVertex>& vertices, bool closed);

}  // namespace zbr::formats
