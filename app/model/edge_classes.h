// Directions of triangles and what follows from them for their edges.
#pragma once

#include "model/model.h"

namespace tool {

// Sets the normals. Needs triangles, adjacency and the box.
void SetNormals(Model& model);

// Turns smooth edges into creases where the surface bends by more than creaseDegrees.
void FindCreases(Model& model, double creaseDegrees);

// Sets the facing of all shells.
void FindFacing(Model& model);

}  // namespace tool
