// Joining segments into polylines, and walking their ends again to tell which segments each polyline is made of.
//
// The library joins the segments and leaves behind, at each segment end, through which other end the line goes on. Its polylines
// are in the order of their first ends: open ones at their free ends, closed ones at the first end not passed before. The same
// order here gives each polyline its edges.
#include "drawing/views/chains.h"

#include <zbr/outline.h>
#include <zbr/tolerance.h>

namespace zbr::drawing {
namespace {

class EdgeWalk {
 public:
  EdgeWalk(const std::vector<ZBR_HL_OPT_PT>& ends, const std::vector<EdgeSegment>& segments)
      : ends_(ends), segments_(segments), passed_(segments.size(), 0) {}

  // The edges of the next polyline that starts at an end of this state; the search goes on where it last stopped.
  std::vector<EdgeRef> Next(int state) {
    while (at_ < ends_.size() && (ends_[at_].state != state || passed_[at_ / 2] != 0)) ++at_;
    std::vector<EdgeRef> edges;
    for (std::size_t end = at_; end < ends_.size() && passed_[end / 2] == 0;) {
      passed_[end / 2] = 1;
      const EdgeRef& edge = segments_[end / 2].edge;
      if (edges.empty() || !(edges.back() == edge)) edges.push_back(edge);
      const int link = ends_[end ^ 1U].link;
      if (link < 0) break;
      end = static_cast<std::size_t>(link);
    }
    return edges;
  }
  void Restart() { at_ = 0; }

 private:
  const std::vector<ZBR_HL_OPT_PT>& ends_;
  const std::vector<EdgeSegment>& segments_;
  std::vector<char> passed_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<Chain> ChainSegments(const std::vector<EdgeSegment>& segments, double tolerance) {
  std::vector<ZBR_HL_OPT_PT> ends(2 * segments.size());
  for (std::size_t i = 0; i < segments.size(); ++i) {
    ends[2 * i].pt = segments[i].segment.s();
    ends[2 * i + 1].pt = segments[i].segment.e();
  }
  std::vector<std::vector<ZBR_PT>> polylines;
  const ZBR_TmpEps hold(tolerance);
  const auto open = static_cast<std::size_t>(zbrOptimizeSegs(ends, polylines));

  std::vector<Chain> chains(polylines.size());
  EdgeWalk walk(ends, segments);
  for (std::size_t i = 0; i < chains.size(); ++i) {
    if (i == open) walk.Restart();
    chains[i].closed = i >= open;
    chains[i].points = std::move(polylines[i]);
    chains[i].edges = walk.Next(i < open ? OPT_FIRST : OPT_PASSED);
  }
  return chains;
}

}  // namespace zbr::drawing
