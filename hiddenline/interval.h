// What the occlusion rules ask of interval lists beside the exported operations.
#pragma once

#include <vector>

#include <zbr/hidden_line.h>

namespace zbr {

using Intervals = std::vector<ZBR_HL_INTERVAL>;

// The whole edge, exactly.
inline bool IsWholeEdge(const Intervals& list) {
  return list.size() == 1 && list[0].s.t == 0.0 && list[0].e.t == 1.0;
}

inline ZBR_PT3 PointAt(const ZBR_PT3& p, const ZBR_PT3& q, double t) {
  return p + (q - p) * t;
}

}  // namespace zbr
