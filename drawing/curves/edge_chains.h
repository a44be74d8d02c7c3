// The drawn edges of a shell as chains without corners.
#pragma once

#include <zbr-drawing/model.h>
#include <zbr/spatial.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Cosine of the largest angle between neighbouring edges of a chain: 30 degrees, as in a polygon with twelve sides, and 0.01 that
// rounding may add. A cylinder with fewer sides bends by more than the usual limit for creases: it is drawn, and meant, as a prism.
inline constexpr double kCosLargestTurn = 0.86593811;

// Edges that follow one another, edge k from point k to point k + 1. Points are relative to the middle of the model, in diagonals.
struct EdgeChain {
  std::vector<std::uint32_t> edges;  // places in the shell
  std::vector<ZBR_PT3> points;       // one more than edges; of a closed chain the last repeats the first
  std::vector<bool> isFree;          // of points: no other drawn edge ends there; true for the ends of an open chain
  bool isClosed = false;
};

// The chains of at least `fewest` edges. Each drawn edge is in one chain at most. Where more than two edges meet, those go on that
// turn least and are most alike in length. A closed chain starts with its longest edge.
std::vector<EdgeChain> ChainEdges(const Model& model, std::size_t shell, std::size_t fewest);

// Turns a closed chain until its longest edge comes first.
void StartWithLongest(EdgeChain& chain);

}  // namespace zbr::drawing
