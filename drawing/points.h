// Points among others, in boxes, and beside edges.
#pragma once

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <algorithm>

namespace zbr::drawing {

// Order by x, then y.
inline bool IsLess(const ZBR_PT& p, const ZBR_PT& q) {
  return p.x() != q.x() ? p.x() < q.x() : p.y() < q.y();
}

// Lets the box reach to p.
inline void Enclose(const ZBR_PT3& p, ZBR_PT3& low, ZBR_PT3& high) {
  low.Set(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
  high.Set(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
}

// How far along an edge, from 0 to 1, its point nearest to p is; 0 on an edge without length.
inline double NearestPart(const ZBR_PT& p, const ZBR_PT& from, const ZBR_PT& to) {
  const ZBR_PT along = to - from;
  const double length2 = along.Length2();
  return length2 > 0 ? std::clamp((p - from).InnerProduct(along) / length2, 0.0, 1.0) : 0.0;
}

}  // namespace zbr::drawing
