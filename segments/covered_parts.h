// Which parts of a set of segments nothing else runs over.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include <zbr/planar.h>

#include "core/box_tree.h"

namespace zbr {

// A segment is covered where a segment of `others`, or an earlier one of `segments`, runs no farther than `width` beside it. n
// log n on segments that are spread out. Refers to both lists.
class CoveredParts {
 public:
  CoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width);

  // A part of a segment, longer than the tolerance, that is not covered.
  struct Gap {
    std::uint32_t segment;
    double from;  // parameters along the segment
    double to;
  };
  // All of them, by segment and then along it.
  std::vector<Gap> Gaps() const;

 private:
  using Ranges = std::vector<std::pair<double, double>>;

  const ZBR_SEG& At(std::size_t i) const { return i < segments_.size() ? segments_[i] : others_[i - segments_.size()]; }
  // The covered ranges of segment i, sorted.
  void FindCovered(std::size_t i, Ranges& ranges) const;

  std::span<const ZBR_SEG> others_;
  std::span<const ZBR_SEG> segments_;
  double width_;
  std::vector<std::uint32_t> order_;  // of both lists, segments first
  BoxTree tree_;
};

}  // namespace zbr
