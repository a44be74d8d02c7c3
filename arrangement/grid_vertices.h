// The vertices of a planar arrangement, on an integer grid.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/box.h"

namespace zbr {

// A node of the grid. Coordinates are at most 2^29 in size, so that sides and scalar products of their differences are exact in
// 64 bits.
struct GridPoint {
  std::int32_t x;
  std::int32_t y;

  bool operator==(const GridPoint&) const = default;
};

// Twice the signed area of the triangle a, b, c: positive when c lies left of a->b. Exact.
inline std::int64_t Side(GridPoint a, GridPoint b, GridPoint c) {
  return (std::int64_t{b.x} - a.x) * (std::int64_t{c.y} - a.y) - (std::int64_t{b.y} - a.y) * (std::int64_t{c.x} - a.x);
}

// The scalar product of a->b and a->c. Exact.
inline std::int64_t Along(GridPoint a, GridPoint b, GridPoint c) {
  return (std::int64_t{b.x} - a.x) * (std::int64_t{c.x} - a.x) + (std::int64_t{b.y} - a.y) * (std::int64_t{c.y} - a.y);
}

// Left to right, and upwards where x is equal: the order of a sweep.
inline bool IsBefore(GridPoint a, GridPoint b) {
  return a.x != b.x ? a.x < b.x : a.y < b.y;
}

// Numbered vertices, at most one per grid node, each with the exact point that it stands for. Every node gives the same vertex
// whenever it is asked for, so that the edges at a point meet. The grid's step is between 1e-9 and 2e-9 of the larger side of the
// box given.
class GridVertices {
 public:
  GridVertices(const Box& box, std::size_t expected);

  // The vertex of p's node, made when there is none: one whose point is within a step of p, else a new one on the node.
  std::uint32_t At(const ZBR_PT& p);
  // Makes a vertex exactly on the given node, to stand for p, unless there is one. Not to be followed by At.
  void AddOnNode(GridPoint node, const ZBR_PT& p);

  std::uint32_t size() const { return static_cast<std::uint32_t>(nodes_.size()); }
  GridPoint node(std::uint32_t vertex) const { return nodes_[vertex]; }
  const ZBR_PT& point(std::uint32_t vertex) const { return points_[vertex]; }
  double step() const { return step_; }

  // Between points and (fractional) grid coordinates.
  ZBR_PT ToGrid(const ZBR_PT& p) const { return ZBR_PT((p.x() - centre_.x()) / step_, (p.y() - centre_.y()) / step_); }
  ZBR_PT FromGrid(const ZBR_PT& g) const { return ZBR_PT(centre_.x() + g.x() * step_, centre_.y() + g.y() * step_); }
  static GridPoint NodeAt(const ZBR_PT& g) { return {Nearest(g.x()), Nearest(g.y())}; }

 private:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  static std::int32_t Nearest(double c) { return static_cast<std::int32_t>(c < 0.0 ? c - 0.5 : c + 0.5); }
  struct Entry {
    GridPoint node;
    std::uint32_t vertex = kNone;  // on the node or beside it
  };

  std::size_t Slot(GridPoint node) const;
  std::uint32_t FindBeside(GridPoint node, const ZBR_PT& p) const;
  std::uint32_t AddVertex(GridPoint node, const ZBR_PT& p);
  void Enter(GridPoint node, std::uint32_t vertex);
  void Grow();

  ZBR_PT centre_;
  double step_;
  std::vector<GridPoint> nodes_;
  std::vector<ZBR_PT> points_;
  std::vector<Entry> table_;  // by node, open addressing
  std::size_t entries_ = 0;
};

}  // namespace zbr
