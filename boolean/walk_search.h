// The one search of the walk for regions: what crosses, whether anything else comes near anything, and which small rings lie around
// what.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "boolean/walk_rings.h"
#include "loops/near_leaves.h"

namespace zbr {

// General position is when every ring is simple and keeps apart from the others of its operand, and edges of A and B keep apart or
// cross in the middle of both. Near is what lies within a few tolerances.
class WalkSearch {
 public:
  // Replaces `found`, in no order, and notes which rings are crossed. False when the operands are not in general position, as far
  // as rounded arithmetic can tell, or when boxes overlap so often that looking at all pairs would take long.
  bool Run(WalkRings& rings, double eps, std::vector<OpenCrossing>& found);
  // Of a leaf of the index, for each operand as a bit: whether an odd number of those rings lies around its edges that are a leaf
  // by themselves. It tells nothing of rings of the other operand that cross its ring.
  unsigned Around(std::uint32_t leaf) const { return around_[leaf]; }

  // Of leaves nothing is known any more; large memory is given back.
  void Clear() {
    FreeLarge(around_);
    nearLeaves_.Clear();
  }

  // For the search over the hierarchy.
  bool VisitLeaf(std::uint32_t leaf);
  bool VisitLeaves(std::uint32_t a, std::uint32_t b);
  bool ComesNear(std::uint32_t leaf, int level, std::uint32_t node);

 private:
  struct Edge {
    ZBR_PT from;
    ZBR_PT to;
    Box box;
    std::uint32_t ring;
    std::uint32_t slot;
  };
  // Edges of one leaf.
  struct LeafEdges {
    std::uint32_t count;
    std::array<Edge, EdgeIndex::kLeafEdges> edges;
  };
  struct Sides;
  enum class Meeting { kApart, kCrossing, kUnclear };

  bool SearchAll();
  bool AreRingsClear(std::span<const Edge> ring, const Box& bounds, std::span<const Edge> other, const Box& otherBounds);
  bool ArePairsClear(std::span<const Edge> edges, std::span<const Edge> others);
  bool IsPairClear(const Edge& e, const Edge& f);
  std::uint8_t BitOf(std::uint32_t ring) const { return rings_->SideOf(ring) == 0 ? 1 : 2; }
  void NoteAround(std::uint32_t leaf, std::uint32_t other);
  void PushDown();
  void Read(std::uint32_t leaf, const Box& around, LeafEdges& read) const;
  bool IsConvexRing(std::uint32_t leaf) const;
  bool AreClearOnOneSide(const Edge& e, const Edge& f) const;
  bool AreClearAcross(const Edge& a, const Edge& b);
  Sides SidesOf(const Edge& e, const Edge& f) const;
  Meeting MeetingOf(const Edge& e, const Edge& f, const Sides& ofE, const Sides& ofF) const;
  bool IsNear(const ZBR_PT& p, const Edge& e) const;
  bool FoldsBack(const Edge& e, const Edge& next) const;

  WalkRings* rings_ = nullptr;
  std::vector<OpenCrossing>* found_ = nullptr;
  double near_ = 0.0;
  double near2_ = 0.0;
  NearLeaves nearLeaves_;
  std::size_t leafPairs_ = 0;
  std::vector<std::uint8_t> around_;  // by node of the hierarchy, level by level as there; of leaves, when all is done
};

}  // namespace zbr
