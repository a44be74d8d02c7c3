// Chords of splines.
#pragma once

#include <zbr-drawing/drawing.h>

#include <vector>

namespace zbr::drawing {

// The parameters strictly between `from` and `to` at which the chords of this stretch meet, in the order of travel; the same ones
// in both directions. No chord is further than `deviation` from the curve, however it runs, unless that would take more than some
// thousand chords between two knots.
std::vector<double> ChordParameters(const Spline& spline, double from, double to, double deviation);

}  // namespace zbr::drawing
