// Arcs of two or three chords between lines that they are tangent to.
#pragma once

#include <vector>

#include "drawing/curves/arc_search.h"

namespace zbr::drawing {

// Of an edge of a chain: null where it is part of no circle that is known, in the coordinates of the chain.
using CircleOfEdge = std::vector<const Circle*>;

// In their order, without overlap, of edges that are part of no circle.
std::vector<ChainArc> FindRoundings(const EdgeChain& chain, const CircleOfEdge& circles, const Noise& noise);

}  // namespace zbr::drawing
