// Regions by winding numbers: any rings, any rule of filling, any operation, decided exactly.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "arrangement/arrangement.h"
#include "arrangement/boundary.h"
#include "arrangement/flat_region.h"
#include "arrangement/strands_along.h"
#include "arrangement/winding_sweep.h"

namespace zbr {

// The tolerance for rings within a box when `wanted` is asked for: no finer than a few digits of the coordinates.
double OverlayTolerance(const Box& box, double wanted);

// Replaces the sources of a region that was made of the edges of another one by the sources of these.
void TraceBack(const FlatRegion& before, FlatRegion& region);

// The rings of one or two operands, any closed polygons of finite points, arranged once, combined as often as wanted.
//
// Nothing is decided in rounded arithmetic but which points and edges count as meeting, which those do that come within the
// tolerance. Result points are points of the input, to the bit, or crossings; as a last resort they are up to a step of the grid,
// one or two of the last digits, beside them.
class Overlay {
 public:
  // What is in the result, told by the winding numbers around a place.
  using Inside = std::function<bool(Winding)>;

  // Rings from `secondOperand` on belong to the second operand. Points within the tolerance become one; rings that are narrower
  // than `width` on the average are left out of results.
  Overlay(std::span<const RingSpan> rings, std::size_t secondOperand, double tolerance, double width);
  Overlay(Overlay&&) = default;  // the arrangement looks at the edges and chains, which keep their places

  // The region where `inside` holds.
  FlatRegion Region(const Inside& inside, bool withSources) const;

 private:
  class Assembler;

  // What the points of a result are.
  enum class Points {
    kTrue,    // those that vertices stand for; vertices that an edge only passes are left out
    kOfGrid,  // the places of all vertices on the grid
  };

  // Whether a result can stay as it is.
  enum class Rest {
    kCertain,
    kDoubtful,  // if its boundary keeps apart from itself
    kNone,      // it is to be arranged once more
  };

  Overlay(std::span<const RingSpan> rings, std::size_t secondOperand, double tolerance, double width, const Box& box);
  Arrangement Arranged(std::size_t secondOperand, Arrangement::Care care) const;
  FlatRegion Assembled(const Inside& inside, bool withSources, Points points, Rest& rest) const;
  FlatRegion Settled(const FlatRegion& region, Points points, Rest& rest) const;

  double tolerance_;
  double width_;
  EdgePoints edges_;
  Resolution resolution_;
  NodeGrid grid_;
  ClearChains chains_;
  Arrangement arrangement_;
  SweptPieces swept_;
  StrandsAlong along_;
};

}  // namespace zbr
