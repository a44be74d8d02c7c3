// Idea: the rings of one operand do not cross, so one point of a ring tells what lies around it; and so it does for the rings of
// the other operand where those do not cross it either. What small rings lie around what, the search has seen. Large ones whose
// boxes hold the point are asked, each by the hierarchy over its edges: a chain of edges to the left of the point is passed by the
// ray from there to the left as often as its ends say, odd or even. Nothing here comes near the point, so that all of this is
// certain; the ray may pass vertices, which count as lying below it.
#include "boolean/walk_depths.h"

#include <algorithm>
#include <span>

namespace zbr {

bool WalkDepths::Run(WalkRings& rings, const WalkSearch& search) {
  constexpr std::size_t kTestsPerRing = 32;
  constexpr std::size_t kTestsAtLeast = 4096;
  rings_ = &rings;
  if (rings.AreSmall()) {
    LocateAll();
    return true;
  }
  AddLargeRings(search);
  if (large_.empty()) return true;
  testsLeft_ = kTestsAtLeast + kTestsPerRing * rings.all().size();
  return BoxJoin::Run(points_, boxes_, [this](std::uint32_t place, std::span<const std::uint32_t> around) {
    return Locate(rings_->index().rings()[place], around);
  });
}

void WalkDepths::Clear() {
  FreeLarge(firstLeaf_);
  FreeLarge(large_);
  boxes_.Clear();
  points_.Clear();
}

// Without a hierarchy.
void WalkDepths::LocateAll() {
  const std::span<WalkedRing> all = rings_->all();
  for (std::uint32_t i = 0; i < all.size(); ++i) {
    const ZBR_PT& p = all[i].points[0];
    for (std::uint32_t j = 0; j < all.size(); ++j) {
      const bool isOwn = rings_->SideOf(i) == rings_->SideOf(j);
      if (i == j || (!isOwn && all[i].isCrossed)) continue;
      bool& isOdd = isOwn ? all[i].isReversed : all[i].isInside;
      const ZBR_PT* from = &all[j].points.back();
      for (const ZBR_PT& to : all[j].points) {
        isOdd ^= IsLeftOf(p, *from, to);
        from = &to;
      }
    }
  }
}

// Takes over what the search knows, and makes the hierarchies for the rest.
void WalkDepths::AddLargeRings(const WalkSearch& search) {
  const std::vector<IndexedRing>& indexed = rings_->index().rings();
  firstLeaf_.assign(1, 0);
  large_.clear();
  for (std::uint32_t i = 0; i < indexed.size(); ++i) {
    WalkedRing& ring = rings_->all()[indexed[i].id];
    const unsigned around = search.Around(firstLeaf_.back());
    const bool isOfA = rings_->SideOf(indexed[i].id) == 0;
    ring.isReversed ^= (around & (isOfA ? 1U : 2U)) != 0;
    ring.isInside = (around & (isOfA ? 2U : 1U)) != 0;
    firstLeaf_.push_back(firstLeaf_.back() + (indexed[i].slots + EdgeIndex::kLeafEdges - 1) / EdgeIndex::kLeafEdges);
    if (indexed[i].slots > EdgeIndex::kLeafEdges) large_.push_back(i);
  }
  const bool areAllCrossed =
      std::all_of(rings_->all().begin(), rings_->all().end(), [](const WalkedRing& r) { return r.isCrossed; });
  if (areAllCrossed && rings_->count(0) < 2 && rings_->count(1) < 2) large_.clear();  // nothing to be asked
  if (large_.empty()) return;
  const std::span<Box> points = points_.StartLeaves(indexed.size());
  const std::span<Box> boxes = boxes_.StartLeaves(large_.size());
  for (std::size_t i = 0; i < indexed.size(); ++i) points[i].Add(indexed[i].points[0]);
  for (std::size_t k = 0; k < large_.size(); ++k) boxes[k] = BoxOfRing({indexed[large_[k]].points, indexed[large_[k]].n});
  points_.BuildInner();
  boxes_.BuildInner();
}

// `around` are large rings whose boxes hold the first point of this one.
bool WalkDepths::Locate(const IndexedRing& indexed, std::span<const std::uint32_t> around) {
  WalkedRing& ring = rings_->all()[indexed.id];
  if (around.size() > testsLeft_) return false;
  testsLeft_ -= around.size();
  for (const std::uint32_t k : around) {
    const std::uint32_t other = rings_->index().rings()[large_[k]].id;
    const bool isOwn = rings_->SideOf(other) == rings_->SideOf(indexed.id);
    if (other == indexed.id || (!isOwn && ring.isCrossed) || !IsAround(large_[k], indexed.points[0])) continue;
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
  if (level == 0) return rings_->IsLeafOdd(node, p);
  bool isOdd = false;
  for (std::uint32_t i = node * BoxTree::kFanOut; i < (node + 1) * BoxTree::kFanOut; ++i) isOdd ^= IsOdd(level - 1, i, p);
  return isOdd;
}

}  // namespace zbr
