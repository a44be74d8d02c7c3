// Lines in which the facets of coaxial cylinders pass through each other.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/intersections.h>

#include <vector>

#include "drawing/curves/chord_sides.h"

namespace zbr::drawing {

// Leaves out the lines between facets of coaxial cylinders, which never meet in a line but as their division into facets has it.
void DropCoaxial(const Model& model, const Circles& circles, std::vector<IntersectionLine>& lines);

// Those of the lines that lie in the plane of another body's rim, about the same axis and of the same radius as the facet that
// passes through there. Sorted by triangles.
std::vector<ChordSides::Crossing> FindCrossingsOfRims(const Model& model, const Circles& circles,
                                                      const std::vector<IntersectionLine>& lines);

}  // namespace zbr::drawing
