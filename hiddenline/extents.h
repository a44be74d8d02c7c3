// The extents of triangles, apart from the bulky records they belong to.
#pragma once

#include <cmath>

#include <zbr/hidden_line.h>

#include "core/box.h"

namespace zbr {

struct Extents {
  Box box;
  double minZ;
  double maxZ;
};

inline Box BoxOf(const ZBR_HL_TRI& t) {
  return {t.min_x, t.min_y, t.max_x, t.max_y};
}

inline Extents ExtentsOf(const ZBR_HL_TRI& t) {
  return {BoxOf(t), t.min_z, t.max_z};
}

inline bool IsFinite(const Extents& e) {
  const auto spans = [](double lo, double hi) { return std::isfinite(lo) && std::isfinite(hi); };
  return spans(e.box.xmin, e.box.xmax) && spans(e.box.ymin, e.box.ymax) && spans(e.minZ, e.maxZ);
}

}  // namespace zbr
