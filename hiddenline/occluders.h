// What a shell keeps for the driver's searches, and the boxes it is made from.
#pragma once

#include <cmath>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/box.h"
#include "hiddenline/occluder_tree.h"

namespace zbr {

inline Box BoxOf(const ZBR_HL_TRI& t) {
  return {t.min_x, t.min_y, t.max_x, t.max_y};
}

inline bool HasFiniteExtents(const ZBR_HL_TRI& t) {
  const auto spans = [](double lo, double hi) { return std::isfinite(lo) && std::isfinite(hi); };
  return spans(t.min_x, t.max_x) && spans(t.min_y, t.max_y) && spans(t.min_z, t.max_z);
}

// The boxes of the shell's triangles, by position.
std::vector<Box> BoxesOf(const ZBR_HL_SHELL& shell);

}  // namespace zbr

struct ZBR_HL_SHELL::Occluders {
  explicit Occluders(const ZBR_HL_SHELL& shell);

  zbr::OccluderTree tree;
  // No two triangles share an idx, so that only the triangles named in `adj` can be neighbours.
  bool uniqueIds;
};
