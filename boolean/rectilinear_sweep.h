// Combinations of regions all of whose edges are parallel to the axes.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/corner_rings.h"
#include "boolean/rank_set.h"
#include "boolean/region_input.h"

namespace zbr {

class RectilinearSweep {
 public:
  // False when some ring is not made of horizontal and vertical edges by turns, or when different coordinates come within a few
  // tolerances of each other. The rings may touch, overlap and cross as they like.
  bool Prepare(const RegionInput& input, double tolerance);
  // Large memory is given back.
  void Clear();
  // After Prepare. What is inside an operand is told by the even-odd rule. Asks now and then whether to go on, with the share that
  // is done; false when the answer was no.
  bool Combine(ZBR_BOOLEAN_OPE op, ZBR_REGION& result, const std::function<bool(double)>& goesOn);

 private:
  // A vertex of an operand, as one end of its horizontal edge: the coordinates as sorting takes them, later the number of y.
  struct End {
    std::uint64_t x;
    std::uint64_t y;
    std::uint8_t operand;  // as a bit
  };
  // Which of the four quarters around a point are inside.
  struct Quarters {
    bool leftBelow;
    bool leftAbove;
    bool rightBelow;
    bool rightAbove;
  };

  void SweepColumn(std::uint32_t x, std::span<const End> ends);
  std::size_t SweepUp(std::uint32_t x, std::span<const End> ends);
  void Border(std::uint32_t x, std::uint32_t y, const Quarters& inside);

  std::vector<End> ends_;  // from left to right, those of one x upwards
  std::vector<End> scratch_;
  std::vector<double> xs_;  // ascending
  std::vector<double> ys_;
  std::array<bool, 4> isInside_{};     // the result, by the operands that are around a place
  RankSet lines_;                      // the horizontal edges that the sweep line meets, by the numbers of their y
  std::vector<std::uint8_t> changes_;  // by y: which operands begin or end at such a line, as bits
  std::vector<std::uint8_t> above_;    // by y: which operands are right above it
  RankSet borders_;                    // those of them that are edges of the result
  std::vector<std::uint32_t> begin_;   // by y: the corner at which that edge begins
  std::uint32_t rising_ = 0;           // the corner at which a vertical edge of the result begins, while there is one
  CornerRings rings_;
};

}  // namespace zbr
