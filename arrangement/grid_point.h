// Points of an integer grid, and exact decisions about them.
//
// Coordinates are whole numbers of at most 2^51 in size, kept as doubles: differences are exact, and the sign of an area is certain
// from doubles alone but for the rare cases that are close, which are computed in 128 bits.
#pragma once

#include <cmath>
#include <cstdint>

#include <zbr/planar.h>

#include "arrangement/int128.h"

namespace zbr {

struct GridPoint {
  double x;
  double y;

  bool operator==(const GridPoint&) const = default;
  ZBR_PT Point() const { return ZBR_PT(x, y); }
};

// Twice the signed area of the triangle a, b, c: positive when c lies left of a->b.
inline Int128 ExactSide(GridPoint a, GridPoint b, GridPoint c) {
  const auto whole = [](double d) { return static_cast<std::int64_t>(d); };
  return Int128::Product(whole(b.x - a.x), whole(c.y - a.y)) - Int128::Product(whole(b.y - a.y), whole(c.x - a.x));
}

// More than the errors of two products and their sum, relative to the products.
inline constexpr double kRounding = 0x1p-51;

// The two products that the area is the difference of, and what their difference can be off by.
struct SideProducts {
  double plus;
  double minus;

  SideProducts(GridPoint a, GridPoint b, GridPoint c) : plus((b.x - a.x) * (c.y - a.y)), minus((b.y - a.y) * (c.x - a.x)) {}
  double Value() const { return plus - minus; }
  double Error() const { return kRounding * (std::fabs(plus) + std::fabs(minus)); }
};

// The sign of that area. Exact.
inline int SideSign(GridPoint a, GridPoint b, GridPoint c) {
  const SideProducts side(a, b, c);
  const double value = side.Value();
  const double error = side.Error();
  if (value > error) return 1;
  if (value < -error) return -1;
  if (error == 0.0) return 0;
  return ExactSide(a, b, c).Sign();
}

// The scalar product of a->b and a->c, rounded.
inline double Along(GridPoint a, GridPoint b, GridPoint c) {
  return (b.x - a.x) * (c.x - a.x) + (b.y - a.y) * (c.y - a.y);
}

// Whether, going along p->q, c comes before d: the sign of the scalar product of p->q and c->d, positive if so. Exact.
inline int AheadSign(GridPoint p, GridPoint q, GridPoint c, GridPoint d) {
  const double x = (q.x - p.x) * (d.x - c.x);
  const double y = (q.y - p.y) * (d.y - c.y);
  const double error = kRounding * (std::fabs(x) + std::fabs(y));
  if (x + y > error) return 1;
  if (x + y < -error) return -1;
  if (error == 0.0) return 0;
  const auto whole = [](double v) { return static_cast<std::int64_t>(v); };
  return (Int128::Product(whole(q.x - p.x), whole(d.x - c.x)) + Int128::Product(whole(q.y - p.y), whole(d.y - c.y))).Sign();
}

// Left to right, and upwards where x is equal: the order of a sweep.
inline bool IsBefore(GridPoint a, GridPoint b) {
  return a.x != b.x ? a.x < b.x : a.y < b.y;
}

}  // namespace zbr
