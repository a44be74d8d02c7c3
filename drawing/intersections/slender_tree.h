// A tree of boxes that lie along a body instead of along the axes.
//
// The facets of a rod are as long as the rod. Where it lies across the axes, the boxes of all of them meet, although only those of
// neighbours would if they lay along the rod: 10,000 facets make 50 million pairs.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "drawing/intersections/exact_sign.h"
#include "drawing/intersections/triangle_trees.h"

namespace zbr::drawing {

class SlenderTree {
 public:
  // Of triangles with numbers from `first` on. Made only for those whose boxes along the axes, given in any order, are mostly air.
  SlenderTree(std::span<const GridPoint> points, std::span<const std::array<std::uint32_t, 3>> corners, std::uint32_t first,
              std::span<const FloatBox> uprightBoxes, unsigned threads);

  bool IsBetter() const { return !order_.empty(); }
  TreeView View() const { return TreeView(boxes_.data(), static_cast<std::uint32_t>(order_.size())); }
  std::span<const std::uint32_t> Order() const { return order_; }

 private:
  std::vector<FloatBox> boxes_;
  std::vector<std::uint32_t> order_;
};

}  // namespace zbr::drawing
