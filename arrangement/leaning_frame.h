// A frame in which the boxes around lines are small.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include <zbr/planar.h>

#include "core/box.h"

namespace zbr {

// The frame in which boxes around lines are joined: turned so that the longest lines run along its axes, since the box of a
// slanting line meets those of all lines beside it.
class LeaningFrame {
 public:
  LeaningFrame() = default;
  template <class Line, class DirectionOf>
  LeaningFrame(const std::vector<Line>& lines, DirectionOf directionOf) {
    // Lengths by direction, a quarter turn being the same; each bin knows its longest line.
    constexpr int kBins = 32;
    double length[kBins] = {};
    ZBR_PT longest[kBins];
    for (const Line& line : lines) {
      const ZBR_PT d = directionOf(line);
      if (d.x() == 0.0 && d.y() == 0.0) continue;
      const ZBR_PT along = (d.x() > 0.0) == (d.y() > 0.0) ? d : ZBR_PT(-d.y(), d.x());
      const double x = std::fabs(along.x());
      const double y = std::fabs(along.y());
      const auto bin = static_cast<int>(kBins * (y / (x + y)) * (1.0 - 1e-9));
      length[bin] += d.Length();
      if (along.Length2() > longest[bin].Length2()) longest[bin] = ZBR_PT(x, y);
    }
    const auto best = std::max_element(length, length + kBins) - length;
    axis_ = longest[best] / std::max(longest[best].Length(), 1.0);
  }

  ZBR_PT Turned(const ZBR_PT& p) const {
    return ZBR_PT(axis_.x() * p.x() + axis_.y() * p.y(), axis_.x() * p.y() - axis_.y() * p.x());
  }
  // The box around a segment, with room for rounding.
  Box Around(const ZBR_PT& p, const ZBR_PT& q) const { return BoxOfSegment(Turned(p), Turned(q)).Widened(kRoom); }

 private:
  static constexpr double kRoom = 4.0;  // steps: more than the rounding of coordinates of 2^51

  ZBR_PT axis_{1.0, 0.0};
};

}  // namespace zbr
