// Plane patches of a mesh: triangles that hang together and lie in one plane.
#pragma once

#include <zbr-drawing/model.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {

// Distance below which points of a model count as lying in a plane: what rounding leaves of it.
double PlaneTolerance(const Model& model);

// The patch of each triangle: the number of its first triangle. A patch grows as long as its points are within the tolerance of the
// first triangle's plane, so it does not follow a surface that bends slowly. Linear; threads share the shells.
std::vector<std::uint32_t> FindPatches(const Model& model, const Connectivity& mesh, unsigned threads);

// The patches of one shell alone; those of its triangles must be kNone before.
void FindPatchesOf(std::size_t shell, const Model& model, const Connectivity& mesh, std::vector<std::uint32_t>& patches);

}  // namespace zbr::drawing
