// What must hold of an arrangement. A function gives null, or what is wrong.
#pragma once

#include "arrangement/arrangement.h"

namespace zbr {

// Vertices in the order of the sweep, pieces in the order of their ends: what the sweep and the walks rely on.
inline const char* OrderFault(const Arrangement& arrangement) {
  const std::vector<GridPoint>& nodes = arrangement.nodes();
  for (std::size_t v = 1; v < nodes.size(); ++v) {
    if (!IsBefore(nodes[v - 1], nodes[v])) return "vertices out of order";
  }
  const Arrangement::Piece* prev = nullptr;
  for (const Arrangement::Piece& p : arrangement.pieces()) {
    if (p.from >= p.to || p.to >= nodes.size()) return "a piece that does not run forward between vertices";
    if (p.net.IsZero()) return "a piece along which as many edges run one way as the other";
    if (prev != nullptr && (prev->from > p.from || (prev->from == p.from && prev->to >= p.to))) return "pieces out of order";
    prev = &p;
  }
  return nullptr;
}

// No piece passes a vertex or crosses another, exactly on the grid. Every piece is held against every vertex and every other piece.
inline const char* PlanarityFault(const Arrangement& arrangement) {
  const std::vector<GridPoint>& nodes = arrangement.nodes();
  const auto side = [&](const Arrangement::Piece& p, std::uint32_t v) { return SideSign(nodes[p.from], nodes[p.to], nodes[v]); };
  const auto parts = [&](const Arrangement::Piece& p, const Arrangement::Piece& q) { return side(p, q.from) * side(p, q.to) < 0; };
  for (const Arrangement::Piece& p : arrangement.pieces()) {
    for (std::uint32_t v = p.from + 1; v < p.to; ++v) {
      if (side(p, v) == 0) return "a piece passes a vertex";
    }
    for (const Arrangement::Piece& q : arrangement.pieces()) {
      if (&q != &p && parts(p, q) && parts(q, p)) return "pieces cross";
    }
  }
  return nullptr;
}

inline const char* ArrangementFault(const Arrangement& arrangement) {
  constexpr std::size_t kFewPieces = 100;  // beyond that, trying all pairs would be most of a build with checks
  if (const char* const fault = OrderFault(arrangement)) return fault;
  return arrangement.pieces().size() <= kFewPieces ? PlanarityFault(arrangement) : nullptr;
}

}  // namespace zbr
