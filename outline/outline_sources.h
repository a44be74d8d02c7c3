// Which triangles' edges an outline runs along.
#pragma once

#include <vector>

#include <zbr/hidden_line.h>

#include "arrangement/arrangement.h"
#include "arrangement/loop_builder.h"
#include "outline/bare_edges.h"

namespace zbr {

// Loops as they were traced: rings of an arrangement's vertices, and how the loops go along them.
struct TracedLoops {
  std::vector<Ring> rings;
  std::vector<LoopTrace> traces;
};

ZBR_HL_OUTLINE_SOURCES FindSources(const ZBR_HL_SHELL* shells, const BareEdges& bare, const Arrangement& arrangement,
                                   const TracedLoops& loops);

}  // namespace zbr
