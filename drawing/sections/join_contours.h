// Closing the cuts of meshes that are open.
#pragma once

#include <cstddef>
#include <vector>

#include "drawing/sections/contours.h"

namespace zbr::drawing {

// A cut seen in the view, and the shell that it is of.
struct SeenContour {
  std::vector<ZBR_PT> points;
  std::vector<std::uint32_t> triangles;  // places in the mesh; of joined ones kNoTriangle where a gap was closed
  std::uint32_t shell = 0;
  bool closed = false;
  bool bridged = false;  // closed across an opening
  double along = 0.0;    // cuts with the inside on the left, less those run the other way

  static constexpr std::uint32_t kNoShell = 0xffffffffU;
};

inline constexpr std::uint32_t kNoTriangle = 0xffffffffU;

// Joins open contours end to end, the nearest ends first, up to `gap` apart, and closes those that come back to themselves; and
// those that come back so nearly, alone or one of a shell across an opening to the next, that the openings are a small part of
// their length, as at the holes of scans.
std::vector<SeenContour> JoinContours(std::vector<SeenContour> open, double gap);

}  // namespace zbr::drawing
