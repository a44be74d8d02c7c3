// Directed edges in the plane, cut up until they meet at common vertices only.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "arrangement/clear_chains.h"
#include "arrangement/edge_points.h"
#include "arrangement/grid_point.h"
#include "arrangement/vertex_set.h"
#include "core/number_lists.h"

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

// A piece of an arrangement between two vertices, from < to: straight, or the edges of a chain. `net` counts the edges along it,
// those that run from `from` to `to` positive, the others negative; it is never zero for both operands. Lines without a sense all
// count positive.
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

  // Whether edges that run opposite ways along each other cancel. Where three cross in almost one place, short parts of any two may
  // come to do so, whatever the directions of the whole edges are.
  enum class Sense {
    kDirected,  // they do: sides of regions
    kNone       // they don't: lines
  };

  // Edges must have finite ends; those from `secondOperand` on count for the second operand.
  Arrangement(const EdgePoints& edges, const Resolution& resolution, std::size_t secondOperand, Care care,
              Sense sense = Sense::kDirected);
  // Of one operand, on the coarse grid.
  explicit Arrangement(const EdgePoints& edges);
  // On the given grid, the edges of chains uncut. Only the other edges have numbers, by their place among these. `edges` and
  // `chains` must outlive the arrangement.
  Arrangement(const EdgePoints& edges, const ClearChains& chains, const NodeGrid& grid, const Resolution& resolution,
              std::size_t secondOperand, Care care);

  // By vertex: its place on the grid, and its true point.
  const std::vector<GridPoint>& nodes() const { return nodes_; }
  const std::vector<ZBR_PT>& points() const { return points_; }
  // The grid's step: what is narrower may have become one.
  double step() const { return grid_.step(); }
  // The vertex's place on the grid, in the plane; on a fine grid without rounding.
  ZBR_PT PlaceOf(std::uint32_t vertex) const { return grid_.FromGrid(nodes_[vertex].Point()); }
  // The same for a point that no other is near.
  ZBR_PT PlaceOf(const ZBR_PT& p) const { return grid_.FromGrid(grid_.NodeOf(p).Point()); }
  // Sorted by `from`, then by the node next to it, which is that of `to` but for chains.
  const std::vector<Piece>& pieces() const { return pieces_; }

  // A chain as a piece, null for straight pieces, and whether its edges run from `to` to `from`.
  const ClearChain* ChainOf(std::uint32_t piece) const { return IsStraight(piece) ? nullptr : &chains_[chainOf_[piece] / 2]; }
  bool RunsBack(std::uint32_t piece) const { return !IsStraight(piece) && chainOf_[piece] % 2 != 0; }
  // The points that a piece passes between its ends, from the side of `from`.
  std::uint32_t BendCount(std::uint32_t piece) const { return IsStraight(piece) ? 0 : ChainOf(piece)->count - 1; }
  const ZBR_PT& Bend(std::uint32_t piece, std::uint32_t k) const {
    const ClearChain& chain = *ChainOf(piece);
    return chainPoints_[chain.first + (RunsBack(piece) ? chain.count - 1 - k : k + 1)];
  }
  // The nodes that come after `from` and before `to`.
  GridPoint After(std::uint32_t piece) const {
    return BendCount(piece) == 0 ? nodes_[pieces_[piece].to] : grid_.NodeOf(Bend(piece, 0));
  }
  GridPoint Before(std::uint32_t piece) const {
    const std::uint32_t bends = BendCount(piece);
    return bends == 0 ? nodes_[pieces_[piece].from] : grid_.NodeOf(Bend(piece, bends - 1));
  }
  // Of a node between the piece's ends in the order of a sweep: 1 when it lies above the piece, -1 below, 0 on it. Exact.
  int SideOf(std::uint32_t piece, GridPoint p) const {
    return IsStraight(piece) ? SideSign(nodes_[pieces_[piece].from], nodes_[pieces_[piece].to], p) : SideOfChain(piece, p);
  }

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
    if (lineOfEdge_[edge] == kNoPiece) return;
    const Strands strands = StrandsOf(lineOfEdge_[edge]);
    for (std::uint32_t part = lineBegin_[strands.first]; part < lineBegin_[strands.last]; ++part) visit(pieceOfLine_[part]);
  }

  // Lines stand for the edges between the same two vertices, and run along strands, a row of them. Mostly that is one; only lines
  // that lie on each other by the hundred have strands in common. Strands are what was cut into pieces.
  struct Strands {
    std::uint32_t first;
    std::uint32_t last;  // exclusive
  };
  // kNoPiece for an edge whose ends merged, or which others cancel.
  std::uint32_t LineOf(std::size_t edge) const { return lineOfEdge_[edge]; }
  Strands StrandsOf(std::uint32_t line) const { return !strandsOfLine_.empty() ? strandsOfLine_[line] : Strands{line, line + 1}; }
  // By line, empty when each is a strand of its own.
  const std::vector<Strands>& strandsOfLines() const { return strandsOfLine_; }
  std::size_t strandCount() const { return lineBegin_.empty() ? 0 : lineBegin_.size() - 1; }
  template <class Visit>
  void PiecesOfStrand(std::uint32_t strand, Visit visit) const {
    for (std::uint32_t part = lineBegin_[strand]; part < lineBegin_[strand + 1]; ++part) visit(pieceOfLine_[part]);
  }

 private:
  friend class EdgeCutter;

  int SideOfChain(std::uint32_t piece, GridPoint p) const;
  bool IsStraight(std::uint32_t piece) const { return chainOf_.empty() || chainOf_[piece] == kNoPiece; }

  NodeGrid grid_;
  std::vector<GridPoint> nodes_;
  std::vector<ZBR_PT> points_;
  std::vector<Piece> pieces_;
  std::vector<std::uint32_t> lineOfEdge_;   // the edge before it was cut
  std::vector<Strands> strandsOfLine_;      // none when each line is its own strand
  std::vector<std::uint32_t> lineBegin_;    // by strand: where its parts begin
  std::vector<std::uint32_t> pieceOfLine_;  // which piece such a part is
  std::vector<Ends> ends_;                  // by edge, on a coarse grid
  std::span<const ZBR_PT> chainPoints_;     // that the chains run along
  std::span<const ClearChain> chains_;
  std::vector<std::uint32_t> chainOf_;  // by piece: twice the chain's number, one more when it runs back
};

// Which edges run along each piece of an arrangement, ascending.
NumberLists EdgesAlong(const Arrangement& arrangement, std::size_t edgeCount);

}  // namespace zbr
