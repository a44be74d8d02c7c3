// Directed edges in the plane, cut up until they meet at common vertices only.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "arrangement/grid_vertices.h"

namespace zbr {

struct DirectedEdge {
  ZBR_PT from;
  ZBR_PT to;
};

// A planar arrangement of directed edges.
//
// Vertices lie on the nodes of a grid and are numbered in the order of a sweep (IsBefore); the pieces between them neither cross
// nor overlap nor pass a vertex, exactly so on the grid. Each vertex keeps the true point that it stands for.
class Arrangement {
 public:
  // A straight piece between two vertices, from < to. `net` counts the edges along it, those that run from `from` to `to`
  // positive, the others negative; it is never 0.
  struct Piece {
    std::uint32_t from;
    std::uint32_t to;
    std::int32_t net;
  };
  static constexpr std::uint32_t kNoPiece = ~std::uint32_t{0};

  // Edges must have finite ends.
  explicit Arrangement(std::span<const DirectedEdge> edges);

  // By vertex: its place on the grid, and its true point.
  const std::vector<GridPoint>& nodes() const { return nodes_; }
  const std::vector<ZBR_PT>& points() const { return points_; }
  // The grid's step: what is narrower may have become one.
  double step() const { return step_; }
  // Sorted by `from`, then by `to`.
  const std::vector<Piece>& pieces() const { return pieces_; }

  // Calls visit(piece) for what became of the given edge; kNoPiece stands for a part along which as many edges run one way as the
  // other.
  template <class Visit>
  void PiecesOf(std::size_t edge, Visit visit) const {
    const std::uint32_t first = lineOfEdge_[edge];
    if (first == kNoPiece) return;
    for (std::uint32_t line = lineBegin_[first]; line < lineBegin_[first + 1]; ++line) visit(pieceOfLine_[line]);
  }

 private:
  friend class EdgeCutter;

  double step_ = 0.0;
  std::vector<GridPoint> nodes_;
  std::vector<ZBR_PT> points_;
  std::vector<Piece> pieces_;
  std::vector<std::uint32_t> lineOfEdge_;   // the edge before it was cut
  std::vector<std::uint32_t> lineBegin_;    // where the parts of that begin
  std::vector<std::uint32_t> pieceOfLine_;  // which piece such a part is
};

}  // namespace zbr
