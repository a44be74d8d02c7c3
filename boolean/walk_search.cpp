// Idea: all edges of both operands are in one hierarchy, so that one pass finds the edges that cross and sees whether the operands
// are simple. A pair of edges is apart, or crosses with its four ends clearly beside the other edge, or nothing is said at all.
// Why that is certain: a point that is clearly beside a line, by some tolerances, is so whatever the rounding. Where two edges
// cross and an end of one lies near the line of the other, then beyond the other's end, which the first must pass closely; so an
// end is near the other edge, and that is looked at.
// The search meets every ring that is no more than a leaf with everything else, so it also tells what lies in such rings: in the
// interior of one, whole nodes at a time.
#include "boolean/walk_search.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/constants.h"
#include "core/cost.h"
#include "core/planar_inline.h"
#include "loops/convex_ring.h"
#include "loops/star_ring.h"

namespace zbr {

// On which sides of an edge's line the ends of another one lie.
struct WalkSearch::Sides {
  double from;
  double to;
  bool areClear;  // both ends are

  bool AreEqual() const { return (from > 0.0) == (to > 0.0); }
};

bool WalkSearch::Run(WalkRings& rings, double eps, std::vector<OpenCrossing>& found) {
  rings_ = &rings;
  found_ = &found;
  near_ = kSurelyOff * eps;
  near2_ = near_ * near_;
  leafPairs_ = 0;
  found.clear();
  if (rings.AreSmall()) return SearchAll();
  constexpr std::size_t kEdgesPerCrossing = 4;  // more crossings are seldom; room that is not used takes no memory
  found.reserve((std::size_t{rings.edges(0)} + rings.edges(1)) / kEdgesPerCrossing);
  const BoxTree& tree = rings.index().tree();
  around_.assign(static_cast<std::size_t>(tree.Level(tree.TopLevel()) - tree.Level(0)) + 1, 0);
  if (!nearLeaves_.Run(rings.index(), 2.0 * near_, *this)) return false;
  PushDown();
  return true;
}

// Without a hierarchy: ring by ring, and of two rings only the edges that come near the other one's box.
bool WalkSearch::SearchAll() {
  std::array<Edge, WalkRings::kSmall> edges;
  std::array<std::span<const Edge>, WalkRings::kSmall> ringEdges;
  std::array<Box, WalkRings::kSmall> boxes;
  std::size_t count = 0;
  for (std::uint32_t r = 0; r < rings_->all().size(); ++r) {
    const RingSpan points = rings_->all()[r].points;
    const std::size_t first = count;
    Box bounds;
    const ZBR_PT* from = &points.back();
    for (std::uint32_t i = 0; i < points.size(); ++i) {
      const ZBR_PT* to = points.data() + i;
      edges[count++] = {*from, *to, BoxOfSegment(*from, *to).Widened(near_), r, (i == 0 ? rings_->all()[r].size() : i) - 1};
      bounds.Add(*to);
      from = to;
    }
    boxes[r] = bounds.Widened(near_);
    ringEdges[r] = std::span(edges).subspan(first, count - first);
    if (!IsClearlyStarShaped(points, near_) && !ArePairsClear(ringEdges[r], {})) return false;
    for (std::uint32_t q = 0; q < r; ++q) {
      if (Overlap(boxes[q], boxes[r]) && !AreRingsClear(ringEdges[q], boxes[q], ringEdges[r], boxes[r])) return false;
    }
  }
  return true;
}

bool WalkSearch::AreRingsClear(std::span<const Edge> ring, const Box& bounds, std::span<const Edge> other, const Box& otherBounds) {
  std::array<Edge, WalkRings::kSmall> near;
  std::size_t count = 0;
  const auto read = [&](std::span<const Edge> edges, const Box& around) {
    const std::size_t begin = count;
    for (const Edge& e : edges) {
      near[count] = e;
      count += Overlap(e.box, around) ? 1U : 0U;
    }
    return std::span<const Edge>(near).subspan(begin, count - begin);
  };
  const std::span<const Edge> first = read(ring, otherBounds);
  const std::span<const Edge> second = read(other, bounds);
  return first.empty() || second.empty() || ArePairsClear(first, second);
}

// The edges of a leaf that come near the box, their own boxes widened by the margin. Which do is as good as random, so there is no
// branch.
void WalkSearch::Read(std::uint32_t leaf, const Box& around, LeafEdges& read) const {
  const EdgeIndex& index = rings_->index();
  const std::uint32_t ring = index.rings()[index.leaf(leaf).ring].id;
  std::uint32_t slot = index.leaf(leaf).first;
  std::uint32_t count = 0;
  index.VisitEdges(leaf, [&](const ZBR_PT& p, const ZBR_PT& q) {
    const Box box = BoxOfSegment(p, q).Widened(near_);
    read.edges[count] = {p, q, box, ring, slot++};
    count += Overlap(box, around) ? 1U : 0U;
  });
  read.count = count;
}

bool WalkSearch::VisitLeaf(std::uint32_t leaf) {
  if (IsConvexRing(leaf)) return true;
  LeafEdges read;
  Read(leaf, rings_->index().tree().Level(0)[leaf], read);
  return ArePairsClear(std::span(read.edges).first(read.count), {});
}

bool WalkSearch::VisitLeaves(std::uint32_t a, std::uint32_t b) {
  const BoxTree& tree = rings_->index().tree();
  if (++leafPairs_ > NearLeaves::kMostPairsPerLeaf * tree.Count(0) + found_->size()) return false;
  const Box* boxes = tree.Level(0);
  LeafEdges readA;
  LeafEdges readB;
  Read(a, boxes[b], readA);
  readB.count = 0;
  if (readA.count > 0) Read(b, boxes[a], readB);
  if (readB.count > 0) {
    ZBR_COUNT(pairs, readA.count * readB.count);
    if (!ArePairsClear(std::span(readA.edges).first(readA.count), std::span(readB.edges).first(readB.count))) return false;
  }
  NoteAround(a, b);
  NoteAround(b, a);
  return true;
}

// Whether the edges of one list are clear of those of the other, or of each other when there is no other. Which boxes meet is as
// good as random, too.
bool WalkSearch::ArePairsClear(std::span<const Edge> edges, std::span<const Edge> others) {
  struct Pair {
    std::uint16_t i;
    std::uint16_t j;
  };
  constexpr std::size_t kMost = WalkRings::kSmall;
  const bool isOneList = others.empty();
  if (isOneList) others = edges;
  std::array<Pair, 2 * kMost> pairs;
  std::size_t count = 0;
  const auto end = static_cast<unsigned>(others.size());
  for (unsigned i = 0; i < edges.size(); ++i) {
    const Box box = edges[i].box;
    for (unsigned j = isOneList ? i + 1 : 0; j < end; ++j) {
      pairs[count] = {static_cast<std::uint16_t>(i), static_cast<std::uint16_t>(j)};
      count += Overlap(box, others[j].box) ? 1U : 0U;
    }
    if (count <= kMost && i + 1 < edges.size()) continue;
    for (const Pair& pair : std::span(pairs).first(count)) {
      if (!IsPairClear(edges[pair.i], others[pair.j])) return false;
    }
    count = 0;
  }
  return true;
}

bool WalkSearch::IsPairClear(const Edge& e, const Edge& f) {
  const int side = rings_->SideOf(e.ring);
  if (side != rings_->SideOf(f.ring)) return side == 0 ? AreClearAcross(e, f) : AreClearAcross(f, e);
  if (e.ring == f.ring) {
    const std::uint32_t n = rings_->all()[e.ring].size();
    const bool before = (e.slot + 1 == n ? 0 : e.slot + 1) == f.slot;
    const bool behind = (f.slot + 1 == n ? 0 : f.slot + 1) == e.slot;
    if (before || behind) return !(before && FoldsBack(e, f)) && !(behind && FoldsBack(f, e));
  }
  return AreClearOnOneSide(e, f);
}

// Where no edge of a ring comes near a box, all that is in it lies on one side of the ring.
bool WalkSearch::ComesNear(std::uint32_t leaf, int level, std::uint32_t node) {
  const EdgeIndex& index = rings_->index();
  const Box& box = index.tree().Level(level)[node];
  const Box around = box.Widened(2.0 * near_);
  bool comesNear = false;
  index.VisitEdges(leaf, [&](const ZBR_PT& p, const ZBR_PT& q) { comesNear |= Overlap(BoxOfSegment(p, q), around); });
  if (comesNear) return true;
  const IndexedRing& ring = index.rings()[index.leaf(leaf).ring];
  if (ring.slots <= EdgeIndex::kLeafEdges && rings_->IsLeafOdd(leaf, box.Center())) {
    around_[static_cast<std::size_t>(index.tree().Level(level) - index.tree().Level(0)) + node] ^= BitOf(ring.id);
  }
  return false;
}

// Notes whether a leaf that is a ring lies around another, whose edges it doesn't cross, or that doesn't matter.
void WalkSearch::NoteAround(std::uint32_t leaf, std::uint32_t other) {
  const EdgeIndex& index = rings_->index();
  const IndexedRing& ring = index.rings()[index.leaf(leaf).ring];
  if (ring.slots > EdgeIndex::kLeafEdges) return;
  const ZBR_PT& p = index.rings()[index.leaf(other).ring].points[index.leaf(other).first];
  if (index.tree().Level(0)[leaf].Contains(p) && rings_->IsLeafOdd(leaf, p)) around_[other] ^= BitOf(ring.id);
}

void WalkSearch::PushDown() {
  const BoxTree& tree = rings_->index().tree();
  for (int level = tree.TopLevel(); level > 0; --level) {
    const std::uint8_t* above = around_.data() + (tree.Level(level) - tree.Level(0));
    std::uint8_t* below = around_.data() + (tree.Level(level - 1) - tree.Level(0));
    for (std::uint32_t i = 0; i < tree.Count(level - 1); ++i) below[i] ^= above[i / BoxTree::kFanOut];
  }
}

// Whether the leaf is a whole ring, and that one convex.
bool WalkSearch::IsConvexRing(std::uint32_t leaf) const {
  const IndexedRing& ring = rings_->index().rings()[rings_->index().leaf(leaf).ring];
  return ring.n <= EdgeIndex::kLeafEdges && IsClearlyConvex(RingSpan(ring.points, ring.n), near_);
}

WalkSearch::Sides WalkSearch::SidesOf(const Edge& e, const Edge& f) const {
  const ZBR_PT d = e.to - e.from;
  const double from = Cross(d, f.from - e.from);
  const double to = Cross(d, f.to - e.from);
  const double least = std::min(std::fabs(from), std::fabs(to));
  return {from, to, least * least > near2_ * d.Length2()};
}

bool WalkSearch::IsNear(const ZBR_PT& p, const Edge& e) const {
  const ZBR_PT d = e.to - e.from;
  const double along = std::clamp(d.InnerProduct(p - e.from) / d.Length2(), 0.0, 1.0);
  return !(p.Distance2(e.from + d * along) > near2_);
}

WalkSearch::Meeting WalkSearch::MeetingOf(const Edge& e, const Edge& f, const Sides& ofE, const Sides& ofF) const {
  if (ofE.areClear && ofF.areClear) return Meeting::kCrossing;
  if (IsNear(e.from, f) || IsNear(e.to, f) || IsNear(f.from, e) || IsNear(f.to, e)) return Meeting::kUnclear;
  return ofE.AreEqual() || ofF.AreEqual() ? Meeting::kApart : Meeting::kUnclear;
}

// Of edges of one operand that are not neighbours: whether they don't meet.
bool WalkSearch::AreClearOnOneSide(const Edge& e, const Edge& f) const {
  const Sides ofE = SidesOf(e, f);
  if (ofE.areClear && ofE.AreEqual()) return true;
  const Sides ofF = SidesOf(f, e);
  if (ofF.areClear && ofF.AreEqual()) return true;
  return MeetingOf(e, f, ofE, ofF) == Meeting::kApart;
}

bool WalkSearch::FoldsBack(const Edge& e, const Edge& next) const {
  return (e.to - e.from).InnerProduct(next.to - next.from) < 0.0 && (IsNear(next.to, e) || IsNear(e.from, next));
}

// Of edges of A and B. Appends their crossing.
bool WalkSearch::AreClearAcross(const Edge& a, const Edge& b) {
  const Sides ofA = SidesOf(a, b);
  if (ofA.areClear && ofA.AreEqual()) return true;
  const Sides ofB = SidesOf(b, a);
  if (ofB.areClear && ofB.AreEqual()) return true;
  const Meeting meeting = MeetingOf(a, b, ofA, ofB);
  if (meeting != Meeting::kCrossing) return meeting == Meeting::kApart;
  const ZBR_PT pt = a.from + (a.to - a.from) * (ofB.from / (ofB.from - ofB.to));
  const std::span<WalkedRing> rings = rings_->all();
  rings[a.ring].isCrossed = rings[b.ring].isCrossed = true;
  found_->push_back({pt, {rings[a.ring].firstEdge + a.slot, rings[b.ring].firstEdge + b.slot}, ofA.to > 0.0});
  return true;
}

}  // namespace zbr
