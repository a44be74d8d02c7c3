// Parts of a shell that cannot meet themselves, whatever their triangles are.
//
// Idea: seen along some direction, all triangles of a part turn the same way round. Then each lies, in this picture, inside the
// part's border as often as the border winds around it. Where the border winds round everything at most once, no two triangles
// cover each other, and so they have nothing in common but corners and edges (Volino and Magnenat-Thalmann 1994). That takes the
// border alone to be looked at: of some thousand triangles, some hundred edges.
// Difficulty: nearly all pairs of triangles whose boxes meet are neighbours on a smooth surface, and looking at each was most of
// the search. It must not be said of parts that touch themselves, where signs are decided by a movement of the points.
// Way taken: pictures are along the axes or half-way between, where points on the grid have whole coordinates; so nothing is
// rounded but products; a sign that is not clear, an edge that touches another one, and the part is none. The parts are the nodes
// of a tree of boxes.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "drawing/intersections/exact_sign.h"
#include "drawing/model/connectivity.h"

namespace zbr::drawing {

class Sheets {
 public:
  // Of a tree (triangle_trees.h) of the triangles from `first` on, of which `order` are the leaves.
  Sheets(const std::vector<GridPoint>& points, const Connectivity& mesh, std::span<const std::uint32_t> order, std::uint32_t first,
         unsigned threads);

  // Whether it is known of a node that no two of its triangles meet. Its children are asked only if it is not.
  bool IsSheet(std::size_t level, std::uint32_t node) const {
    return level >= kLowest && level <= kHighest && isSheet_[level - kLowest][node] != 0;
  }
  // Whether nearly all of the shell is made of such nodes.
  bool AreMost() const { return kMost * static_cast<double>(covered_) >= static_cast<double>(order_.size()); }

 private:
  // Nodes of 64 triangles win little more than their making costs; the borders of those above 16384 become long.
  static constexpr std::size_t kLowest = 3, kHighest = 7;
  static constexpr double kMost = 1.01;

  using Triangles = std::array<std::uint32_t, 2>;  // leaves, from the first to before the second

  Triangles Leaves(std::size_t level, std::uint32_t node) const;
  void LookAtTriangles(unsigned threads);
  std::uint32_t Neighbour(std::uint32_t triangle, std::size_t i) const;
  void Find(std::size_t level, std::uint32_t node);
  bool IsInjective(const Triangles& leaves, unsigned turn) const;

  const std::vector<GridPoint>& points_;
  const Connectivity& mesh_;
  std::span<const std::uint32_t> order_;
  const std::uint32_t first_;
  // What is filled completely is not cleared before.
  std::unique_ptr<std::uint32_t[]> place_;                      // in the order, of triangles in their own one
  std::unique_ptr<std::uint32_t[]> turns_;                      // of leaves: the pictures in which they turn counter-clockwise
  std::unique_ptr<std::array<std::uint32_t, 3>[]> neighbours_;  // of triangles in their own order: places of what is across edges
  std::array<std::vector<std::uint8_t>, kHighest - kLowest + 1> isSheet_;
  std::atomic<std::size_t> covered_{0};  // triangles
};

}  // namespace zbr::drawing
