// Nesting of loops that keep clear of each other, whatever their depth.
//
// Idea: from the leftmost point of a loop L look to the left. Nothing lies between L and the first other loop R met there, so both
// border the same face: either R is the loop around that face, then it is L's parent, or R is a neighbour in it, then L's parent is
// R's. Neighbours found this way begin farther left, so taking the loops from left to right settles every parent at once.
// Why insertion gives the same forest: for closed curves that stay apart, "lies inside" is transitive, and of two loops around a
// third one lies inside the other. So siblings never contain the same loop, going down has no choice at any level, and it ends at
// the innermost container, which is the parent found here. Two conditions are checked rather than assumed: that the curves stay
// apart by more than the tolerances of the inclusion test, and that every parent comes before its children in the insertion order
// (else loops would move, and lists would be ordered differently).
// Both searches use one hierarchy over single edges along a space-filling curve. Ring order would not do: the edges of concentric
// rings have boxes that all overlap as soon as a few of a ring are taken together.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/box_tree.h"
#include "core/planar_inline.h"
#include "core/slab_search.h"
#include "loops/nesting.h"

namespace zbr {

namespace {

constexpr double kRoundoffScale = 0x1p-44;  // rounding errors of coordinates and offsets, generously, relative to their size
constexpr double kClearance = 4.0;          // in units of eps: inclusion tests look no farther than one

// Pairs of edges whose boxes overlap, beyond which slabs are searched, if that is quicker than nesting level by level: the boxes of
// long slanting edges side by side all do.
constexpr std::size_t kPairsPerEdge = 64;
constexpr std::size_t kLoopPairsPerEdge = 64;  // that cost as much as slabs do
constexpr std::size_t kPairsAtLeast = 65536;

struct Edge {
  ZBR_PT s;
  ZBR_PT e;
  std::uint32_t loop;
};

double Distance2ToSegment(const ZBR_PT& p, const Edge& edge) {
  const ZBR_PT d = edge.e - edge.s;
  const double len2 = d.Length2();
  const double t = len2 > 0.0 ? std::clamp((p - edge.s).InnerProduct(d) / len2, 0.0, 1.0) : 0.0;
  return p.Distance2(edge.s + d * t);
}

bool Intersect(const Edge& a, const Edge& b) {
  const auto side = [](const Edge& line, const ZBR_PT& p) { return Cross(line.e - line.s, p - line.s) > 0.0; };
  return side(a, b.s) != side(a, b.e) && side(b, a.s) != side(b, a.e);
}

bool KeepApart(const Edge& a, const Edge& b, double clearance) {
  const double min2 = clearance * clearance;
  return Distance2ToSegment(a.s, b) > min2 && Distance2ToSegment(a.e, b) > min2 && Distance2ToSegment(b.s, a) > min2 &&
         Distance2ToSegment(b.e, a) > min2 && !Intersect(a, b);
}

class SeparateLoops {
 public:
  explicit SeparateLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, double eps) {
    CollectEdges(loops);
    double reach = 0.0;
    const std::span<Box> leaves = tree_.StartLeaves(edges_.size());
    for (std::size_t i = 0; i < edges_.size(); ++i) {
      leaves[i] = BoxOfSegment(edges_[i].s, edges_[i].e);
      reach = std::max(
          {reach, std::fabs(leaves[i].xmin), std::fabs(leaves[i].ymin), std::fabs(leaves[i].xmax), std::fabs(leaves[i].ymax)});
    }
    tree_.BuildInner();
    loopPairs_ = loops.size() * loops.size();
    const double roundoff = reach * kRoundoffScale;
    isMeasurable_ = roundoff < eps;
    clearance_ = kClearance * eps + roundoff;
  }

  // Whether all loops are seen to stay apart by more than the tolerance: coordinates must be small enough to tell.
  bool KeepClear() const {
    if (!isMeasurable_) return false;
    bool areMany = false;
    BoxTree widened;
    const std::span<Box> leaves = widened.StartLeaves(edges_.size());
    for (std::size_t i = 0; i < leaves.size(); ++i) leaves[i] = tree_.Level(0)[i].Widened(clearance_);
    widened.BuildInner();
    std::size_t pairsLeft = kPairsAtLeast + kPairsPerEdge * edges_.size();
    const bool areApart = BoxJoin::Run(widened, tree_, [&](std::uint32_t i, std::span<const std::uint32_t> found) {
      areMany = found.size() > pairsLeft;
      if (areMany) return false;
      pairsLeft -= found.size();
      return std::all_of(found.begin(), found.end(), [&](std::uint32_t j) { return j >= i || AreClear(i, j); });
    });
    return areMany ? AreClearInSlabs() : areApart;
  }

  // The loop met first to the left of p, which lies on loop `own`. kNoParent: none.
  std::uint32_t FirstToTheLeft(const ZBR_PT& p, std::uint32_t own) const;

 private:
  void CollectEdges(std::span<const std::shared_ptr<ZBR_LOOP>> loops);
  bool AreClear(std::uint32_t i, std::uint32_t j) const {
    return edges_[i].loop == edges_[j].loop || KeepApart(edges_[i], edges_[j], clearance_);
  }
  bool AreClearInSlabs() const {
    if (loopPairs_ < kLoopPairsPerEdge * edges_.size()) return false;
    std::vector<SlabSegment> segments;
    segments.reserve(edges_.size());
    for (const Edge& edge : edges_) segments.push_back({edge.s, edge.e});
    std::size_t pairsLeft = kPairsAtLeast + kPairsPerEdge * edges_.size();  // a loop that crosses itself may have any number
    return SearchSlabs(segments, clearance_, [&](std::uint32_t i, std::uint32_t j) { return pairsLeft-- > 0 && AreClear(i, j); });
  }

  std::vector<Edge> edges_;  // along a space-filling curve through their midpoints
  BoxTree tree_;
  std::size_t loopPairs_ = 0;
  double clearance_ = 0.0;
  bool isMeasurable_ = false;
};

void SeparateLoops::CollectEdges(std::span<const std::shared_ptr<ZBR_LOOP>> loops) {
  std::vector<Edge> edges;
  std::vector<ZBR_PT> middles;
  for (std::uint32_t i = 0; i < loops.size(); ++i) {
    const ZBR_PT* prev = &loops[i]->pt().back();
    for (const ZBR_PT& p : loops[i]->pt()) {
      edges.push_back({*prev, p, i});
      middles.push_back((*prev + p) / 2.0);
      prev = &p;
    }
  }
  edges_.reserve(edges.size());
  for (const std::uint32_t i : SpatialOrder(middles)) edges_.push_back(edges[i]);
}

std::uint32_t SeparateLoops::FirstToTheLeft(const ZBR_PT& p, std::uint32_t own) const {
  struct Node {
    int level;
    std::uint32_t index;
  };
  double best = -std::numeric_limits<double>::infinity();
  std::uint32_t found = kNoParent;
  const auto reaches = [&](const Box& box) {
    return box.ymin <= p.y() && p.y() <= box.ymax && box.xmin <= p.x() && box.xmax >= best;
  };
  std::vector<Node> stack{{tree_.TopLevel(), 0}};
  while (!stack.empty()) {
    const Node node = stack.back();
    stack.pop_back();
    const Box* boxes = tree_.Level(node.level);
    if (!reaches(boxes[node.index])) continue;
    if (node.level > 0) {
      // The child that reaches farthest right is taken next: it is the likeliest to hold the answer and so to rule out the rest.
      const std::size_t mark = stack.size();
      const std::uint32_t first = node.index * BoxTree::kFanOut;
      const std::uint32_t last = std::min(first + BoxTree::kFanOut, tree_.Count(node.level - 1));
      const Box* below = tree_.Level(node.level - 1);
      for (std::uint32_t i = first; i < last; ++i) {
        if (reaches(below[i])) stack.push_back({node.level - 1, i});
      }
      std::sort(stack.begin() + static_cast<std::ptrdiff_t>(mark), stack.end(),
                [&](const Node& a, const Node& b) { return below[a.index].xmax < below[b.index].xmax; });
      continue;
    }
    const Edge& edge = edges_[node.index];
    // Half-open in y, as if the line of sight ran just above p: a vertex on it counts for one edge of the two or for both.
    if (edge.loop == own || (edge.s.y() <= p.y()) == (edge.e.y() <= p.y())) continue;
    const double t = (p.y() - edge.s.y()) / (edge.e.y() - edge.s.y());
    const double x = edge.s.x() + t * (edge.e.x() - edge.s.x());
    if (x < p.x() && x > best) {
      best = x;
      found = edge.loop;
    }
  }
  return found;
}

const ZBR_PT& LeftmostPoint(const ZBR_LOOP& loop) {
  return *std::min_element(loop.pt().begin(), loop.pt().end(), [](const ZBR_PT& a, const ZBR_PT& b) { return a.x() < b.x(); });
}

}  // namespace

bool NestSeparateLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, std::span<LoopProbe> probes, double eps,
                       IncludeScratch& scratch, std::vector<std::uint32_t>& parents) {
  const SeparateLoops separate(loops, eps);
  if (!separate.KeepClear()) return false;

  std::vector<std::uint32_t> fromLeft(loops.size());
  std::iota(fromLeft.begin(), fromLeft.end(), 0U);
  std::sort(fromLeft.begin(), fromLeft.end(),
            [&](std::uint32_t a, std::uint32_t b) { return loops[a]->xmin() < loops[b]->xmin(); });

  std::vector<std::uint32_t> found(loops.size(), kNoParent);
  for (const std::uint32_t i : fromLeft) {
    const std::uint32_t met = separate.FirstToTheLeft(LeftmostPoint(*loops[i]), i);
    if (met == kNoParent) continue;
    found[i] = IsLoopInside(probes[i], probes[met], eps, scratch) ? met : found[met];
    if (found[i] != kNoParent && found[i] > i) return false;
  }
  parents = std::move(found);
  return true;
}

}  // namespace zbr
