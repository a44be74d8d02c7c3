// Splines that are stretches of other splines.
#pragma once

#include <zbr-drawing/drawing.h>

#include <cstddef>
#include <vector>

namespace zbr::drawing {

// What a spline is a stretch of: its parameter t is the parameter start + rate * t of that one.
struct StretchOfSpline {
  std::size_t whole = 0;  // its place in the list
  double start = 0.0, rate = 1.0;

  double At(double t) const { return start + rate * t; }
};

// For each spline one that goes the same way within the tolerance and of which it is all or a stretch, as what was cut from it is,
// whatever its parameters were made into and in whatever direction it runs; itself where there is none.
std::vector<StretchOfSpline> FindWholes(const std::vector<const Spline*>& splines, double tolerance);

}  // namespace zbr::drawing
