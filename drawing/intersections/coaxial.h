// Lines in which the facets of coaxial cylinders pass through each other.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/intersections.h>

#include <vector>

namespace zbr::drawing {

// Leaves out the lines between facets of coaxial cylinders, which never meet in a line but as their division into facets has it.
void DropCoaxial(const Model& model, const Circles& circles, std::vector<IntersectionLine>& lines);

}  // namespace zbr::drawing
