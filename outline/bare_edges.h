// The sides of projected triangles that can bound their union.
#pragma once

#include <cstdint>
#include <vector>

#include <zbr/hidden_line.h>

#include "arrangement/arrangement.h"

namespace zbr {

// One side of one triangle.
struct TriangleSide {
  std::uint32_t shell;
  std::uint32_t triangle;
  std::uint32_t edge;
};

// Sides in the direction in which the projected triangle runs counter-clockwise, so that it lies on the left.
struct BareEdges {
  std::vector<DirectedEdge> edges;
  std::vector<TriangleSide> sides;  // of the same number
};

// Those sides of the triangles with a projected area that do not cancel with the neighbour's across the same edge, which run the
// other way when the two lie on opposite sides of it. The shells must have been numbered. Sets `profile`: 0 for the edges of such
// triangles, -1 for others.
BareEdges CollectBareEdges(ZBR_HL_SHELL* shells, unsigned count);

}  // namespace zbr
