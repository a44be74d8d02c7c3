// The vertices of a planar arrangement, on an integer grid.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "arrangement/grid_point.h"
#include "core/box.h"
#include "core/scratch.h"

namespace zbr {

// The grid of an arrangement and what counts as one place on it.
struct Resolution {
  double step;   // of the grid, a power of two
  double merge;  // points within this distance of a vertex are that vertex; at least a step
  double reach;  // an edge that passes a vertex within this distance is led through it; at least one and a half steps

  // A step of 1e-9 to 2e-9 of the box's larger side, and what it takes to join what should meet but for rounding to that grid.
  static Resolution Coarse(const Box& box);
  // The finest grid on which every node is a point that doubles tell exactly. Coordinates are never off by more than half a step.
  static Resolution Fine(const Box& box, double tolerance);
};

// Where the grid lies in the plane.
class NodeGrid {
 public:
  NodeGrid() = default;
  // Over a box. Its centre is a node of the grid that passes through the origin: then coordinates of few bits keep their places
  // exactly.
  NodeGrid(const Box& box, double step);

  double step() const { return step_; }
  // Between points and (fractional) grid coordinates.
  ZBR_PT ToGrid(const ZBR_PT& p) const { return ZBR_PT((p.x() - centre_.x()) / step_, (p.y() - centre_.y()) / step_); }
  ZBR_PT FromGrid(const ZBR_PT& g) const { return ZBR_PT(centre_.x() + g.x() * step_, centre_.y() + g.y() * step_); }
  GridPoint NodeOf(const ZBR_PT& p) const { return NodeAt(ToGrid(p)); }
  static GridPoint NodeAt(const ZBR_PT& g) { return {Nearest(g.x()), Nearest(g.y())}; }

 private:
  static double Nearest(double c) { return std::floor(c + 0.5) + 0.0; }

  ZBR_PT centre_;
  double step_ = 1.0;
};

// The places of the nodes in the order of a sweep, those of equal nodes ascending. By the upper digits of x first; what they leave
// undecided is compared.
std::vector<std::uint32_t> SweepOrder(std::span<const GridPoint> nodes);

// Numbered vertices, at most one per grid node, each with the exact point that it stands for.
class VertexSet {
 public:
  VertexSet(const NodeGrid& grid, const Resolution& resolution, std::size_t expected);

  // Makes vertices of those points that lie apart from all others but those on their own node, in the order of a sweep. Returns the
  // vertex of every point; kNone stands for those that are left to At. To be called first, if at all.
  std::vector<std::uint32_t> AddApart(std::span<const ZBR_PT> points);
  // How many vertices AddApart made.
  std::uint32_t sorted() const { return sorted_; }
  // The vertex of p: one on p's node or within the merging distance, the nearest first, made when there is none. The points of one
  // node get the same vertex whenever they are asked for, so that the edges at a point meet.
  std::uint32_t At(const ZBR_PT& p);
  // The vertex exactly on the given node; made to stand for p when there is none. Not to be followed by At.
  std::uint32_t OnNode(GridPoint node, const ZBR_PT& p);

  // Gives the memory back. Nothing is to be asked for afterwards.
  void Clear();

  std::uint32_t size() const { return static_cast<std::uint32_t>(nodes_.size()); }
  GridPoint node(std::uint32_t vertex) const { return nodes_[vertex]; }
  const ZBR_PT& point(std::uint32_t vertex) const { return points_[vertex]; }
  // Has a vertex stand for another point near its node.
  void SetPoint(std::uint32_t vertex, const ZBR_PT& p) { points_[vertex] = p; }
  const std::vector<GridPoint>& nodes() const { return nodes_; }
  const NodeGrid& grid() const { return grid_; }

  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

 private:
  // Items chained by a hash: what is filed under equal or colliding hashes, the latest first.
  class Chains {
   public:
    explicit Chains(std::size_t expected);
    std::uint32_t First(std::uint64_t hash) const { return first_[hash & (first_.size() - 1)]; }
    std::uint32_t Next(std::uint32_t item) const { return items_[item].next; }
    // Items are numbered in the order in which they are filed.
    void File(std::uint64_t hash);
    std::size_t size() const { return items_.size(); }
    void Clear() {
      FreeLarge(first_);
      FreeLarge(items_);
    }

   private:
    struct Item {
      std::uint64_t hash;
      std::uint32_t next;
    };
    std::vector<std::uint32_t> first_;
    std::vector<Item> items_;
  };

  static std::uint64_t Hash(double x, double y);
  double CellOf(double c) const { return std::floor(c * inverseCell_); }
  // Beyond that in x or y, points are no one vertex. Vertices are filed by their nodes, half a step beside their points.
  double Room() const { return merge_ + 1.0; }
  std::uint32_t Find(GridPoint node) const;
  std::uint32_t NearestTo(const ZBR_PT& g) const;
  std::uint32_t Add(GridPoint node, const ZBR_PT& p);
  void FileNode(GridPoint node, std::uint32_t vertex);

  NodeGrid grid_;
  double merge2_;       // squared, in steps
  double merge_;        // in steps
  double inverseCell_;  // cells are a few merging distances wide, so that a look-up reads one to four
  std::vector<GridPoint> nodes_;
  std::vector<ZBR_PT> points_;
  std::uint32_t sorted_ = 0;
  // A node that was asked for, and its vertex, which lies there or near.
  struct Entry {
    GridPoint node;
    std::uint32_t vertex;
  };
  std::vector<Entry> entries_;
  Chains byNode_;  // of the entries
  Chains byCell_;  // of the vertices that At made: no more than fit in a cell at merging distances
};

}  // namespace zbr
