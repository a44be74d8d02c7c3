// Ends of lines and arcs that stop short of another one's middle.
#pragma once

#include <zbr-drawing/contours.h>

#include <vector>

namespace zbr::drawing {

// Draws every end of an open path that meets nothing, but comes within `tolerance` of an edge or a curve, on to the nearest place
// of it, which becomes a vertex there, too. Nothing else moves. What meets or crosses already stays as it is, and the order and
// direction of the paths make no difference.
void LeadShortEnds(std::vector<Path>& paths, double tolerance, double deviation);

// How many ends of open paths meet no other end and are within `tolerance` of an edge or a curve that is not their own; 0
// where that would take long.
std::size_t CountEndsOnLines(std::vector<Path> paths, double tolerance, double deviation);

}  // namespace zbr::drawing
