// Where scenes put their parts.
#pragma once

#include <zbr/spatial.h>

#include <algorithm>

namespace zbr::formats {

// Where a node puts what belongs to it: its axes and its origin.
struct Place {
  ZBR_PT3 x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, origin;

  ZBR_PT3 Direction(const ZBR_PT3& d) const { return x * d.x() + y * d.y() + z * d.z(); }
  ZBR_PT3 Point(const ZBR_PT3& p) const { return Direction(p) + origin; }
  Place operator*(const Place& inner) const {
    return {Direction(inner.x), Direction(inner.y), Direction(inner.z), Point(inner.origin)};
  }
  // The same of what is this many times as large.
  Place Of(double size) const { return {x * size, y * size, z * size, origin}; }
  double Stretch() const { return std::max({x.Length(), y.Length(), z.Length()}); }
  bool IsMirror() const { return x.OuterProduct(y).InnerProduct(z) < 0; }
};

}  // namespace zbr::formats
