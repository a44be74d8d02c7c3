// Idea: of most edges it takes little to see that nothing comes near: their boxes meet no others but those of their neighbours.
// Such edges need no vertices, no cutting and no places in a sweep. In a row they are one piece of the arrangement, as straight to
// it as an edge, as long as they don't turn back along the sweep. So an arrangement costs what meets in it, not what it has points.
//
// What counts as near is some times the distance within which points merge and edges bend, and more than all rounding here: a pair
// that is left out can't come to touch on the grid. Edges that share a point to the bit are apart when they part there at a fair
// angle. Two edges between the same two points are twins, and go on as twins as long as both go on alike. Short edges, which
// vertices swallow, are left to the arrangement together with their neighbours.
//
// The search is a hierarchy of boxes over runs of a few edges. Runs that go one way along an axis all the time are not held against
// themselves. It gives up where chains would save little: where edges turn back all the time, or most of them meet others.
#include "arrangement/clear_chains.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <utility>

#include "core/box_tree.h"
#include "core/cost.h"
#include "core/planar_inline.h"

namespace zbr {
namespace {

constexpr std::uint32_t kNone = ClearChain::kNoTwin;

bool AreSameBits(const ZBR_PT& p, const ZBR_PT& q) {
  const auto bits = [](double d) { return std::bit_cast<std::uint64_t>(d); };
  return bits(p.x()) == bits(q.x()) && bits(p.y()) == bits(q.y());
}

class ClearSearch {
 public:
  ClearSearch(const EdgePoints& edges, const NodeGrid& grid, const Resolution& resolution)
      : edges_(edges),
        points_(edges.points()),
        grid_(grid),
        margin_(4.0 * resolution.reach + 16.0 * resolution.step),
        margin2_(margin_ * margin_) {}

  ClearChains Run() {
    constexpr std::uint32_t kFewest = 64;  // with fewer edges there is nothing to gain
    ClearChains chains;
    if (edges_.size() < kFewest || margin2_ < std::numeric_limits<double>::min()) return chains;
    isNear_.assign(edges_.size(), false);
    if (!LookAlong()) return chains;
    if (!IsGivenUp()) Search();
    if (!IsGivenUp()) TakeTwinsAlong();
    if (!IsGivenUp()) Collect(chains);
    return chains;
  }

 private:
  // A few edges that follow each other.
  struct Leaf {
    std::uint32_t first;
    std::uint32_t last;  // exclusive
    unsigned ways;       // that all of them go, a bit each
  };
  static constexpr std::uint32_t kLeafEdges = 8;

  const ZBR_PT& From(std::uint32_t edge) const { return points_[edge]; }
  const ZBR_PT& To(std::uint32_t edge) const { return points_[edges_.To(edge)]; }
  bool AreNeighbours(std::uint32_t i, std::uint32_t j) const { return edges_.To(i) == j || edges_.To(j) == i; }
  std::uint32_t TwinOf(std::uint32_t edge) const { return twin_.empty() ? kNone : twin_[edge]; }

  void MarkNear(std::uint32_t edge) {
    near_ += isNear_[edge] ? 0 : 1;
    isNear_[edge] = true;
  }
  // Whether there will be more than half as many chains and edges near others as there are edges, or the search takes too long.
  bool IsGivenUp() const {
    constexpr std::size_t kPairsPerEdge = 16;
    constexpr std::size_t kLeafPairsPerEdge = 64;
    return AreMany(near_ + turns_, edges_.size()) || pairs_ > kPairsPerEdge * edges_.size() ||
           leafPairs_ > kLeafPairsPerEdge * edges_.size();
  }
  static bool AreMany(std::size_t count, std::size_t edges) { return 2 * count > edges; }

  // Whether two edges from one point keep apart but for that point, and neither end is so near that it becomes one with it.
  bool Part(const ZBR_PT& u, const ZBR_PT& v) const {
    if (u.InnerProduct(v) < 0.0) return std::min(u.Length2(), v.Length2()) > margin2_;
    const double side = Cross(u, v);
    return side * side > margin2_ * std::max(u.Length2(), v.Length2());
  }

  unsigned WaysOf(const ZBR_PT& d) const;
  bool LookAlong();
  void LookAtCorner(std::uint32_t edge, const ZBR_PT& d, const ZBR_PT& e);
  void SortLeaves();
  void FindStraights();
  void Search();
  void Within(const Leaf& leaf);
  void Across(std::uint32_t a, std::uint32_t b);
  Box BoxOf(std::uint32_t edge) const { return BoxOfSegment(From(edge), To(edge)); }
  void LookAt(std::uint32_t i, std::uint32_t j);
  bool LiesAside(std::uint32_t i, std::uint32_t j) const;
  bool Meet(std::uint32_t i, std::uint32_t j);
  void NoteMeeting(std::uint32_t p, std::uint32_t q);
  void PairUp(std::uint32_t i, std::uint32_t j);
  void TakeTwinsAlong();
  bool RunsBack(std::uint32_t edge) const;
  bool GoesOn(std::uint32_t edge) const;
  void Collect(ClearChains& chains) const;

  const EdgePoints& edges_;
  std::span<const ZBR_PT> points_;
  NodeGrid grid_;
  double margin_;
  double margin2_;
  std::vector<bool> isNear_;  // by edge: to something else
  std::size_t near_ = 0;
  std::size_t pairs_ = 0;
  std::size_t leafPairs_ = 0;
  std::size_t turns_ = 0;  // where edges turn back along the sweep or begin anew
  std::vector<Leaf> leaves_;
  std::vector<std::uint32_t> goesTo_;  // by leaf: the one behind those that it goes one way with
  BoxTree tree_;
  std::vector<std::uint32_t> twin_;     // by edge, once there are any
  std::vector<std::uint8_t> meetings_;  // by point, once there are any: pairs of edges that share it, neighbours and twins left out
};

// To the right, to the left, up, down; by more than the margin.
unsigned ClearSearch::WaysOf(const ZBR_PT& d) const {
  return static_cast<unsigned>(d.x() > margin_) | static_cast<unsigned>(d.x() < -margin_) << 1U |
         static_cast<unsigned>(d.y() > margin_) << 2U | static_cast<unsigned>(d.y() < -margin_) << 3U;
}

// Once along all edges: their corners, and how they turn. False as soon as a share of them tells that there is no hope.
bool ClearSearch::LookAlong() {
  constexpr std::size_t kShareToSee = 8;
  leaves_.reserve(edges_.size() / kLeafEdges + 1);
  bool wasBack = false;
  ZBR_PT e;  // the direction of the next edge
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
    const bool follows = i > 0 && edges_.To(i - 1) == i;
    const ZBR_PT d = follows ? e : To(i) - From(i);
    const bool isBack = d.x() < 0.0;
    turns_ += !follows || isBack != wasBack ? 1 : 0;
    wasBack = isBack;
    if (!follows || i - leaves_.back().first == kLeafEdges) {
      if (AreMany(near_ + turns_, i + edges_.size() / kShareToSee)) return false;
      leaves_.push_back({i, i, ~0U});
    }
    leaves_.back().last = i + 1;
    leaves_.back().ways &= WaysOf(d);
    const std::uint32_t next = edges_.To(i);
    if (next < edges_.size()) e = To(next) - From(next);
    LookAtCorner(i, d, next < edges_.size() ? e : d);
  }
  return true;
}

void ClearSearch::LookAtCorner(std::uint32_t edge, const ZBR_PT& d, const ZBR_PT& e) {
  constexpr double kLong = 4.0;  // margins: at a right angle either one's end is far from the other then
  const double least = kLong * kLong * margin2_;
  if (d.Length2() > least && e.Length2() > least && Part(ZBR_PT() - d, e)) return;
  MarkNear(edge);
  if (edges_.To(edge) < edges_.size()) MarkNear(edges_.To(edge));
}

// Those of long rings are in a good order as they stand.
void ClearSearch::SortLeaves() {
  constexpr std::size_t kLong = 64;  // edges
  const auto begins = [&](const Leaf& leaf) { return leaf.first == 0 || edges_.To(leaf.first - 1) != leaf.first; };
  const auto rings = static_cast<std::size_t>(std::count_if(leaves_.begin(), leaves_.end(), begins));
  if (rings * kLong < edges_.size()) return;
  std::vector<ZBR_PT> centres;
  centres.reserve(leaves_.size());
  for (const Leaf& leaf : leaves_) centres.push_back((From(leaf.first) + To(leaf.last - 1)) * 0.5);
  std::vector<Leaf> sorted;
  sorted.reserve(leaves_.size());
  for (const std::uint32_t leaf : SpatialOrder(centres)) sorted.push_back(leaves_[leaf]);
  leaves_.swap(sorted);
}

// How far leaves go one way together: to the farthest of those for the four ways.
void ClearSearch::FindStraights() {
  constexpr std::size_t kWays = 4;
  goesTo_.resize(leaves_.size());
  std::array<std::uint32_t, kWays> ends{};
  for (auto k = static_cast<std::uint32_t>(leaves_.size()); k-- > 0;) {
    const Leaf& leaf = leaves_[k];
    const bool goesOn = k + 1 < leaves_.size() && leaves_[k + 1].first == leaf.last && edges_.To(leaf.last - 1) == leaf.last;
    goesTo_[k] = k;
    for (std::size_t way = 0; way < kWays; ++way) {
      const bool goesThere = (leaf.ways >> way & 1U) != 0;
      const bool isNextToo = goesOn && (leaves_[k + 1].ways >> way & 1U) != 0;
      ends[way] = !goesThere ? k : isNextToo ? ends[way] : k + 1;
      goesTo_[k] = std::max(goesTo_[k], ends[way]);
    }
  }
}

// Leaves that go one way keep apart: each edge from all but its neighbours.
void ClearSearch::Search() {
  SortLeaves();
  FindStraights();
  const std::span<Box> boxes = tree_.StartLeaves(leaves_.size());
  for (std::size_t k = 0; k < leaves_.size(); ++k) {
    Box box;
    for (std::uint32_t i = leaves_[k].first; i < leaves_[k].last; ++i) box.Add(BoxOf(i));
    boxes[k] = box.Widened(margin_);
  }
  tree_.BuildInner();
  const auto keepApart = [&](std::uint32_t begin, std::uint32_t end) { return goesTo_[begin] >= end; };
  const auto within = [&](std::uint32_t leaf) { return Within(leaves_[leaf]), !IsGivenUp(); };
  const auto across = [&](std::uint32_t a, std::uint32_t b) { return Across(a, b), !IsGivenUp(); };
  BoxSelfJoin(tree_, keepApart, within, across).Run();
  tree_.Clear();
  FreeLarge(leaves_);
  FreeLarge(goesTo_);
}

void ClearSearch::Within(const Leaf& leaf) {
  Box boxes[kLeafEdges];
  for (std::uint32_t i = leaf.first; i < leaf.last; ++i) {
    boxes[i - leaf.first] = BoxOf(i);
    const Box box = BoxOf(i).Widened(margin_);
    for (std::uint32_t j = leaf.first; j + 1 < i; ++j) {
      if (Overlap(box, boxes[j - leaf.first])) LookAt(i, j);
    }
  }
}

void ClearSearch::Across(std::uint32_t a, std::uint32_t b) {
  struct Boxed {
    Box box;
    std::uint32_t edge;
  };
  ++leafPairs_;
  const Box* leaves = tree_.Level(0);
  Boxed meeting[kLeafEdges];
  std::size_t count = 0;
  for (std::uint32_t j = leaves_[b].first; j < leaves_[b].last; ++j) {
    const Box box = BoxOf(j);
    if (Overlap(box, leaves[a])) meeting[count++] = {box.Widened(margin_), j};
  }
  if (count == 0) return;
  for (std::uint32_t i = leaves_[a].first; i < leaves_[a].last; ++i) {
    const Box box = BoxOf(i);
    if (!Overlap(box, leaves[b])) continue;
    for (std::size_t k = 0; k < count; ++k) {
      if (Overlap(box, meeting[k].box)) LookAt(i, meeting[k].edge);
    }
  }
}

void ClearSearch::LookAt(std::uint32_t i, std::uint32_t j) {
  ZBR_COUNT(pairs, 1);
  ++pairs_;
  if ((isNear_[i] && isNear_[j]) || AreNeighbours(i, j) || LiesAside(i, j) || LiesAside(j, i) || Meet(i, j)) return;
  MarkNear(i);
  MarkNear(j);
}

// Whether edge j is all on one side of the line through edge i, away from it. Squares that underflow or overflow say no.
bool ClearSearch::LiesAside(std::uint32_t i, std::uint32_t j) const {
  const ZBR_PT d = To(i) - From(i);
  const double from = Cross(d, From(j) - From(i));
  const double to = Cross(d, To(j) - From(i));
  const double least = margin2_ * d.Length2();
  return (from > 0.0) == (to > 0.0) && from * from > least && to * to > least;
}

// Whether they share a point or both, and come near each other nowhere else; makes a note of it.
bool ClearSearch::Meet(std::uint32_t i, std::uint32_t j) {
  const std::uint32_t ends[2][2] = {{i, edges_.To(i)}, {j, edges_.To(j)}};
  const auto isSame = [&](int endOfI, int endOfJ) { return AreSameBits(points_[ends[0][endOfI]], points_[ends[1][endOfJ]]); };
  if ((isSame(0, 0) && isSame(1, 1)) || (isSame(0, 1) && isSame(1, 0))) {
    PairUp(i, j);
    return true;
  }
  for (const int a : {0, 1}) {
    for (const int b : {0, 1}) {
      if (!isSame(a, b)) continue;
      const ZBR_PT& p = points_[ends[0][a]];
      if (!Part(points_[ends[0][1 - a]] - p, points_[ends[1][1 - b]] - p)) return false;
      NoteMeeting(ends[0][a], ends[1][b]);
      return true;
    }
  }
  return false;
}

void ClearSearch::NoteMeeting(std::uint32_t p, std::uint32_t q) {
  if (meetings_.empty()) meetings_.assign(points_.size(), 0);
  for (const std::uint32_t point : {p, q}) {
    if (meetings_[point] < std::numeric_limits<std::uint8_t>::max()) ++meetings_[point];
  }
}

// A third one along the same two points is too much.
void ClearSearch::PairUp(std::uint32_t i, std::uint32_t j) {
  if (twin_.empty()) twin_.assign(edges_.size(), kNone);
  if (twin_[i] == kNone && twin_[j] == kNone) {
    twin_[i] = j;
    twin_[j] = i;
    return;
  }
  MarkNear(i);
  MarkNear(j);
}

// What is near something, is near with its twin.
void ClearSearch::TakeTwinsAlong() {
  for (std::uint32_t i = 0; i < twin_.size(); ++i) {
    if (isNear_[i] && twin_[i] != kNone) MarkNear(twin_[i]);
  }
}

bool ClearSearch::RunsBack(std::uint32_t edge) const {
  const double dx = To(edge).x() - From(edge).x();
  if (std::fabs(dx) > 2.0 * grid_.step()) return dx < 0.0;  // whatever rounding to the grid does
  return IsBefore(grid_.NodeOf(To(edge)), grid_.NodeOf(From(edge)));
}

// Whether the edge after this one may be in the same chain, its direction apart. Where two twins go on as twins, each of the four
// edges at the point meets the other's neighbour.
bool ClearSearch::GoesOn(std::uint32_t edge) const {
  const std::uint32_t next = edge + 1;
  if (next >= edges_.size() || edges_.To(edge) != next || isNear_[next]) return false;
  const std::uint8_t meetings = meetings_.empty() ? 0 : meetings_[next];
  const std::uint32_t twin = TwinOf(edge);
  const std::uint32_t twinOfNext = TwinOf(next);
  if (twin == kNone || twinOfNext == kNone) return twin == twinOfNext && meetings == 0;
  constexpr std::uint8_t kOfTwins = 2;
  const bool forth = AreSameBits(From(edge), From(twin));
  const std::uint32_t earlier = forth ? twin : twinOfNext;
  return meetings == kOfTwins && earlier + 1 == (forth ? twinOfNext : twin) && edges_.To(earlier) == earlier + 1 &&
         next < twinOfNext;
}

void ClearSearch::Collect(ClearChains& chains) const {
  bool runsBack = false;
  bool goesOn = false;
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
    if (isNear_[i]) {
      chains.others.push_back(i);
      goesOn = false;
      continue;
    }
    const std::uint32_t twin = TwinOf(i);
    if (twin != kNone && twin < i) {
      goesOn = false;
      continue;  // it is with that one
    }
    const bool wasBack = std::exchange(runsBack, RunsBack(i));
    if (goesOn && wasBack == runsBack) {
      ++chains.list.back().count;
    } else {
      chains.list.push_back({i, 1, twin, twin != kNone && !AreSameBits(From(i), From(twin))});
    }
    goesOn = GoesOn(i);
  }
}

}  // namespace

ClearChains FindClearChains(const EdgePoints& edges, const NodeGrid& grid, const Resolution& resolution) {
  return ClearSearch(edges, grid, resolution).Run();
}

}  // namespace zbr
