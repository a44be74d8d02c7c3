// Which parts of a set of segments other segments run over.
#pragma once

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include <zbr/planar.h>

#include "core/box_tree.h"

namespace zbr {

// A segment is covered where a segment of `others`, or an earlier one of `segments`, lies on it within the thread's tolerance of
// the time of the question. n log n on segments that are spread out. Refers to both lists.
class CoveredParts {
 public:
  CoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments);

  // Calls visit(t0, t1) for each uncovered part of segment i that is longer than the tolerance, in order.
  template <class Visit>
  void ForEachGap(std::size_t i, Visit visit) const {
    double from = 0.0;
    const double least = Shortest(i);
    for (const auto& [t0, t1] : Covered(i)) {
      if (t0 - from > least) visit(from, t0);
      from = std::max(from, t1);
    }
    if (1.0 - from > least) visit(from, 1.0);
  }

 private:
  const ZBR_SEG& At(std::size_t i) const { return i < segments_.size() ? segments_[i] : others_[i - segments_.size()]; }
  double Shortest(std::size_t i) const;
  // The covered ranges of segment i, sorted.
  std::vector<std::pair<double, double>> Covered(std::size_t i) const;

  std::span<const ZBR_SEG> others_;
  std::span<const ZBR_SEG> segments_;
  std::vector<std::uint32_t> order_;  // of both lists, segments first
  BoxTree tree_;
};

}  // namespace zbr
