// What tests ask of the lines of a view.
#pragma once

#include <zbr-drawing/views.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace zbr::drawing {

inline double DistanceTo(const std::vector<Line>& lines, const ZBR_PT& p) {
  double least = HUGE_VAL;
  for (const Line& line : lines) {
    for (std::size_t i = 1; i < line.chain.points.size(); ++i) {
      const ZBR_PT &a = line.chain.points[i - 1], ab = line.chain.points[i] - a;
      const double t = std::clamp((p - a).InnerProduct(ab) / std::max(ab.Length2(), 1e-300), 0.0, 1.0);
      least = std::min(least, p.Distance(a + ab * t));
    }
  }
  return least;
}

// Those of a class that are not hidden.
inline std::vector<Line> Visible(const ViewLines& view, EdgeClass edgeClass) {
  std::vector<Line> lines;
  std::copy_if(view.lines.begin(), view.lines.end(), std::back_inserter(lines),
               [&](const Line& line) { return !line.hidden && line.edgeClass == edgeClass; });
  return lines;
}

inline double LengthOf(const Line& line) {
  double length = 0.0;
  for (std::size_t i = 1; i < line.chain.points.size(); ++i) length += line.chain.points[i].Distance(line.chain.points[i - 1]);
  return length;
}

}  // namespace zbr::drawing
