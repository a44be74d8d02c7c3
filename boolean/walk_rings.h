// The rings of two operands as the walk for regions sees them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "boolean/region_input.h"
#include "core/planar_inline.h"
#include "loops/edge_index.h"

namespace zbr {

// The power of two by which operands within the bounds, which are finite and not a point, are scaled so that the tolerance of their
// walk is kBooleanEps: to an extent of 2^12 to 2^13. Far from the origin crossings are rounded to the digits of the coordinates
// there; then less, so that the tolerance is above that.
int WalkExponent(const Box& bounds);

// Lengths that decide, for operands of a given extent.
struct WalkScale {
  explicit WalkScale(const Box& bounds);

  bool isUsable = false;  // the numbers are ordinary enough for squares of squares of lengths
  double eps = 0.0;       // what is no farther apart is one place
  double least = 0.0;     // the least area that a ring has
  double width = 0.0;     // what rounding explains of the width of a ring
  double longest = 0.0;   // no edge is longer
};

struct WalkedRing {
  RingSpan points;          // the last differs from the first
  std::uint32_t firstEdge;  // number of the edge from points[0], counted through the rings of the operand
  bool isReversed;          // the region lies on its right; before it is known what is around it, whether it runs clockwise
  bool isCrossed;           // by some ring of the other operand
  bool isInside;            // the other operand, if it isn't crossed

  std::uint32_t size() const { return static_cast<std::uint32_t>(points.size()); }
};

// Whether the ray from p to the left passes the edge.
inline bool IsLeftOf(const ZBR_PT& p, const ZBR_PT& from, const ZBR_PT& to) {
  const bool isUpwards = from.y() <= p.y();
  return isUpwards != (to.y() <= p.y()) && (Cross(to - from, p - from) < 0.0) == isUpwards;
}

// An edge, numbered through an operand, that crosses one of the other operand in the open, far from all vertices.
struct OpenCrossing {
  ZBR_PT pt;
  std::uint32_t edge[2];
  bool toLeft;  // B, as its points go, passes A's edge to the left
};

// Rings of A, then those of B. Memory is kept from one pair of operands to the next.
class WalkRings {
 public:
  // Edges of both operands up to which all pairs of them are looked at, without a hierarchy.
  static constexpr std::size_t kSmall = 64;

  // False when the walk can't be certain of these rings. Their points must outlive this.
  bool Load(const RegionInput& input, const WalkScale& scale);

  std::span<WalkedRing> all() { return rings_; }
  std::span<const WalkedRing> all() const { return rings_; }
  std::uint32_t count(int side) const { return side == 0 ? countA_ : static_cast<std::uint32_t>(rings_.size()) - countA_; }
  std::uint32_t first(int side) const { return side == 0 ? 0 : countA_; }
  std::uint32_t edges(int side) const { return edges_[side]; }
  int SideOf(std::uint32_t ring) const { return ring < countA_ ? 0 : 1; }
  bool AreSmall() const { return std::size_t{edges_[0]} + edges_[1] <= kSmall; }
  // Over the edges of all rings, whose ids are their numbers here; unless they are small.
  const EdgeIndex& index() const { return index_; }
  void ClearIndex() { index_.Clear(); }
  // Without rings; large memory is given back.
  void Clear() {
    FreeLarge(rings_);
    cleaned_.clear();
    index_.Clear();
  }
  // Whether the ray from p to the left passes the edges of a leaf of the index an odd number of times. Vertices at the height of p
  // count as lying below it. For points that do not come near the edges.
  bool IsLeafOdd(std::uint32_t leaf, const ZBR_PT& p) const;

 private:
  bool HaveRepeats(double eps2) const;
  bool Index(double eps2);
  void DropRepeats(double eps2);

  std::vector<WalkedRing> rings_;
  std::uint32_t countA_ = 0;
  std::uint32_t edges_[2] = {0, 0};
  EdgeIndex index_;
  std::vector<std::vector<ZBR_PT>> cleaned_;  // rings without their repeated points
};

}  // namespace zbr
