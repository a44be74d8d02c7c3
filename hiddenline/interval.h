// What the occlusion rules ask of interval lists beside the exported operations.
#pragma once

#include <span>
#include <vector>

#include <zbr/hidden_line.h>

namespace zbr {

using Intervals = std::vector<ZBR_HL_INTERVAL>;

// The whole edge, exactly.
inline bool IsWholeEdge(std::span<const ZBR_HL_INTERVAL> list) {
  return list.size() == 1 && list[0].s.t == 0.0 && list[0].e.t == 1.0;
}

// Intersects the list of an edge with what an occluder leaves of it, and cleans it up. Where both have an end at one parameter, the
// points computed for it may differ in the last bit, and both lists get the smaller one, lest the order in which occluders are
// taken decide.
void Intersect(Intervals& list, std::span<ZBR_HL_INTERVAL> left, Intervals& work);

inline ZBR_PT3 PointAt(const ZBR_PT3& p, const ZBR_PT3& q, double t) {
  return p + (q - p) * t;
}

}  // namespace zbr
