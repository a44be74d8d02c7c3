// Snap rounding (Hobby, "Practical segment intersection with finite precision output", 1999; Guibas and Marimont, "Rounding
// arrangements dynamically", 1998): put the vertices on a grid; find all crossings of the edges between them; call the cell around
// the grid node of a vertex or a crossing hot; and lead every edge through the nodes of the hot cells that it passes. What results
// does not cross and passes no vertex: if a piece between two nodes passed a third, the edge, which is no farther from the piece
// than half a cell anywhere, would have passed that one's cell. That holds exactly, however many edges crowd together, because
// everything is exact: edges have integer ends, so the signs of areas and the cells of crossings can be decided (grid_point.h).
//
// Before that, points within a tolerance become one vertex, and edges are led through the vertices that they pass within a
// tolerance. On a coarse grid it is one and a half steps: more than putting both on the grid can have moved them apart, so that
// what should meet but for rounding, meets, and triangles with vertices on each other's edges leave no cracks. On a fine grid it is
// what the caller counts as noise; what lies farther apart stays apart, to the grid's step.
//
// Edges that share both ends are one line with a count from the start, so that the sides of triangles that were never told to be
// neighbours cancel before anything is searched.
#include "arrangement/arrangement.h"

#include <algorithm>
#include <numeric>

#include "arrangement/edge_cutter.h"

namespace zbr {
void EdgeCutter::Run(Arrangement::Care care) {
  const std::uint32_t firstCrossing = vertices_.size();
  if (care == Arrangement::Care::kQuick) {
    QuickCut();
  } else {
    ThoroughCut();
  }
  if (isFine_) AlignCrossings(firstCrossing);
  NumberVertices();
  vertices_.Clear();
  MergeLines();
  if (isFine_) return;
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
    out_.ends_.push_back({number_[vertexOf_[i]], number_[vertexOf_[edges_.To(i)]]});
  }
}

// The vertices that are in order already are merged with the others.
void EdgeCutter::NumberVertices() {
  const std::uint32_t sorted = vertices_.sorted();
  const std::vector<std::uint32_t> others = SweepOrder(std::span(vertices_.nodes()).subspan(sorted));
  number_.resize(vertices_.size());
  out_.nodes_.reserve(vertices_.size());
  out_.points_.reserve(vertices_.size());
  const auto take = [this](std::uint32_t vertex) {
    number_[vertex] = static_cast<std::uint32_t>(out_.nodes_.size());
    out_.nodes_.push_back(Node(vertex));
    out_.points_.push_back(vertices_.point(vertex));
  };
  std::uint32_t next = 0;
  for (const std::uint32_t other : others) {
    while (next < sorted && IsBefore(Node(next), Node(sorted + other))) take(next++);
    take(sorted + other);
  }
  while (next < sorted) take(next++);
}

// Lines that came to lie on each other become one piece.
void EdgeCutter::MergeLines() {
  const auto from = [this](std::uint32_t line) { return number_[lines_[line].from]; };
  const auto to = [this](std::uint32_t line) { return number_[lines_[line].to]; };
  std::vector<std::uint32_t> begin(out_.nodes_.size() + 1, 0);  // of the lines from each vertex
  for (std::uint32_t i = 0; i < lines_.size(); ++i) ++begin[from(i) + 1];
  std::partial_sum(begin.begin(), begin.end(), begin.begin());
  std::vector<std::uint32_t> order(lines_.size());
  std::vector<std::uint32_t> place(begin.begin(), begin.end() - 1);
  for (std::uint32_t i = 0; i < lines_.size(); ++i) order[place[from(i)]++] = i;
  out_.pieceOfLine_.assign(lines_.size(), Arrangement::kNoPiece);
  out_.pieces_.reserve(lines_.size());
  for (std::uint32_t v = 0; v < out_.nodes_.size(); ++v) {
    const std::span<std::uint32_t> here = std::span(order).subspan(begin[v], begin[v + 1] - begin[v]);
    if (here.size() > 1) std::sort(here.begin(), here.end(), [&](std::uint32_t i, std::uint32_t j) { return to(i) < to(j); });
    for (std::size_t first = 0; first < here.size();) {
      const std::uint32_t end = to(here[first]);
      std::size_t last = first;
      Winding net;
      for (; last < here.size() && to(here[last]) == end; ++last) net += lines_[here[last]].net;
      for (; first < last; ++first) {
        if (!net.IsZero()) out_.pieceOfLine_[here[first]] = static_cast<std::uint32_t>(out_.pieces_.size());
      }
      if (!net.IsZero()) out_.pieces_.push_back({v, end, net});
    }
  }
}

Arrangement::Arrangement(const EdgePoints& edges, const Resolution& resolution, std::size_t secondOperand, Care care) {
  if (edges.size() > 0) EdgeCutter(*this, edges, BoxOfRing(edges.points()), resolution, secondOperand).Run(care);
}

Arrangement::Arrangement(const EdgePoints& edges)
    : Arrangement(edges, Resolution::Coarse(BoxOfRing(edges.points())), edges.size(), Care::kThorough) {}

std::uint32_t Arrangement::PieceBetween(std::uint32_t u, std::uint32_t v) const {
  const auto [from, to] = std::minmax(u, v);
  const auto isBefore = [](const Piece& p, const Ends& ends) { return p.from != ends.from ? p.from < ends.from : p.to < ends.to; };
  const auto place = std::lower_bound(pieces_.begin(), pieces_.end(), Ends{from, to}, isBefore);
  const bool isThere = place != pieces_.end() && place->from == from && place->to == to;
  return isThere ? static_cast<std::uint32_t>(place - pieces_.begin()) : kNoPiece;
}

EdgesAlong::EdgesAlong(const Arrangement& arrangement, std::size_t edgeCount) : begin_(arrangement.pieces().size() + 1, 0) {
  const auto forEach = [&](auto visit) {
    for (std::uint32_t e = 0; e < edgeCount; ++e) {
      arrangement.PiecesOf(e, [&](std::uint32_t piece) {
        if (piece != Arrangement::kNoPiece) visit(e, piece);
      });
    }
  };
  forEach([&](std::uint32_t, std::uint32_t piece) { ++begin_[piece + 1]; });
  std::partial_sum(begin_.begin(), begin_.end(), begin_.begin());
  edges_.resize(begin_.back());
  std::vector<std::uint32_t> place(begin_.begin(), begin_.end() - 1);
  forEach([&](std::uint32_t e, std::uint32_t piece) { edges_[place[piece]++] = e; });
}

}  // namespace zbr
