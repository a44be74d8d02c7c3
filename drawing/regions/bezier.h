// Stretches of curves in a form that can be integrated.
#pragma once

#include <zbr-drawing/drawing.h>

#include <utility>
#include <vector>

namespace zbr::drawing {

// A point of a curve and its derivative by the parameter.
struct Motion {
  ZBR_PT at, along;
};

// A Bezier curve over [0, 1], rational where it has weights.
struct Bezier {
  std::vector<ZBR_PT> control;
  std::vector<double> weights;

  Motion At(double t) const;
  std::pair<Bezier, Bezier> Halves() const;
};

// The stretch t0 to t1 of a curve's spline, knot by knot.
std::vector<Bezier> PiecesOf(const Curve& curve);

// The area between the stretch of a curve's spline and its chord: positive where the stretch and the way back bound it
// counter-clockwise.
double SplineArea(const Curve& curve);

}  // namespace zbr::drawing
