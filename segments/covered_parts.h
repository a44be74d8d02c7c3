// Which parts of a set of segments nothing else runs over.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include <zbr/planar.h>

#include "core/sharing.h"
#include "segments/beside.h"

namespace zbr {

// A segment is covered where a segment of `others`, or an earlier one of `segments`, runs no farther than `width` beside it. About
// n log n (beside.h). Refers to both lists.
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
  std::vector<Gap> Gaps(const Sharing& sharing = Sharing()) const;

 private:
  using Ranges = std::vector<std::pair<double, double>>;

  void AddGaps(std::uint32_t i, Ranges& ranges, std::vector<Gap>& gaps) const;
  // The covered ranges of segment i, sorted, and joined where they overlap; as many as are needed if they cover all of it.
  void FindCovered(std::uint32_t i, Ranges& ranges) const;

  std::span<const ZBR_SEG> segments_;
  double width_;
  Beside beside_;  // segments first
};

}  // namespace zbr
