// Grid cells for finding what lies within the tolerance.
#pragma once

#include <cmath>

namespace zbr {

// The cell of a coordinate on a grid of cells `width` tolerances wide. Zero tolerance makes every value a cell of its own; adding
// zero makes the two zeros one.
inline double CellOf(double c, double width, double eps) {
  return (eps > 0.0 ? std::floor(c / (width * eps)) : c) + 0.0;
}

}  // namespace zbr
