// Points around which a surface lies like a sheet of paper.
#pragma once

#include <zbr-drawing/model.h>

#include <vector>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {

// By point: whether the triangles around it, seen along their mean normal, make one turn and do not cover each other. Then no two
// of them have more in common than the point or an edge. Most points of most surfaces are such, and most pairs of triangles that
// have to be looked at have a corner in common. Said only where it is clear whatever rounding does. Linear.
std::vector<bool> FindPlainFans(const Model& model, const Connectivity& mesh);

}  // namespace zbr::drawing
