// Places on a closed boundary by parameter: the number of an edge plus the position along it.
#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include <zbr/planar.h>

namespace zbr {

// Whether t names a place on a boundary of n points. The end of the last edge may arrive as n (an index plus a parameter rounds
// up). False for NaN, and where there is no point.
inline bool IsOnBoundary(double t, std::size_t n) {
  return n != 0 && t >= 0.0 && t <= static_cast<double>(n);
}

// The end of the last edge is vertex 0.
inline double FoldedParameter(double t, std::size_t n) {
  return t == static_cast<double>(n) ? 0.0 : t;
}

// The point at parameter t; NaN where t names none.
inline ZBR_PT BoundaryPoint(const std::vector<ZBR_PT>& p, double t) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  if (!IsOnBoundary(t, p.size())) return {kNone, kNone};
  t = FoldedParameter(t, p.size());
  const double whole = std::floor(t);
  const auto i = static_cast<std::size_t>(whole);
  const std::size_t j = i + 1 == p.size() ? 0 : i + 1;
  return p[i] + (p[j] - p[i]) * (t - whole);
}

}  // namespace zbr
