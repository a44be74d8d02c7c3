// Building the hierarchy over the edges of many rings.
#include "loops/edge_index.h"

#include "core/directions.h"
#include "core/prefetch.h"

namespace zbr {

namespace {

std::vector<IndexedRing> AlongCurve(const std::vector<IndexedRing>& rings) {
  std::vector<ZBR_PT> centers(rings.size());
  for (std::size_t i = 0; i < rings.size(); ++i) centers[i] = rings[i].bounds.Center();
  const std::vector<std::uint32_t> order = SpatialOrder(centers);
  std::vector<IndexedRing> sorted(rings.size());
  for (std::size_t i = 0; i < rings.size(); ++i) sorted[i] = rings[order[i]];
  return sorted;
}

// Grows `box` by the edges from vertex `from` on over `count` edges that do not wrap, and `directions` by theirs; whether one is
// within eps2.
bool AddEdges(const ZBR_PT* points, std::uint32_t from, std::uint32_t count, double eps2, Box& all, std::uint32_t& directions) {
  bool repeats = false;
  Box box = all;  // in registers: a box behind a reference might be one of the points
  std::uint32_t bits = 0;
  ZBR_PT prev = points[from];
  box.Add(prev);
  for (std::uint32_t i = from + 1; i <= from + count; ++i) {
    const ZBR_PT cur = points[i];
    box.Add(cur);
    repeats |= cur.Distance2(prev) <= eps2;
    bits |= DirectionBits(cur - prev);
    prev = cur;
  }
  all = box;
  directions |= bits;
  return repeats;
}

// Of a ring that is a leaf by itself. It comes back to where it starts, so nothing is to be learned from its directions.
constexpr std::uint32_t kEveryDirection = 0xff;

Box BoxOfSmallRing(IndexedRing& ring, double eps2) {
  Box box;
  bool repeats = false;
  const ZBR_PT* prev = ring.points + ring.n - 1;
  for (const ZBR_PT* p = ring.points; p != ring.points + ring.n; ++p) {
    box.Add(*p);
    repeats |= p->Distance2(*prev) <= eps2;
    prev = p;
  }
  ring.hasRepeats = repeats;
  return box;
}

}  // namespace

void EdgeIndex::Build(std::vector<IndexedRing> rings, double margin, double eps2) {
  rings_ = rings.size() < kMinRingsToReorder ? std::move(rings) : AlongCurve(rings);
  Build(margin, eps2);
}

void EdgeIndex::Build(double margin, double eps2) {
  FillLeaves(margin, eps2);
  tree_.BuildInner();
}

void EdgeIndex::FillLeaves(double margin, double eps2) {
  std::size_t total = 0;
  for (const IndexedRing& ring : rings_) total += (ring.slots + kLeafEdges - 1) / kLeafEdges;
  leaves_.resize(total);
  Box* box = tree_.StartLeaves(total).data();
  Leaf* leaf = leaves_.data();
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    IndexedRing& ring = rings_[r];
    if (r + kItemsAhead < rings_.size()) Prefetch(rings_[r + kItemsAhead].points);
    if (ring.n <= kLeafEdges && ring.slots == ring.n) {
      *leaf++ = {r, 0, kEveryDirection};
      *box++ = BoxOfSmallRing(ring, eps2).Widened(margin);
      continue;
    }
    for (std::uint32_t first = 0; first < ring.slots; first += kLeafEdges, ++leaf, ++box) {
      *leaf = {r, first, 0};
      const std::uint32_t count = std::min(kLeafEdges, ring.slots - first);
      const std::uint32_t from = ring.Vertex(first);
      const std::uint32_t straight = std::min(count, ring.n - 1 - from);  // edges before the closing one
      Box edges;
      bool repeats = AddEdges(ring.points, from, straight, eps2, edges, leaf->directions);
      if (straight < count) {  // the closing edge and what follows it from vertex 0 on
        repeats |= ring.points[0].Distance2(ring.points[ring.n - 1]) <= eps2;
        leaf->directions |= DirectionBits(ring.points[0] - ring.points[ring.n - 1]);
        repeats |= AddEdges(ring.points, 0, count - straight - 1, eps2, edges, leaf->directions);
      }
      ring.hasRepeats |= repeats;
      *box = edges.Widened(margin);
    }
  }
}

}  // namespace zbr
