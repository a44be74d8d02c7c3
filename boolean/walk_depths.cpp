// Idea: the rings of one operand do not cross, so one point of a ring tells what lies around it; and so it does for the rings of
// the other operand where those do not cross it either. Rings whose boxes hold the point are asked, each by the hierarchy over its
// edges: a chain of edges to the left of the point is passed by the ray from there to the left as often as its ends say, odd or
// even. Nothing here comes near the point, so that all of this is certain; the ray may pass vertices, which count as lying below
// it.
#include "boolean/walk_depths.h"

#include <algorithm>
#include <span>

#include "core/planar_inline.h"

namespace zbr {

bool WalkDepths::Run(WalkRings& rings) {
  constexpr std::size_t kTestsPerRing = 32;
  constexpr std::size_t kTestsAtLeast = 4096;
  rings_ = &rings;
  const std::span<WalkedRing> all = rings.all();
  const bool areAllAlone = rings.count(0) < 2 && rings.count(1) < 2;
  if (areAllAlone && std::all_of(all.begin(), all.end(), [](const WalkedRing& ring) { return ring.isCrossed; })) {
    for (WalkedRing& ring : all) ring.isReversed = ring.twiceArea < 0.0;
    return true;
  }
  FillTrees();
  testsLeft_ = kTestsAtLeast + kTestsPerRing * all.size();
  for (WalkedRing& ring : all) ring.isReversed = ring.twiceArea < 0.0;
  return BoxJoin::Run(points_, boxes_,
                      [this](std::uint32_t place, std::span<const std::uint32_t> around) { return Locate(place, around); });
}

void WalkDepths::FillTrees() {
  const std::vector<IndexedRing>& indexed = rings_->index().rings();
  const std::span<Box> points = points_.StartLeaves(indexed.size());
  const std::span<Box> boxes = boxes_.StartLeaves(indexed.size());
  firstLeaf_.assign(1, 0);
  for (std::size_t i = 0; i < indexed.size(); ++i) {
    points[i].Add(indexed[i].points[0]);
    boxes[i] = indexed[i].bounds;
    firstLeaf_.push_back(firstLeaf_.back() + (indexed[i].slots + EdgeIndex::kLeafEdges - 1) / EdgeIndex::kLeafEdges);
  }
  points_.BuildInner();
  boxes_.BuildInner();
}

// `around` are the rings whose boxes hold the first point of this one.
bool WalkDepths::Locate(std::uint32_t place, std::span<const std::uint32_t> around) {
  const std::vector<IndexedRing>& indexed = rings_->index().rings();
  const std::uint32_t number = indexed[place].id;
  WalkedRing& ring = rings_->all()[number];
  const int side = rings_->SideOf(number);
  if (around.size() > testsLeft_) return false;
  testsLeft_ -= around.size();
  for (const std::uint32_t other : around) {
    const bool isOwn = rings_->SideOf(indexed[other].id) == side;
    if (other == place || (!isOwn && ring.isCrossed) || !IsAround(other, indexed[place].points[0])) continue;
    bool& isOdd = isOwn ? ring.isReversed : ring.isInside;
    isOdd = !isOdd;
  }
  return true;
}

// Takes the ring's leaves by the largest nodes that hold nothing else.
bool WalkDepths::IsAround(std::uint32_t place, const ZBR_PT& p) const {
  const std::uint32_t end = firstLeaf_[place + 1];
  bool isOdd = false;
  for (std::uint32_t leaf = firstLeaf_[place]; leaf < end;) {
    int level = 0;
    std::uint32_t width = 1;
    while (leaf % (width * BoxTree::kFanOut) == 0 && leaf + width * BoxTree::kFanOut <= end) {
      width *= BoxTree::kFanOut;
      ++level;
    }
    isOdd ^= IsOdd(level, leaf / width, p);
    leaf += width;
  }
  return isOdd;
}

// Whether the ray from p to the left passes the edges of a node, which belong to one ring, an odd number of times.
bool WalkDepths::IsOdd(int level, std::uint32_t node, const ZBR_PT& p) const {
  const EdgeIndex& index = rings_->index();
  const Box& box = index.tree().Level(level)[node];
  if (p.y() < box.ymin || p.y() > box.ymax || p.x() < box.xmin) return false;
  if (p.x() > box.xmax) {
    const std::uint32_t width = 1U << (2 * level);
    const EdgeIndex::Leaf& first = index.leaf(node * width);
    const IndexedRing& ring = index.rings()[first.ring];
    const std::uint32_t behind = index.LastSlot(index.leaf((node + 1) * width - 1));
    const ZBR_PT& from = ring.points[first.first];
    const ZBR_PT& to = ring.points[behind == ring.n ? 0 : behind];
    return (from.y() <= p.y()) != (to.y() <= p.y());
  }
  if (level == 0) return IsLeafOdd(node, p);
  bool isOdd = false;
  for (std::uint32_t i = node * BoxTree::kFanOut; i < (node + 1) * BoxTree::kFanOut; ++i) isOdd ^= IsOdd(level - 1, i, p);
  return isOdd;
}

bool WalkDepths::IsLeafOdd(std::uint32_t leaf, const ZBR_PT& p) const {
  bool isOdd = false;
  rings_->index().VisitEdges(leaf, [&](const ZBR_PT& from, const ZBR_PT& to) {
    const bool isUpwards = from.y() <= p.y();
    if (isUpwards == (to.y() <= p.y())) return;
    isOdd ^= (Cross(to - from, p - from) < 0.0) == isUpwards;
  });
  return isOdd;
}

}  // namespace zbr
