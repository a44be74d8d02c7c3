// What is seen of a curve, as stretches worth drawing.
#pragma once

#include <zbr-drawing/view_lines.h>
#include <zbr/hidden_line.h>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace zbr::drawing {

// A curve as the removal leaves it: points at distances along it, and where it begins and ends to be seen.
struct SeenCurve {
  std::vector<ZBR_PT> points;
  std::vector<double> along;             // of the points
  std::vector<std::uint32_t> triangles;  // of the stretches between them, places in the mesh
  struct Run {
    double from, to;
  };
  std::vector<Run> visible;  // sorted, apart from each other
  bool closed = false;
  std::array<bool, 2> isCovered{};  // of one that is not: whether other bodies hide its start, and its end

  // The next stretch, which starts where the one before ends.
  void Add(const ZBR_PT& from, const ZBR_PT& to, std::uint32_t triangle, const std::vector<ZBR_HL_INTERVAL>& intervals);

  // Leaves of what is visible that which a place says is: part t of stretch k. Between the middle and the ends of what is visible
  // of a stretch it may change once.
  void Keep(const std::function<bool(std::size_t k, double t)>& isSeen);
};

// Stretches, seen or hidden, that are shorter than a hundredth of `size` become what they lie between, the shortest first; a curve
// that is as short is left out, and so are such ends that other bodies hide. Silhouettes; what is whole and closed stays so.
std::vector<Line> LinesOf(const SeenCurve& curve, double size);

}  // namespace zbr::drawing
