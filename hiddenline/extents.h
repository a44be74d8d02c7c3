// The extents of triangles, apart from the bulky records they belong to.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include <zbr/hidden_line.h>

#include "core/box.h"
#include "core/constants.h"

namespace zbr {

struct Extents {
  Box box;
  double minZ = std::numeric_limits<double>::infinity();
  double maxZ = -std::numeric_limits<double>::infinity();

  bool empty() const { return minZ > maxZ; }
  void Add(const Extents& e) {
    box.Add(e.box);
    minZ = std::min(minZ, e.minZ);
    maxZ = std::max(maxZ, e.maxZ);
  }
};

inline Box BoxOf(const ZBR_HL_TRI& t) {
  return {t.min_x, t.min_y, t.max_x, t.max_y};
}

inline Extents ExtentsOf(const ZBR_HL_TRI& t) {
  return {BoxOf(t), t.min_z, t.max_z};
}

// False for what is not finite, and for what is too large to compute with.
inline bool IsUsable(double c) {
  return std::fabs(c) <= kLargestCoordinate;
}

inline bool IsUsable(const Extents& e) {
  return IsUsable(e.box.xmin) && IsUsable(e.box.xmax) && IsUsable(e.box.ymin) && IsUsable(e.box.ymax) && IsUsable(e.minZ) &&
         IsUsable(e.maxZ);
}

}  // namespace zbr
