// Directions of triangles and what follows from them for their edges.
#pragma once

#include <zbr-drawing/model.h>

namespace zbr::drawing {

// Sets the normals and counts flat triangles. Needs body, notes and the box.
void SetNormals(Model& model, unsigned threads);

// Lets borders, junctions and creases show: edges where the surface bends by more than creaseDegrees, and the whole of round rims
// of which a part bends by so much or very nearly.
void ShowEdges(Model& model, double creaseDegrees, unsigned threads);

// Sets the facing of all shells.
void FindFacing(Model& model, unsigned threads);

}  // namespace zbr::drawing
