// Which triangles meet at which edges, and what hangs together.
#pragma once

#include <cstdint>
#include <vector>

#include "model/model.h"

namespace tool {

// Sets adjacent, adjacentEdge, junctionCopies and the classes smooth, border and junction from the triangles. Returns the triangles
// that repeat an earlier one, in either orientation, in increasing order.
std::vector<std::uint32_t> ConnectTriangles(Model& model);

// Numbers what hangs together by adjacency, in order of the first triangles. Returns the number of each triangle; `count` receives
// how many there are.
std::vector<std::uint32_t> NumberShells(const Model& model, std::uint32_t& count);

}  // namespace tool
