// Whether a ring is plainly convex, which spares looking for what of it meets.
#pragma once

#include <cmath>

#include "core/planar_inline.h"
#include "core/rings.h"

namespace zbr {

// Whether the ring turns to one side at every vertex, by more than `clear` off the line, and once around: then its directions
// change from going right to going left once and back once. For rings of three points and more; linear, in either orientation.
inline bool IsClearlyConvex(RingSpan ring, double clear) {
  const auto goesLeft = [](const ZBR_PT& v) { return v.x() < 0.0 || (v.x() == 0.0 && v.y() < 0.0); };
  unsigned turns = 0;
  unsigned changes = 0;
  ZBR_PT d = ring.front() - ring.back();
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const ZBR_PT e = ring[i + 1 < ring.size() ? i + 1 : 0] - ring[i];
    const double turn = Cross(d, e);
    if (!(std::fabs(turn) > clear * (std::fabs(d.x()) + std::fabs(d.y()) + std::fabs(e.x()) + std::fabs(e.y())))) return false;
    turns |= turn > 0.0 ? 1U : 2U;
    changes += goesLeft(d) != goesLeft(e) ? 1U : 0U;
    d = e;
  }
  return turns != 3U && changes == 2U;
}

}  // namespace zbr
