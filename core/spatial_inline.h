// The tolerant spatial decisions, inline and with the tolerance passed in, for the library's inner loops.
//
// The exported members of ZBR_PT3 are these, with the thread's tolerance. All are computed in the order written: regrouping a sum
// would change results in the last bit, and with them decisions.
#pragma once

#include <cmath>

#include <zbr/spatial.h>

#include "core/planar_inline.h"
#include "core/tolerance_state.h"

namespace zbr {

inline bool SamePoint(const ZBR_PT3& p, const ZBR_PT3& q, double eps2) {
  return WithinTol(p.Distance2(q), eps2);
}

// Side of the projected line through a and b, which are known to differ in space: c*c / |d|^2 is the squared distance from the
// line. A line of no projected direction gives 0/0, which is no side, or, at a rounding error, an infinite distance.
inline int SideOfLineXY(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b, double eps2) {
  const ZBR_PT d = b.xy() - a.xy();
  const double c = Cross(d, p.xy() - a.xy());
  if (c * c / d.Length2() > eps2) return c > 0.0 ? 1 : -1;
  return 0;
}

}  // namespace zbr
