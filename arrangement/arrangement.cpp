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
  // The chains are counted after the lines.
  const auto lines = static_cast<std::uint32_t>(lines_.size());
  const auto count = static_cast<std::uint32_t>(lines + chains_.size());
  const auto from = [&](std::uint32_t i) { return number_[i < lines ? lines_[i].from : chains_[i - lines].from]; };
  const auto after = [&](std::uint32_t i) { return i < lines ? out_.nodes_[number_[lines_[i].to]] : chains_[i - lines].after; };
  std::vector<std::uint32_t> begin(out_.nodes_.size() + 1, 0);  // of what leaves each vertex
  for (std::uint32_t i = 0; i < count; ++i) ++begin[from(i) + 1];
  std::partial_sum(begin.begin(), begin.end(), begin.begin());
  std::vector<std::uint32_t> order(count);
  std::vector<std::uint32_t> place(begin.begin(), begin.end() - 1);
  for (std::uint32_t i = 0; i < count; ++i) order[place[from(i)]++] = i;
  out_.pieceOfLine_.assign(lines, Arrangement::kNoPiece);
  out_.pieces_.reserve(count);
  for (std::uint32_t v = 0; v < out_.nodes_.size(); ++v) {
    const std::span<std::uint32_t> here = std::span(order).subspan(begin[v], begin[v + 1] - begin[v]);
    if (here.size() > 1)
      std::sort(here.begin(), here.end(), [&](std::uint32_t i, std::uint32_t j) { return IsBefore(after(i), after(j)); });
    for (std::size_t first = 0; first < here.size();) {
      if (here[first] >= lines) {
        AddChain(chains_[here[first++] - lines]);
        continue;
      }
      const std::uint32_t end = number_[lines_[here[first]].to];
      std::size_t last = first;
      Winding net;
      for (; last < here.size() && here[last] < lines && number_[lines_[here[last]].to] == end; ++last)
        net += lines_[here[last]].net;
      for (; first < last; ++first) {
        if (!net.IsZero()) out_.pieceOfLine_[here[first]] = static_cast<std::uint32_t>(out_.pieces_.size());
      }
      if (!net.IsZero()) out_.pieces_.push_back({v, end, net});
    }
  }
  if (!chains_.empty()) out_.chainOf_.resize(out_.pieces_.size(), Arrangement::kNoPiece);
}

void EdgeCutter::AddChain(const ChainLine& chain) {
  out_.chainOf_.resize(out_.pieces_.size(), Arrangement::kNoPiece);
  out_.chainOf_.push_back(2 * chain.chain + (chain.runsBack ? 1 : 0));
  out_.pieces_.push_back({number_[chain.from], number_[chain.to], chain.net});
}

Arrangement::Arrangement(const EdgePoints& edges, const Resolution& resolution, std::size_t secondOperand, Care care, Sense sense)
    : grid_(BoxOfRing(edges.points()), resolution.step) {
  if (edges.size() > 0) EdgeCutter(*this, edges, resolution, secondOperand, {}, sense).Run(care);
}

Arrangement::Arrangement(const EdgePoints& edges, const ClearChains& chains, const NodeGrid& grid, const Resolution& resolution,
                         std::size_t secondOperand, Care care)
    : grid_(grid), chainPoints_(edges.points()), chains_(chains.list) {
  EdgePoints others(edges, chains.others);
  std::vector<ChainLine> lines;
  lines.reserve(chains.list.size());
  const auto operandOf = [&](std::uint32_t edge) { return edge < secondOperand ? Winding{{1, 0}} : Winding{{0, 1}}; };
  std::uint32_t end = ClearChain::kNoTwin;  // of the last chain, and its place among the points
  std::uint32_t last = 0;
  for (std::uint32_t c = 0; c < chains_.size(); ++c) {
    const ClearChain& chain = chains_[c];
    Winding net = operandOf(chain.first);
    if (chain.twin != ClearChain::kNoTwin) net += chain.twinRunsBack ? -operandOf(chain.twin) : operandOf(chain.twin);
    if (net.IsZero()) continue;
    const auto& points = edges.points();
    const std::uint32_t first = end == chain.first ? last : others.AddPoint(points[chain.first]);
    end = edges.To(chain.first + chain.count - 1);
    last = others.AddPoint(points[end]);
    const bool runsBack = IsBefore(grid.NodeOf(points[end]), grid.NodeOf(points[chain.first]));
    const std::uint32_t after = runsBack ? chain.first + chain.count - 1 : edges.To(chain.first);
    lines.push_back(
        {c, runsBack ? last : first, runsBack ? first : last, grid.NodeOf(points[after]), runsBack, runsBack ? -net : net});
  }
  EdgeCutter cutter(*this, others, resolution, chains.OthersBefore(secondOperand), std::move(lines), Sense::kDirected);
  cutter.Run(care);
}

Arrangement::Arrangement(const EdgePoints& edges)
    : Arrangement(edges, Resolution::Coarse(BoxOfRing(edges.points())), edges.size(), Care::kThorough) {}

// Chains go from left to right, so the edge of one that lies above or below the node is found by halving.
int Arrangement::SideOfChain(std::uint32_t piece, GridPoint p) const {
  std::uint32_t first = 0;
  std::uint32_t last = BendCount(piece);  // p comes after the bends before first, and before the one at last
  while (first < last) {
    const std::uint32_t middle = first + (last - first) / 2;
    if (IsBefore(p, grid_.NodeOf(Bend(piece, middle)))) {
      last = middle;
    } else {
      first = middle + 1;
    }
  }
  const GridPoint from = first == 0 ? nodes_[pieces_[piece].from] : grid_.NodeOf(Bend(piece, first - 1));
  const GridPoint to = first == BendCount(piece) ? nodes_[pieces_[piece].to] : grid_.NodeOf(Bend(piece, first));
  return SideSign(from, to, p);
}

std::uint32_t Arrangement::PieceBetween(std::uint32_t u, std::uint32_t v) const {
  const auto [from, to] = std::minmax(u, v);
  const auto isBefore = [](const Piece& p, const Ends& ends) { return p.from != ends.from ? p.from < ends.from : p.to < ends.to; };
  const auto place = std::lower_bound(pieces_.begin(), pieces_.end(), Ends{from, to}, isBefore);
  const bool isThere = place != pieces_.end() && place->from == from && place->to == to;
  return isThere ? static_cast<std::uint32_t>(place - pieces_.begin()) : kNoPiece;
}

NumberLists EdgesAlong(const Arrangement& arrangement, std::size_t edgeCount) {
  return {arrangement.pieces().size(), [&](const auto& add) {
            for (std::uint32_t e = 0; e < edgeCount; ++e) {
              arrangement.PiecesOf(e, [&](std::uint32_t piece) {
                if (piece != Arrangement::kNoPiece) add(piece, e);
              });
            }
          }};
}

}  // namespace zbr
