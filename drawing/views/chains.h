// Segments joined into polylines that know the edges they are made of.
#pragma once

#include <zbr-drawing/view_lines.h>
#include <zbr/outline.h>
#include <zbr/planar.h>

#include <cstddef>
#include <vector>

namespace zbr::drawing {

class SeenCircles;

struct EdgeSegment {
  ZBR_SEG segment;
  EdgeRef edge;
  std::uint32_t circle = kNoCircle;  // that the edge is a chord of
  double t0 = 0.0, t1 = 0.0;         // angles of both ends there
};

// Chains one set of segments after another: what that takes is kept.
class SegmentChainer {
 public:
  // Ends that are at most `tolerance` apart are joined; repeats are left out, and shorter segments unless they follow one another.
  // Refers to the circles.
  SegmentChainer(double tolerance, const SeenCircles& circles) : tolerance_(tolerance), circles_(circles) {}

  // Segments are added to, where short ones follow one another. The chains stand until the next call.
  std::vector<Chain>& ChainsOf(std::vector<EdgeSegment>& segments);

 private:
  void JoinShort(std::vector<EdgeSegment>& segments);
  std::size_t Join(const std::vector<EdgeSegment>& segments, double apart);

  const double tolerance_;
  const SeenCircles& circles_;
  std::vector<EdgeSegment> shorts_;
  std::vector<ZBR_HL_OPT_PT> ends_;
  std::vector<std::vector<ZBR_PT>> polylines_;
  std::vector<std::vector<int>> entered_;
  std::vector<Chain> chains_;
};

double LengthOf(const Chain& chain);

}  // namespace zbr::drawing
