// Idea: near_leaves.h leaves out the chains that can't meet themselves; what is left is searched down to pairs of edges.
// Where a vertex lies on another part of the rings, the two edges there tell whether these pass through the corner at the vertex:
// one on its left and one on its right.
#include "loops/simplicity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "loops/leaf_strips.h"
#include "loops/near_leaves.h"

namespace zbr {
namespace {

class SelfSearch {
 public:
  SelfSearch(const EdgeIndex& index, double margin)
      : index_(index),
        eps2_(t_tolerance.eps2),
        on_(kSurelyOn * t_tolerance.eps),
        near_(kSurelyOff * t_tolerance.eps),
        room_(2.0 * (near_ - margin)) {}

  Simplicity Run() {
    if (!NearLeaves().Run(index_, room_, *this)) return Simplicity::kUnclear;
    return touches_ ? Simplicity::kTouching : Simplicity::kSimple;
  }

  bool VisitLeaf(std::uint32_t leaf) { return !IsLeafUnclear(leaf); }
  bool VisitLeaves(std::uint32_t a, std::uint32_t b) {
    if (++leafPairs_ > NearLeaves::kMostPairsPerLeaf * index_.tree().Count(0)) return false;
    return AreStripsApart(a, b) || !AreLeavesUnclear(a, b);
  }
  bool ComesNear(std::uint32_t leaf, int level, std::uint32_t node) const {
    if (!strips_.IsEmpty()) return true;  // strips tell sooner
    bool comesNear = false;
    VisitNear(leaf, index_.tree().Level(level)[node].Widened(room_ / 2.0), [&](const Edge&) {
      comesNear = true;
      return false;
    });
    return comesNear;
  }

 private:
  struct Edge {  // of a leaf that is being looked at; so many are read that copies of points would show
    const ZBR_PT* start;
    const ZBR_PT* end;
    const IndexedRing* ring;
    std::uint32_t slot;

    const ZBR_PT& from() const { return *start; }
    const ZBR_PT& to() const { return *end; }
  };
  using LeafEdges = std::array<Edge, EdgeIndex::kLeafEdges>;

  // These answer whether something is unclear, and note touches.
  bool IsLeafUnclear(std::uint32_t leaf);
  bool AreLeavesUnclear(std::uint32_t a, std::uint32_t b);
  bool AreStripsApart(std::uint32_t a, std::uint32_t b);
  bool IsPairOfEdgesUnclear(const Edge& e, const Edge& f);
  bool IsPairUnclear(const Edge& a, const Edge& b);
  bool IsEndUnclear(const Edge& e, bool atEnd, const Edge& other);

  template <class Visit>
  void VisitNear(std::uint32_t leaf, const Box& box, Visit visit) const;
  std::uint32_t Read(std::uint32_t leaf, const Box& box, LeafEdges& edges) const;
  bool IsConvex(const LeafEdges& edges, std::uint32_t count) const;
  bool AreNeighbours(const Edge& a, const Edge& b) const;
  bool FoldsBack(const Edge& a, const Edge& b) const;
  bool IsNearEdge(const ZBR_PT& p, const Edge& e) const;
  ZBR_PT Neighbour(const IndexedRing& ring, std::uint32_t vertex, bool forward) const;
  bool PassThrough(const ZBR_PT& prev, const ZBR_PT& at, const ZBR_PT& next, const ZBR_PT& arm1, const ZBR_PT& arm2) const;

  // Where more touch than this, many rings share a corner, every two of them. What passes through what there is not looked at.
  static constexpr std::size_t kTouchingsPerLeaf = 256;

  // With fewer pairs of leaves to look at, strips around them would cost more than they save.
  static constexpr std::size_t kPairsPerLeaf = 8;

  const EdgeIndex& index_;
  double eps2_;
  double on_;
  double near_;
  double room_;  // by which a box is widened so that it meets the boxes of what is near; their margins are taken off
  bool touches_ = false;
  std::size_t touchings_ = 0;  // pairs of edges that touch
  LeafStrips strips_;
  std::size_t leafPairs_ = 0;
};

// Calls visit(edge) for the edges of a leaf that come near the box, but for those that are no longer than the tolerance. The visit
// answers false to end it.
template <class Visit>
void SelfSearch::VisitNear(std::uint32_t leaf, const Box& box, Visit visit) const {
  const EdgeIndex::Leaf& at = index_.leaf(leaf);
  const IndexedRing& ring = index_.rings()[at.ring];
  const std::uint32_t last = index_.LastSlot(at);
  std::uint32_t v = ring.Vertex(at.first);
  unsigned beyond = SidesBeyond(ring.points[v], box);
  for (std::uint32_t slot = at.first; slot < last; ++slot) {
    const ZBR_PT& from = ring.points[v];
    const unsigned beyondFrom = beyond;
    v = ring.Next(v);
    const ZBR_PT& to = ring.points[v];
    beyond = SidesBeyond(to, box);
    if ((beyondFrom & beyond) == 0 && from.Distance2(to) > eps2_ && !visit(Edge{&from, &to, &ring, slot})) return;
  }
}

std::uint32_t SelfSearch::Read(std::uint32_t leaf, const Box& box, LeafEdges& edges) const {
  std::uint32_t count = 0;
  VisitNear(leaf, box, [&](const Edge& edge) {
    edges[count++] = edge;
    return true;
  });
  return count;
}

bool SelfSearch::IsPairOfEdgesUnclear(const Edge& e, const Edge& f) {
  const bool follows = AreNeighbours(e, f);
  const bool precedes = AreNeighbours(f, e);
  if (follows || precedes) return (follows && FoldsBack(e, f)) || (precedes && FoldsBack(f, e));
  return IsPairUnclear(e, f);
}

bool SelfSearch::IsLeafUnclear(std::uint32_t leaf) {
  const Box& box = index_.tree().Level(0)[leaf];
  LeafEdges edges;
  const std::uint32_t count = Read(leaf, box, edges);
  if (count == index_.rings()[index_.leaf(leaf).ring].slots && IsConvex(edges, count)) return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    const Box around = BoxOfSegment(edges[i].from(), edges[i].to()).Widened(near_);
    unsigned beyond = SidesBeyond(edges[i].to(), around);
    for (std::uint32_t j = i + 1; j < count; ++j) {
      const unsigned beyondFrom = edges[j].start == edges[j - 1].end ? beyond : SidesBeyond(edges[j].from(), around);
      beyond = SidesBeyond(edges[j].to(), around);
      if ((beyondFrom & beyond) == 0 && IsPairOfEdgesUnclear(edges[i], edges[j])) return true;
    }
  }
  return false;
}

bool SelfSearch::AreStripsApart(std::uint32_t a, std::uint32_t b) {
  if (strips_.IsEmpty()) {
    if (leafPairs_ <= kPairsPerLeaf * index_.tree().Count(0)) return false;
    strips_.Fill(index_);
  }
  return strips_.AreApart(a, b, near_);
}

// Of two different leaves.
bool SelfSearch::AreLeavesUnclear(std::uint32_t a, std::uint32_t b) {
  const Box* boxes = index_.tree().Level(0);
  LeafEdges edgesA;
  const std::uint32_t countA = Read(a, boxes[b].Widened(room_ / 2.0), edgesA);
  if (countA == 0) return false;
  Box aroundA;
  for (std::uint32_t i = 0; i < countA; ++i) aroundA.Add(BoxOfSegment(edgesA[i].from(), edgesA[i].to()));
  LeafEdges edgesB;
  const std::uint32_t countB = Read(b, aroundA.Widened(near_), edgesB);
  for (std::uint32_t i = 0; i < countA && countB > 0; ++i) {
    const Box around = BoxOfSegment(edgesA[i].from(), edgesA[i].to()).Widened(near_);
    for (std::uint32_t j = 0; j < countB; ++j) {
      if ((SidesBeyond(edgesB[j].from(), around) & SidesBeyond(edgesB[j].to(), around)) != 0) continue;
      if (IsPairOfEdgesUnclear(edgesA[i], edgesB[j])) return true;
    }
  }
  return false;
}

// Whether the edges, which are a whole ring, turn clearly to one side at every vertex, and once around: then the directions change
// from going right to going left once and back once.
bool SelfSearch::IsConvex(const LeafEdges& edges, std::uint32_t count) const {
  if (count < 3) return false;
  unsigned turns = 0;
  unsigned changes = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const Edge& f = edges[i + 1 < count ? i + 1 : 0];
    const ZBR_PT d = edges[i].to() - edges[i].from();
    const ZBR_PT e = f.to() - f.from();
    const double turn = Cross(d, e);
    if (!(std::fabs(turn) > near_ * (std::fabs(d.x()) + std::fabs(d.y()) + std::fabs(e.x()) + std::fabs(e.y())))) return false;
    turns |= turn > 0.0 ? 1U : 2U;
    const auto goesLeft = [](const ZBR_PT& v) { return v.x() < 0.0 || (v.x() == 0.0 && v.y() < 0.0); };
    changes += goesLeft(d) != goesLeft(e) ? 1U : 0U;
  }
  return turns != 3U && changes == 2U;
}

// Whether nothing but edges without length lies between a and b.
bool SelfSearch::AreNeighbours(const Edge& a, const Edge& b) const {
  if (a.ring != b.ring) return false;
  const IndexedRing& ring = *a.ring;
  std::uint32_t slot = a.slot;
  for (std::uint32_t tries = 0; tries < ring.slots; ++tries) {
    slot = slot + 1 == ring.slots ? 0 : slot + 1;
    if (slot == b.slot) return true;
    if (!ring.hasRepeats) return false;
    const std::uint32_t v = ring.Vertex(slot);
    if (ring.points[v].Distance2(ring.points[ring.Next(v)]) > eps2_) return false;
  }
  return false;
}

// The next vertex that is not at the same place.
ZBR_PT SelfSearch::Neighbour(const IndexedRing& ring, std::uint32_t vertex, bool forward) const {
  std::uint32_t v = vertex;
  do {
    v = forward ? ring.Next(v) : (v == 0 ? ring.n : v) - 1;
  } while (v != vertex && ring.points[v].Distance2(ring.points[vertex]) <= eps2_);
  return ring.points[v];
}

bool SelfSearch::IsNearEdge(const ZBR_PT& p, const Edge& e) const {
  const ZBR_PT d = e.to() - e.from();
  const double length2 = d.Length2();
  const double along = std::clamp(d.InnerProduct(p - e.from()) / length2, 0.0, 1.0);
  return p.Distance2(e.from() + d * along) <= near_ * near_;
}

bool SelfSearch::IsPairUnclear(const Edge& a, const Edge& b) {
  ZBR_COUNT(pairs, 1);
  const auto sides = [](const Edge& e, const Edge& f) {
    const ZBR_PT d = e.to() - e.from();
    return std::pair(Cross(d, f.from() - e.from()), Cross(d, f.to() - e.from()));
  };
  const auto areApart = [](const std::pair<double, double>& s, double least) {
    return (s.first > least && s.second > least) || (s.first < -least && s.second < -least);
  };
  const double least = near_ * std::max((a.to() - a.from()).Length(), (b.to() - b.from()).Length());
  const auto ofA = sides(a, b);
  if (areApart(ofA, least)) return false;
  const auto ofB = sides(b, a);
  if (areApart(ofB, least)) return false;
  const bool nearEnds[] = {IsNearEdge(a.from(), b), IsNearEdge(a.to(), b), IsNearEdge(b.from(), a), IsNearEdge(b.to(), a)};
  if (std::none_of(std::begin(nearEnds), std::end(nearEnds), [](bool isNear) { return isNear; })) {
    const auto differ = [](const std::pair<double, double>& s) { return (s.first > 0.0) != (s.second > 0.0); };
    return differ(ofA) && differ(ofB);
  }
  touches_ = true;
  if (++touchings_ > kTouchingsPerLeaf * index_.tree().Count(0)) return true;
  return (nearEnds[0] && IsEndUnclear(a, false, b)) || (nearEnds[1] && IsEndUnclear(a, true, b)) ||
         (nearEnds[2] && IsEndUnclear(b, false, a)) || (nearEnds[3] && IsEndUnclear(b, true, a));
}

// Of an end of e that comes near the other edge.
bool SelfSearch::IsEndUnclear(const Edge& e, bool atEnd, const Edge& other) {
  const std::uint32_t vertex = atEnd ? e.ring->Next(e.ring->Vertex(e.slot)) : e.ring->Vertex(e.slot);
  const ZBR_PT& at = e.ring->points[vertex];
  ZBR_PT arms[] = {other.from(), other.to()};
  for (const bool end : {false, true}) {
    const ZBR_PT& q = end ? other.to() : other.from();
    if (at.Distance2(q) > kSurelyApart * kSurelyApart * eps2_) continue;
    if (at.Distance2(q) > on_ * on_) return true;
    const std::uint32_t from = other.ring->Vertex(other.slot);
    const std::uint32_t corner = end ? other.ring->Next(from) : from;
    arms[0] = Neighbour(*other.ring, corner, false);
    arms[1] = Neighbour(*other.ring, corner, true);
  }
  const ZBR_PT d = other.to() - other.from();
  const double side = Cross(d, at - other.from());
  if (side * side > on_ * on_ * d.Length2()) return true;
  return PassThrough(Neighbour(*e.ring, vertex, false), at, Neighbour(*e.ring, vertex, true), arms[0], arms[1]);
}

// Whether the two arms leave the corner on different sides, or run along it.
bool SelfSearch::PassThrough(const ZBR_PT& prev, const ZBR_PT& at, const ZBR_PT& next, const ZBR_PT& arm1,
                             const ZBR_PT& arm2) const {
  const ZBR_PT back = prev - at;
  const ZBR_PT ahead = next - at;
  const auto runsAlong = [this](const ZBR_PT& u, const ZBR_PT& v) {
    const double shorter = std::min(u.Length(), v.Length());
    return u.InnerProduct(v) > 0.0 && std::fabs(Cross(u, v)) * shorter <= near_ * u.Length() * v.Length();
  };
  const auto isLeft = [&](const ZBR_PT& u) {
    const bool leftOfAhead = Cross(ahead, u) > 0.0;
    const bool leftOfBack = Cross(u, back) > 0.0;
    return Cross(ahead, back) > 0.0 ? leftOfAhead && leftOfBack : leftOfAhead || leftOfBack;
  };
  const ZBR_PT u = arm1 - at;
  const ZBR_PT v = arm2 - at;
  if (runsAlong(u, back) || runsAlong(u, ahead) || runsAlong(v, back) || runsAlong(v, ahead)) return true;
  return isLeft(u) != isLeft(v);
}

// Of two edges that follow each other.
bool SelfSearch::FoldsBack(const Edge& a, const Edge& b) const {
  return (a.to() - a.from()).InnerProduct(b.to() - b.from()) < 0.0 && (IsNearEdge(b.to(), a) || IsNearEdge(a.from(), b));
}

}  // namespace

Simplicity SimplicityOf(const EdgeIndex& index, double margin) {
  return SelfSearch(index, margin).Run();
}

}  // namespace zbr
