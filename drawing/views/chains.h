// Segments joined into polylines that know the edges they are made of.
#pragma once

#include <zbr-drawing/view_lines.h>
#include <zbr/planar.h>

#include <vector>

namespace zbr::drawing {

struct EdgeSegment {
  ZBR_SEG segment;
  EdgeRef edge;
};

// Ends that are at most `tolerance` apart are joined; shorter segments and repeats are left out.
std::vector<Chain> ChainSegments(const std::vector<EdgeSegment>& segments, double tolerance);

}  // namespace zbr::drawing
