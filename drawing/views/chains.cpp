// Joining segments into polylines that remember their edges.
#include "drawing/views/chains.h"

#include <zbr/outline.h>

#include <utility>

#include "drawing/curves/chain_runs.h"

namespace zbr::drawing {

std::vector<Chain> ChainSegments(const std::vector<EdgeSegment>& segments, double tolerance, const SeenCircles& circles) {
  std::vector<ZBR_HL_OPT_PT> ends(2 * segments.size());
  for (std::size_t i = 0; i < segments.size(); ++i) {
    ends[2 * i].pt = segments[i].segment.s();
    ends[2 * i + 1].pt = segments[i].segment.e();
  }
  std::vector<std::vector<ZBR_PT>> polylines;
  std::vector<std::vector<int>> entered;
  const auto open = static_cast<std::size_t>(zbrOptimizeSegs(ends, polylines, entered, tolerance));

  std::vector<Chain> chains(polylines.size());
  for (std::size_t i = 0; i < chains.size(); ++i) {
    chains[i].closed = i >= open;
    chains[i].points = std::move(polylines[i]);
    chains[i].edges = EdgesOf(segments, entered[i]);
    NoteRuns(segments, entered[i], circles, chains[i]);
  }
  return chains;
}

}  // namespace zbr::drawing
