// Runs of chains along circles.
#pragma once

#include <zbr-drawing/view_lines.h>

#include <vector>

#include "drawing/curves/seen_circles.h"
#include "drawing/views/chains.h"

namespace zbr::drawing {

// Notes the runs of a chain that enters its segments at the given ends. Points at which runs begin and end become points of the
// chain, if they were left out as straight; a closed chain begins where a run does.
void NoteRuns(const std::vector<EdgeSegment>& segments, const std::vector<int>& entered, const SeenCircles& circles, Chain& chain);

// The edges of the segments, in order, next to each other none twice.
std::vector<EdgeRef> EdgesOf(const std::vector<EdgeSegment>& segments, const std::vector<int>& entered);

}  // namespace zbr::drawing
