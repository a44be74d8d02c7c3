// Segments joined into polylines that know the edges they are made of.
#pragma once

#include <zbr-drawing/view_lines.h>
#include <zbr/planar.h>

#include <vector>

namespace zbr::drawing {

class SeenCircles;

struct EdgeSegment {
  ZBR_SEG segment;
  EdgeRef edge;
  std::uint32_t circle = kNoCircle;  // that the edge is a chord of
  double t0 = 0.0, t1 = 0.0;         // angles of both ends there
};

// Ends that are at most `tolerance` apart are joined; repeats are left out, and shorter segments unless they follow one another.
std::vector<Chain> ChainSegments(std::vector<EdgeSegment> segments, double tolerance, const SeenCircles& circles);

}  // namespace zbr::drawing
