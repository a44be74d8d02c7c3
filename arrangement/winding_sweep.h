// What the edges of an arrangement wind around, and which piece lies below which.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "arrangement/arrangement.h"

namespace zbr {

inline constexpr std::uint32_t kNoPieceBelow = ~std::uint32_t{0};

struct SweptPieces {
  // By piece: the winding below it, which is on its right as it runs from `from` to `to`; above it is that and the piece's net.
  std::vector<Winding> below;
  // By piece: one that the face below it lies directly above; kNoPieceBelow where that is the outer face.
  std::vector<std::uint32_t> under;
  // Whether no two pieces cross or overlap and none passes a node; otherwise the sweep has ended there, and the rest says nothing.
  bool isPlanar = true;
  // Whether a node lies so near a piece that the points that nodes stand for may lie on its other side, as crossings of three edges
  // in almost one place do. Only noticed after quick care.
  bool isTight = false;
  // The same for the straight lines between points that results are made of, past vertices that are left out.
  bool isNear = false;
};

// Of an arrangement whose pieces meet at nodes only for sure when it was made with thorough care. n log n.
SweptPieces SweepWindings(const Arrangement& arrangement, Arrangement::Care care);

// For each piece: 1 when the winding number of the first operand is positive on its left only, as seen from its `from` to its
// `to`; -1 when it is so on its right only; 0 when both sides are alike. n log n.
std::vector<std::int8_t> BoundarySides(const Arrangement& arrangement);

}  // namespace zbr
