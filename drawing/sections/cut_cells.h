// Cuts of bodies that share walls.
#pragma once

#include <vector>

#include "drawing/sections/join_contours.h"

namespace zbr::drawing {

// What contours enclose together where three and more of them end at one place.
struct CutCells {
  std::vector<SeenContour>
      rings;                      // around each cell of material, the inside on the left; each of the shell with most of its border
  std::vector<SeenContour> used;  // the contours along them
  std::vector<SeenContour> walls;  // those of `used` that part cells of one shell
};

// Takes from the open contours those that bound cells. Ends are at one place where their points are equal, as those of triangles at
// one edge are. n log n.
CutCells TakeCells(std::vector<SeenContour>& open);

}  // namespace zbr::drawing
