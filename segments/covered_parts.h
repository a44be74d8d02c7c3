// Which parts of a set of segments nothing else runs over.
#pragma once

#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/sharing.h"
#include "segments/beside.h"

namespace zbr {

// A segment is covered where a segment of `others`, or an earlier one of `segments`, runs no farther than `width` beside it. About
// n log n (beside.h). Refers to both lists, and to the executor.
class CoveredParts {
 public:
  CoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width,
               const Sharing& sharing = Sharing());

  // A part of a segment, longer than the tolerance, that is not covered.
  struct Gap {
    std::uint32_t segment;
    double from;  // parameters along the segment
    double to;
  };
  // All of them, by segment and then along it.
  std::vector<Gap> Gaps() const;

 private:
  class Cover;

  bool IsOwn(std::uint32_t k) const { return k < segments_.size(); }
  // Others come before segments.
  bool IsBefore(std::uint32_t k, std::uint32_t l) const { return IsOwn(k) == IsOwn(l) ? k < l : !IsOwn(k); }

  std::span<const ZBR_SEG> segments_;
  double width_;
  const Sharing sharing_;
  Beside beside_;  // segments first
};

}  // namespace zbr
