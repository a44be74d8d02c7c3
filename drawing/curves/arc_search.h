// The arcs of a chain of edges.
#pragma once

#include <zbr-drawing/circles.h>

#include <cstddef>
#include <vector>

#include "drawing/curves/edge_chains.h"

namespace zbr::drawing {

inline constexpr std::size_t kFewestChords = 4;

// How far points may be off, in diagonals of the model: first what the coordinates are known to be rounded to, then what files with
// six digits leave.
struct Noise {
  double known = 0.0, digits = 0.0;
};

// Part of a chain: the edges from `begin` to before `end` are chords of the circle, but for those listed.
struct ChainArc {
  std::size_t begin = 0, end = 0;
  Circle circle;             // in the coordinates of the chain
  double tolerance = 0.0;    // within which the points lie on it
  std::vector<bool> isFlat;  // of the edges: much longer than most, a line and no chord
};

// The arcs in their order. They do not overlap.
std::vector<ChainArc> FindArcs(const EdgeChain& chain, const Noise& noise);

}  // namespace zbr::drawing
