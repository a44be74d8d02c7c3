// Idea: all edges of both operands are in one hierarchy, so that one pass finds the edges that cross and sees whether the operands
// are simple. A pair of edges is apart, or crosses with its four ends clearly beside the other edge, or nothing is said at all.
// Why that is certain: a point that is clearly beside a line, by some tolerances, is so whatever the rounding. Where two edges
// cross and an end of one lies near the line of the other, then beyond the other's end, which the first must pass closely; so an
// end is near the other edge, and that is looked at.
#include "boolean/walk_search.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/constants.h"
#include "core/planar_inline.h"

namespace zbr {

// On which sides of an edge's line the ends of another one lie.
struct WalkSearch::Sides {
  double from;
  double to;
  bool areClear;  // both ends are

  bool AreEqual() const { return (from > 0.0) == (to > 0.0); }
};

bool WalkSearch::Run(const WalkRings& rings, double eps, std::vector<OpenCrossing>& found) {
  rings_ = &rings;
  found_ = &found;
  near_ = kSurelyOff * eps;
  near2_ = near_ * near_;
  found.clear();
  return nearLeaves_.Run(rings.index(), 2.0 * near_, *this);
}

// The edges of a leaf that come near the box, their own boxes widened by the margin. Which do is as good as random, so there is no
// branch.
void WalkSearch::Read(std::uint32_t leaf, const Box& around, double margin, LeafEdges& read) const {
  const EdgeIndex& index = rings_->index();
  std::uint32_t slot = index.leaf(leaf).first;
  std::uint32_t count = 0;
  index.VisitEdges(leaf, [&](const ZBR_PT& p, const ZBR_PT& q) {
    const Box box = BoxOfSegment(p, q).Widened(margin);
    read.edges[count] = {p, q, box, slot++};
    count += Overlap(box, around) ? 1U : 0U;
  });
  read.count = count;
  read.ring = index.rings()[index.leaf(leaf).ring].id;
}

bool WalkSearch::VisitLeaf(std::uint32_t leaf) {
  if (IsConvexRing(leaf)) return true;
  LeafEdges read;
  Read(leaf, rings_->index().tree().Level(0)[leaf], near_, read);
  Pairs pairs;
  std::size_t pairCount = 0;
  for (std::uint32_t i = 0; i < read.count; ++i) {
    for (std::uint32_t j = i + 1; j < read.count; ++j) {
      pairs[pairCount] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(j)};
      pairCount += Overlap(read.edges[i].box, read.edges[j].box) ? 1U : 0U;
    }
  }
  const std::uint32_t n = rings_->all()[read.ring].size();
  for (const Pair& pair : std::span(pairs).first(pairCount)) {
    bool areNeighbours = false;
    if (!AreNeighboursClear(read.edges[pair[0]], read.edges[pair[1]], n, areNeighbours)) return false;
    if (!areNeighbours && !AreClearOnOneSide(read.edges[pair[0]], read.edges[pair[1]])) return false;
  }
  return true;
}

bool WalkSearch::VisitLeaves(std::uint32_t a, std::uint32_t b) {
  const Box* boxes = rings_->index().tree().Level(0);
  LeafEdges readA;
  LeafEdges readB;
  Read(a, boxes[b], near_, readA);
  if (readA.count == 0) return true;
  Read(b, boxes[a], near_, readB);
  Pairs pairs;
  std::size_t pairCount = 0;
  for (std::uint32_t i = 0; i < readA.count; ++i) {
    for (std::uint32_t j = 0; j < readB.count; ++j) {
      pairs[pairCount] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(j)};
      pairCount += Overlap(readA.edges[i].box, readB.edges[j].box) ? 1U : 0U;
    }
  }
  const int sideA = rings_->SideOf(readA.ring);
  const bool isOneSide = sideA == rings_->SideOf(readB.ring);
  const std::uint32_t n = rings_->all()[readA.ring].size();
  for (const Pair& pair : std::span(pairs).first(pairCount)) {
    const Edge& e = readA.edges[pair[0]];
    const Edge& f = readB.edges[pair[1]];
    if (!isOneSide) {
      if (sideA == 0 ? !AreClearAcross(e, readA.ring, f, readB.ring) : !AreClearAcross(f, readB.ring, e, readA.ring)) return false;
      continue;
    }
    bool areNeighbours = false;
    if (readA.ring == readB.ring && !AreNeighboursClear(e, f, n, areNeighbours)) return false;
    if (!areNeighbours && !AreClearOnOneSide(e, f)) return false;
  }
  return true;
}

// Whether the leaf is a whole ring that turns clearly to one side at every vertex, and once around: then the directions change from
// going right to going left once and back once.
bool WalkSearch::IsConvexRing(std::uint32_t leaf) const {
  const IndexedRing& ring = rings_->index().rings()[rings_->index().leaf(leaf).ring];
  if (ring.n > EdgeIndex::kLeafEdges) return false;
  unsigned turns = 0;
  unsigned changes = 0;
  const auto goesLeft = [](const ZBR_PT& v) { return v.x() < 0.0 || (v.x() == 0.0 && v.y() < 0.0); };
  ZBR_PT d = ring.points[0] - ring.points[ring.n - 1];
  for (std::uint32_t i = 0; i < ring.n; ++i) {
    const ZBR_PT e = ring.points[ring.Next(i)] - ring.points[i];
    const double turn = Cross(d, e);
    if (!(std::fabs(turn) > near_ * (std::fabs(d.x()) + std::fabs(d.y()) + std::fabs(e.x()) + std::fabs(e.y())))) return false;
    turns |= turn > 0.0 ? 1U : 2U;
    changes += goesLeft(d) != goesLeft(e) ? 1U : 0U;
    d = e;
  }
  return turns != 3U && changes == 2U;
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

// Of edges of one ring: whether they do not fold back on each other, if they are neighbours.
bool WalkSearch::AreNeighboursClear(const Edge& e, const Edge& f, std::uint32_t n, bool& areNeighbours) const {
  const auto precedes = [n](const Edge& x, const Edge& y) { return (x.slot + 1 == n ? 0 : x.slot + 1) == y.slot; };
  const bool before = precedes(e, f);
  const bool behind = precedes(f, e);
  areNeighbours = before || behind;
  return !(before && FoldsBack(e, f)) && !(behind && FoldsBack(f, e));
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
bool WalkSearch::AreClearAcross(const Edge& a, std::uint32_t ringA, const Edge& b, std::uint32_t ringB) {
  const Sides ofA = SidesOf(a, b);
  if (ofA.areClear && ofA.AreEqual()) return true;
  const Sides ofB = SidesOf(b, a);
  if (ofB.areClear && ofB.AreEqual()) return true;
  const Meeting meeting = MeetingOf(a, b, ofA, ofB);
  if (meeting != Meeting::kCrossing) return meeting == Meeting::kApart;
  const ZBR_PT pt = a.from + (a.to - a.from) * (ofB.from / (ofB.from - ofB.to));
  const std::span<const WalkedRing> rings = rings_->all();
  found_->push_back({pt, {rings[ringA].firstEdge + a.slot, rings[ringB].firstEdge + b.slot}, ofA.to > 0.0});
  return true;
}

}  // namespace zbr
