// Where the triangles of a model pass through each other.
#pragma once

#include <zbr-drawing/intersections.h>

#include <cstdint>
#include <vector>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {

// The lines that pairs of triangles have in common, but for those of one patch (patches.h). The same with any number of threads.
std::vector<IntersectionLine> FindCrossings(const Model& model, const Connectivity& mesh, const std::vector<std::uint32_t>& patches,
                                            unsigned threads);

}  // namespace zbr::drawing
