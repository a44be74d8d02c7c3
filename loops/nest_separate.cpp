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
// Whether edges come near each other, a hierarchy over single edges along a space-filling curve tells, and slabs where boxes say
// little. Ring order would not do: the edges of concentric rings have boxes that all overlap as soon as a few of a ring are taken
// together.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
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

  const std::vector<Edge>& edges() const { return edges_; }
  // What edges of different loops are farther apart than, then.
  double clearance() const { return clearance_; }

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

// What is met first to the left of points, asked by their place in the order of y. A binary tree over these places: each edge waits
// in the few nodes that together make up the points that it passes. All edges of a node pass all of its points; so their order from
// left to right is the same at each of these, but for edges of one loop that cross or are too near to tell.
class LookLeft {
 public:
  // `heights` ascending.
  LookLeft(const std::vector<Edge>& edges, const std::vector<double>& heights, double clearance)
      : edges_(edges), clearance_(clearance), leaves_(std::bit_ceil(heights.size())), isOrdered_(2 * leaves_) {
    begin_.assign(2 * leaves_ + 1, 0);
    const auto forEach = [&](auto visit) {
      for (std::uint32_t i = 0; i < edges.size(); ++i) {
        ForEachNode(PlacesOf(edges[i], heights), [&](std::size_t node) { visit(i, node); });
      }
    };
    forEach([&](std::uint32_t, std::size_t node) { ++begin_[node + 1]; });
    std::partial_sum(begin_.begin(), begin_.end(), begin_.begin());
    waiting_.resize(begin_.back());
    std::vector<std::size_t> place(begin_.begin(), begin_.end() - 1);
    forEach([&](std::uint32_t edge, std::size_t node) { waiting_[place[node]++] = edge; });
    for (std::size_t level = leaves_, width = 1; level > 0; level /= 2, width *= 2) {
      for (std::size_t k = 0; k < level && k * width < heights.size(); ++k) {
        Sort(level + k, heights[k * width], heights[std::min((k + 1) * width, heights.size()) - 1]);
      }
    }
  }

  // The loop met first to the left of p, the leftmost point of loop `own`. kNoParent: none.
  std::uint32_t FirstFrom(std::size_t place, const ZBR_PT& p, std::uint32_t own) const {
    double best = -std::numeric_limits<double>::infinity();
    std::uint32_t found = kNoParent;
    for (std::size_t node = leaves_ + place; node > 0; node /= 2) {
      const std::uint32_t edge = LastLeft(node, p, own);
      if (edge == kNone || !(XAt(edges_[edge], p.y()) > best)) continue;
      best = XAt(edges_[edge], p.y());
      found = edges_[edge].loop;
    }
    return found;
  }

 private:
  struct Places {
    std::size_t first;
    std::size_t last;  // exclusive
  };

  // Half-open in y, as if the line of sight ran just above the point: a vertex on it counts for one edge of two or for both.
  static Places PlacesOf(const Edge& edge, const std::vector<double>& heights) {
    const auto [low, high] = std::minmax({edge.s.y(), edge.e.y()});
    const auto place = [&](double y) {
      return static_cast<std::size_t>(std::lower_bound(heights.begin(), heights.end(), y) - heights.begin());
    };
    return {place(low), place(high)};
  }

  template <class Visit>
  void ForEachNode(Places places, Visit visit) const {
    for (std::size_t i = places.first + leaves_, j = places.last + leaves_; i < j; i /= 2, j /= 2) {
      if (i % 2 == 1) visit(i++);
      if (j % 2 == 1) visit(--j);
    }
  }

  static double XAt(const Edge& edge, double y) {
    const double t = (y - edge.s.y()) / (edge.e.y() - edge.s.y());
    return edge.s.x() + t * (edge.e.x() - edge.s.x());
  }

  std::span<const std::uint32_t> Waiting(std::size_t node) const {
    return std::span(waiting_).subspan(begin_[node], begin_[node + 1] - begin_[node]);
  }

  void Sort(std::size_t node, double lowest, double highest) {
    struct Passing {
      double x[2];
      std::uint32_t edge;
    };
    std::vector<Passing> passing;
    passing.reserve(begin_[node + 1] - begin_[node]);
    for (const std::uint32_t i : Waiting(node)) passing.push_back({{XAt(edges_[i], lowest), XAt(edges_[i], highest)}, i});
    std::sort(passing.begin(), passing.end(), [](const Passing& a, const Passing& b) {
      return a.x[0] + a.x[1] != b.x[0] + b.x[1] ? a.x[0] + a.x[1] < b.x[0] + b.x[1] : a.edge < b.edge;
    });
    isOrdered_[node] = true;
    double most[2] = {-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (std::size_t k = 0; k < passing.size(); ++k) {
      waiting_[begin_[node] + k] = passing[k].edge;
      for (const int end : {0, 1}) {
        if (passing[k].x[end] < most[end] - clearance_) isOrdered_[node] = false;
        most[end] = std::max(most[end], passing[k].x[end]);
      }
    }
  }

  // Of the edges at a node that lie to the left of p the nearest. Where a loop crosses itself all are looked at.
  std::uint32_t LastLeft(std::size_t node, const ZBR_PT& p, std::uint32_t own) const {
    const std::span<const std::uint32_t> here = Waiting(node);
    const auto isLeft = [&](std::uint32_t edge, const ZBR_PT& at) { return XAt(edges_[edge], at.y()) < at.x(); };
    std::uint32_t last = kNone;
    if (!isOrdered_[node]) {
      for (const std::uint32_t i : here) {
        if (edges_[i].loop != own && isLeft(i, p) && (last == kNone || XAt(edges_[i], p.y()) > XAt(edges_[last], p.y()))) last = i;
      }
      return last;
    }
    auto next = std::lower_bound(here.begin(), here.end(), p, isLeft);
    while (next != here.begin() && last == kNone) {
      if (edges_[*--next].loop != own) last = *next;
    }
    return last;
  }

  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  const std::vector<Edge>& edges_;
  double clearance_;
  std::size_t leaves_;
  std::vector<bool> isOrdered_;         // by node, 1 being the root
  std::vector<std::size_t> begin_;      // by node
  std::vector<std::uint32_t> waiting_;  // edges, by node and there from left to right
};

const ZBR_PT& LeftmostPoint(const ZBR_LOOP& loop) {
  return *std::min_element(loop.pt().begin(), loop.pt().end(), [](const ZBR_PT& a, const ZBR_PT& b) { return a.x() < b.x(); });
}

// By loop: the one met first to the left of its leftmost point.
std::vector<std::uint32_t> FirstToTheLeft(std::span<const std::shared_ptr<ZBR_LOOP>> loops, const SeparateLoops& separate) {
  std::vector<std::pair<double, std::uint32_t>> byHeight;
  for (std::uint32_t i = 0; i < loops.size(); ++i) byHeight.emplace_back(LeftmostPoint(*loops[i]).y(), i);
  std::sort(byHeight.begin(), byHeight.end());
  std::vector<double> heights;
  for (const auto& [y, loop] : byHeight) heights.push_back(y);
  const LookLeft look(separate.edges(), heights, separate.clearance());
  std::vector<std::uint32_t> met(loops.size());
  for (std::size_t k = 0; k < byHeight.size(); ++k) {
    const std::uint32_t loop = byHeight[k].second;
    met[loop] = look.FirstFrom(k, LeftmostPoint(*loops[loop]), loop);
  }
  return met;
}

}  // namespace

bool NestSeparateLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, std::span<LoopProbe> probes, double eps,
                       IncludeScratch& scratch, std::vector<std::uint32_t>& parents) {
  const SeparateLoops separate(loops, eps);
  if (!separate.KeepClear()) return false;

  const std::vector<std::uint32_t> met = FirstToTheLeft(loops, separate);
  std::vector<std::uint32_t> fromLeft(loops.size());
  std::iota(fromLeft.begin(), fromLeft.end(), 0U);
  std::sort(fromLeft.begin(), fromLeft.end(),
            [&](std::uint32_t a, std::uint32_t b) { return loops[a]->xmin() < loops[b]->xmin(); });

  std::vector<std::uint32_t> found(loops.size(), kNoParent);
  for (const std::uint32_t i : fromLeft) {
    if (met[i] == kNoParent) continue;
    found[i] = IsLoopInside(probes[i], probes[met[i]], eps, scratch) ? met[i] : found[met[i]];
    if (found[i] != kNoParent && found[i] > i) return false;
  }
  parents = std::move(found);
  return true;
}

}  // namespace zbr
