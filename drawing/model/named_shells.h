// Shells as the mesh names them.
#pragma once

#include <zbr-drawing/mesh.h>

#include <cstdint>
#include <span>
#include <vector>

#include "drawing/model/records.h"

namespace zbr::drawing {

// Numbers the shells that a mesh names, in the order of the first of `triangles`, each with its place in the mesh in `source`, and
// returns the number of each. The same name in two objects is two shells. A point that several shells use is copied for all but
// the first, so that nothing hangs together across them.
std::vector<std::uint32_t> SeparateShells(const Mesh& mesh, std::span<const std::uint32_t> source, std::vector<Corners>& triangles,
                                          std::vector<ZBR_PT3>& points);

}  // namespace zbr::drawing
