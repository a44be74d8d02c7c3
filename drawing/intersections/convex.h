// Bodies that need not be looked through for passing through themselves.
#pragma once

#include <zbr-drawing/model.h>

#include <cstddef>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {

// Whether the shell is closed, without handles, and bends outwards, or not at all, at each of its edges and points. Such a surface
// bounds a convex body (van Heijenoort 1952). Rods and pegs with thousands of slender facets, whose boxes all meet, are such.
bool IsConvex(const Model& model, const Connectivity& mesh, std::size_t shell);

}  // namespace zbr::drawing
