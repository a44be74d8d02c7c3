// The one search of the walk for regions: what crosses, and whether anything else comes near anything.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "boolean/walk_rings.h"
#include "loops/near_leaves.h"

namespace zbr {

// General position is when every ring is simple and keeps apart from the others of its operand, and edges of A and B keep apart or
// cross in the middle of both. Near is what lies within a few tolerances.
class WalkSearch {
 public:
  // Replaces `found`, in no order. False when the operands are not in general position, as far as rounded arithmetic can tell.
  bool Run(const WalkRings& rings, double eps, std::vector<OpenCrossing>& found);

  // For the search over the hierarchy.
  bool VisitLeaf(std::uint32_t leaf);
  bool VisitLeaves(std::uint32_t a, std::uint32_t b);

 private:
  struct Edge {
    ZBR_PT from;
    ZBR_PT to;
    Box box;
    std::uint32_t slot;  // of its ring
  };
  // Edges of one leaf.
  struct LeafEdges {
    std::uint32_t ring;
    std::uint32_t count;
    std::array<Edge, EdgeIndex::kLeafEdges> edges;
  };
  using Pair = std::array<std::uint8_t, 2>;
  // Pairs of edges, by their places in two lists.
  using Pairs = std::array<Pair, std::size_t{EdgeIndex::kLeafEdges} * EdgeIndex::kLeafEdges>;
  struct Sides;
  enum class Meeting { kApart, kCrossing, kUnclear };

  void Read(std::uint32_t leaf, const Box& around, double margin, LeafEdges& read) const;
  bool IsConvexRing(std::uint32_t leaf) const;
  bool AreNeighboursClear(const Edge& e, const Edge& f, std::uint32_t n, bool& areNeighbours) const;
  bool AreClearOnOneSide(const Edge& e, const Edge& f) const;
  bool AreClearAcross(const Edge& a, std::uint32_t ringA, const Edge& b, std::uint32_t ringB);
  Sides SidesOf(const Edge& e, const Edge& f) const;
  Meeting MeetingOf(const Edge& e, const Edge& f, const Sides& ofE, const Sides& ofF) const;
  bool IsNear(const ZBR_PT& p, const Edge& e) const;
  bool FoldsBack(const Edge& e, const Edge& next) const;

  const WalkRings* rings_ = nullptr;
  std::vector<OpenCrossing>* found_ = nullptr;
  double near_ = 0.0;
  double near2_ = 0.0;
  NearLeaves nearLeaves_;
};

}  // namespace zbr
