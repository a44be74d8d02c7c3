// A box hierarchy over the edges of many rings at once.
//
// Edges are taken in ring order, a leaf holding up to eight consecutive edges of one ring. With more than a few rings, the rings
// follow one another along a space-filling curve, so that small neighbouring rings share parents however they are ordered in their
// list. The index refers to the points given to it; they must outlive it and stay as they are.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/box.h"
#include "core/box_tree.h"
#include "core/scratch.h"

namespace zbr {

// A ring (or open polyline) as the index walks it: slot k is the edge that starts at vertex (start + k) mod n.
struct IndexedRing {
  Box bounds;  // what the caller takes for the ring's box; only its middle matters to the index
  const ZBR_PT* points = nullptr;
  std::uint32_t n = 0;
  std::uint32_t start = 0;
  std::uint32_t slots = 0;  // n for a ring, n - 1 for an open polyline
  std::uint32_t id = 0;     // the caller's
  bool hasRepeats = false;  // set by Build: some edge is no longer than the tolerance given to it

  std::uint32_t Vertex(std::uint32_t slot) const {
    const std::uint32_t v = start + slot;
    return v < n ? v : v - n;
  }
  std::uint32_t Next(std::uint32_t v) const { return v + 1 == n ? 0 : v + 1; }
};

class EdgeIndex {
 public:
  static constexpr std::uint32_t kLeafEdges = 8;

  // Edges [first, last) of one ring, in slots.
  struct Leaf {
    std::uint32_t ring;
    std::uint32_t first;
    std::uint32_t directions;  // a mask: core/directions.h
  };

  // Builds the index over `rings` (in the caller's order). Leaf boxes are widened by `margin`; an edge whose squared length is
  // within eps2 marks its ring as having repeats.
  void Build(std::vector<IndexedRing> rings, double margin, double eps2);
  // The same for rings put into the list given here, which is empty, in the order in which the index shall hold them. An index that
  // is built again and again keeps its memory.
  std::vector<IndexedRing>& StartRings() {
    rings_.clear();
    return rings_;
  }
  void Build(double margin, double eps2);
  // Without rings; large memory is given back.
  void Clear() {
    FreeLarge(rings_);
    FreeLarge(leaves_);
    tree_.Clear();
  }
  // With fewer rings than this any order will do: there is little to gain from another.
  static constexpr std::size_t kMinRingsToReorder = 8;

  const BoxTree& tree() const { return tree_; }
  const std::vector<IndexedRing>& rings() const { return rings_; }  // in the order in which the index holds them
  const Leaf& leaf(std::uint32_t i) const { return leaves_[i]; }
  std::uint32_t LastSlot(const Leaf& leaf) const {
    const std::uint32_t end = leaf.first + kLeafEdges;
    return end < rings_[leaf.ring].slots ? end : rings_[leaf.ring].slots;
  }
  // Calls visit(p, q) for the edges p-q of a leaf.
  template <class Visit>
  void VisitEdges(std::uint32_t leaf, Visit visit) const {
    const Leaf& at = leaves_[leaf];
    const IndexedRing& ring = rings_[at.ring];
    const std::uint32_t last = LastSlot(at);
    std::uint32_t u = ring.Vertex(at.first);
    for (std::uint32_t slot = at.first; slot < last; ++slot) {
      const std::uint32_t v = ring.Next(u);
      visit(ring.points[u], ring.points[v]);
      u = v;
    }
  }

 private:
  void FillLeaves(double margin, double eps2);

  std::vector<IndexedRing> rings_;
  std::vector<Leaf> leaves_;
  BoxTree tree_;
};

}  // namespace zbr
