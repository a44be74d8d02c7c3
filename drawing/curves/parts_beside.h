// Which part of a segment runs beside another.
#pragma once

#include <zbr/planar.h>

#include <algorithm>
#include <cmath>

namespace zbr::drawing {

// Of a segment, from 0 to 1; empty if not from < to.
struct Part {
  double from, to;
};
inline constexpr Part kNoPart{1.0, 0.0};

// Widens the part by where the segment is within `reach` of a point.
inline void AddDisc(const ZBR_SEG& s, const ZBR_PT& centre, double reach, Part& part) {
  const ZBR_PT d = s.e() - s.s(), o = s.s() - centre;
  const double along = d.Length2(), half = o.InnerProduct(d), root = half * half - along * (o.Length2() - reach * reach);
  if (!(root >= 0) || !(along > 0)) return;
  part.from = std::min(part.from, std::max((-half - std::sqrt(root)) / along, 0.0));
  part.to = std::max(part.to, std::min((-half + std::sqrt(root)) / along, 1.0));
}

// The part of a segment whose coordinate, at0 at its start and at1 at its end, is between two values.
inline Part PartBetween(double at0, double at1, double low, double high) {
  if (at0 == at1) return at0 >= low && at0 <= high ? Part{0.0, 1.0} : kNoPart;
  const double t0 = (low - at0) / (at1 - at0), t1 = (high - at0) / (at1 - at0);
  return {std::max(std::min(t0, t1), 0.0), std::min(std::max(t0, t1), 1.0)};
}

// A segment beside another, both of some length: the part of it that runs there, and of that the part that is within reach.
struct Side {
  Part along, near;

  Side(const ZBR_SEG& s, const ZBR_SEG& other, double reach) {
    const ZBR_PT unit = (other.e() - other.s()) * (1.0 / other.s().Distance(other.e()));
    const ZBR_PT a = s.s() - other.s(), b = s.e() - other.s();
    along = PartBetween(unit.InnerProduct(a), unit.InnerProduct(b), 0.0, other.s().Distance(other.e()));
    const Part close = PartBetween(unit.OuterProduct(a), unit.OuterProduct(b), -reach, reach);
    near = {std::max(along.from, close.from), std::min(along.to, close.to)};
  }

  // Whether all that runs there is within reach, and that much longer than the reach that it does not merely cross.
  bool IsOneLine(double length, double reach) const {
    constexpr double kLong = 20.0;
    return near.from <= along.from && near.to >= along.to && (along.to - along.from) * length >= kLong * reach;
  }
};

}  // namespace zbr::drawing
