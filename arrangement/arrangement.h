// Directed edges in the plane, cut up until they meet at common vertices only.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "arrangement/edge_points.h"
#include "arrangement/grid_point.h"
#include "arrangement/vertex_set.h"

namespace zbr {

// How often the edges of each of two operands run along a piece, or wind around a place.
struct Winding {
  std::int32_t of[2] = {0, 0};

  Winding& operator+=(const Winding& o) {
    of[0] += o.of[0];
    of[1] += o.of[1];
    return *this;
  }
  friend Winding operator+(Winding a, const Winding& b) { return a += b; }
  friend Winding operator-(const Winding& a) { return {{-a.of[0], -a.of[1]}}; }
  bool IsZero() const { return (of[0] | of[1]) == 0; }
};

// A straight piece of an arrangement between two vertices, from < to. `net` counts the edges along it, those that run from `from`
// to `to` positive, the others negative; it is never zero for both operands.
struct ArrangedPiece {
  std::uint32_t from;
  std::uint32_t to;
  Winding net;
};

// A planar arrangement of directed edges.
//
// Vertices lie on the nodes of a grid and are numbered in the order of a sweep (IsBefore); the pieces between them neither cross
// nor overlap nor pass a vertex, exactly so on the grid. Each vertex keeps the true point that it stands for.
class Arrangement {
 public:
  using Piece = ArrangedPiece;
  static constexpr std::uint32_t kNoPiece = ~std::uint32_t{0};

  // How it is made sure that no piece passes a vertex on which two others cross.
  enum class Care {
    kThorough,  // by searching
    kQuick      // not at all: where three edges cross in almost one place the pieces may cross still, which a sweep notices
  };

  // Edges must have finite ends; those from `secondOperand` on count for the second operand.
  Arrangement(const EdgePoints& edges, const Resolution& resolution, std::size_t secondOperand, Care care);
  // Of one operand, on the coarse grid.
  explicit Arrangement(const EdgePoints& edges);

  // By vertex: its place on the grid, and its true point.
  const std::vector<GridPoint>& nodes() const { return nodes_; }
  const std::vector<ZBR_PT>& points() const { return points_; }
  // The grid's step: what is narrower may have become one.
  double step() const { return step_; }
  // The vertex's place on the grid, in the plane; on a fine grid without rounding.
  ZBR_PT PlaceOf(std::uint32_t vertex) const { return origin_ + nodes_[vertex].Point() * step_; }
  // Sorted by `from`, then by `to`.
  const std::vector<Piece>& pieces() const { return pieces_; }

  // Where an edge of a coarse grid begins and ends.
  struct Ends {
    std::uint32_t from;
    std::uint32_t to;
  };
  Ends EndsOf(std::size_t edge) const { return ends_[edge]; }
  // The piece between two vertices, in either order; kNoPiece when there is none.
  std::uint32_t PieceBetween(std::uint32_t u, std::uint32_t v) const;

  // Calls visit(piece) for what became of the given edge; kNoPiece stands for a part along which as many edges run one way as the
  // other. An edge whose ends merged visits nothing.
  template <class Visit>
  void PiecesOf(std::size_t edge, Visit visit) const {
    const std::uint32_t first = lineOfEdge_[edge];
    if (first == kNoPiece) return;
    for (std::uint32_t line = lineBegin_[first]; line < lineBegin_[first + 1]; ++line) visit(pieceOfLine_[line]);
  }

 private:
  friend class EdgeCutter;

  double step_ = 0.0;
  ZBR_PT origin_;  // the place of node 0, 0
  std::vector<GridPoint> nodes_;
  std::vector<ZBR_PT> points_;
  std::vector<Piece> pieces_;
  std::vector<std::uint32_t> lineOfEdge_;   // the edge before it was cut
  std::vector<std::uint32_t> lineBegin_;    // where the parts of that begin
  std::vector<std::uint32_t> pieceOfLine_;  // which piece such a part is
  std::vector<Ends> ends_;                  // by edge, on a coarse grid
};

// Which edges run along each piece of an arrangement, ascending.
class EdgesAlong {
 public:
  EdgesAlong() = default;
  EdgesAlong(const Arrangement& arrangement, std::size_t edgeCount);

  std::span<const std::uint32_t> operator[](std::uint32_t piece) const {
    return std::span(edges_).subspan(begin_[piece], begin_[piece + 1] - begin_[piece]);
  }

 private:
  std::vector<std::uint32_t> begin_;  // by piece
  std::vector<std::uint32_t> edges_;
};

}  // namespace zbr
