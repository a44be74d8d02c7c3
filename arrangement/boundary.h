// The boundary of a part of an arrangement's faces, as rings that say which hole lies in which outer ring.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "arrangement/arrangement.h"
#include "arrangement/winding_sweep.h"

namespace zbr {

// Rings of pieces in walking order, the region on the left: outer rings counter-clockwise, holes clockwise.
struct BoundaryRings {
  static constexpr std::uint32_t kOuter = ~std::uint32_t{0};

  std::vector<std::uint32_t> pieces;  // of all rings, one ring after the other
  std::vector<std::uint32_t> ends;    // of the rings in `pieces`
  std::vector<std::uint32_t> parent;  // of a hole the ring that it lies directly in, kOuter for outer rings
  // Rings that begin within their last piece, a chain, with its last edge: where a walk over the edges begins, at the first of
  // them, this is in its middle. Ascending.
  std::vector<std::uint32_t> beginningInChain;

  std::size_t size() const { return ends.size(); }
  std::span<const std::uint32_t> ring(std::size_t i) const {
    const std::uint32_t begin = i == 0 ? 0 : ends[i - 1];
    return std::span(pieces).subspan(begin, ends[i] - begin);
  }
};

// sides[p] is 1 when the region lies on the left of piece p only, as seen from its `from` to its `to`; -1 when on its right only; 0
// when p does not bound it. The rings pass no vertex twice and do not cross; two may touch at vertices, but never so that the
// inside of an outer ring with its holes falls apart: they are polygons as geometry exchange wants them. Linear but for the
// sorting of what meets at one vertex.
BoundaryRings TraceBoundary(const Arrangement& arrangement, std::span<const std::int8_t> sides, const SweptPieces& swept);

// Where a piece of a boundary starts and ends when the region is to lie on its left.
inline std::uint32_t StartOf(const ArrangedPiece& piece, std::int8_t side) {
  return side > 0 ? piece.from : piece.to;
}
inline std::uint32_t EndOf(const ArrangedPiece& piece, std::int8_t side) {
  return side > 0 ? piece.to : piece.from;
}

}  // namespace zbr
