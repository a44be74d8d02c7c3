// The intersection lines of a drawing.
#pragma once

#include <zbr-drawing/intersections.h>

#include <vector>

namespace zbr::drawing {

// What FindIntersections finds, and the parts of more than 45 degrees of curves that it leaves out as contact: what is left of
// those is open curves.
std::vector<IntersectionLine> FindSeams(const Model& model, double contact, unsigned threads);

}  // namespace zbr::drawing
