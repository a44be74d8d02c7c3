// Whether the border of a part of a surface, seen in a picture, winds round nothing more than once.
#pragma once

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// In the picture, in whole numbers of up to 51 binary digits.
struct PicturePoint {
  double x = 0.0, y = 0.0;
};

// With the part on its left.
struct BorderEdge {
  std::uint32_t from = 0, to = 0;  // numbers of points
  PicturePoint a, b;
};

// On which side of the line from a to b lies c: 1 on the left, -1 on the right, 0 where rounding does not let it be told.
int ClearSide(const PicturePoint& a, const PicturePoint& b, const PicturePoint& c);

// False also where edges touch other than at a common point, for more than some dozens of rings, and in doubt.
bool WindsOnce(const std::vector<BorderEdge>& edges);

}  // namespace zbr::drawing
