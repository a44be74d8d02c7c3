// What the literal forms need of the plane beside the library's own predicates, which have tests of their own.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include <zbr/planar.h>

namespace literal {

// The tolerance to hand to every function; the thread must have the same, for the predicates.
struct Tol {
  double eps;
  double eps2;
  explicit Tol(double e) : eps(std::abs(e)), eps2(eps * eps) {}
};

inline bool Within(double a, double band) {
  return -band <= a && a <= band;
}
inline bool Finite(const std::vector<ZBR_PT>& ring) {
  return std::all_of(ring.begin(), ring.end(), [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); });
}

}  // namespace literal
