// Directions of triangles and what follows from them for their edges.
#pragma once

#include <zbr-drawing/model.h>

#include <cstddef>

namespace zbr::drawing {

// Sets the normals and counts flat triangles. Needs body, notes and the box.
void SetNormals(Model& model, unsigned threads);

// Lets borders, junctions and creases show: edges where the surface bends by more than creaseDegrees, and the whole of round rims
// of which a part bends by so much or very nearly.
void ShowEdges(Model& model, double creaseDegrees, unsigned threads);

// The cosine of an angle in degrees, which is taken for 0 below that and for 180 above.
double CosineOfBend(double degrees);
// The cosine of the angle by which the surface bends at an edge of two triangles; 1 where one of them has no direction.
double CosineOfBend(const Model& model, std::size_t shell, const ZBR_ZBREPE& edge);

// Sets the facing of all shells.
void FindFacing(Model& model, unsigned threads);

}  // namespace zbr::drawing
