// Rings that are star-shaped beyond doubt.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/planar_inline.h"
#include "core/rings.h"

namespace zbr {

// Whether the ring runs once around the middle of its points, every edge clearly forwards, so that it is simple and comes `near`
// itself nowhere but at the ends of edges. Seen from the middle edges fill sectors of their own. With L the largest distance of a
// vertex and C twice the least area of the triangles that the edges make with the middle, no edge comes nearer to it than C / 2L,
// and the sine of no sector is less than C / L2; so what another sector lies between is at least C2 / 2L3 apart.
inline bool IsClearlyStarShaped(RingSpan ring, double near) {
  ZBR_PT middle;
  for (const ZBR_PT& p : ring) middle += p;
  middle = middle / static_cast<double>(ring.size());
  ZBR_PT from = ring.back() - middle;
  double least = HUGE_VAL;  // of C, by sign
  double most = -HUGE_VAL;
  double reach2 = 0.0;
  unsigned changes = 0;  // from below the middle to above it, and back
  for (const ZBR_PT& p : ring) {
    const ZBR_PT to = p - middle;
    const double cross = Cross(from, to);
    least = std::min(least, cross);
    most = std::max(most, cross);
    reach2 = std::max(reach2, to.Length2());
    changes += (from.y() < 0.0) != (to.y() < 0.0) ? 1U : 0U;
    from = to;
  }
  const double c = least > 0.0 ? least : -most;
  constexpr double kRoom = 4.0;  // for rounding, twice over
  return c > 0.0 && changes == 2 && c * c > kRoom * near * reach2 * std::sqrt(reach2);
}

}  // namespace zbr
