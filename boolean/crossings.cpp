// Finds where the boundaries of B meet the boundaries of A.
//
// Idea: walk A corner by corner; with the edge E leaving the corner, try every edge of B whose box comes within a margin of E's.
// At most one contact is recorded per pair (contact.cpp says which edge owns what). The edges that come near are found by joining
// two box hierarchies, one over all edges of A's polygons, one over all of B's, so that neither many small rings nor large ones far
// apart cost more than their edges.
// Order: records are wanted by loop of A, loop of B, polygon of A, polygon of B, corner, edge. The join gives them by polygon of A
// as the index holds it, corner, then edge of B. With one polygon on either side these agree; otherwise the records are put in
// order at the end.
// Runs of equal points act as one vertex: on A only the last of a run is a corner, and its predecessor is the last corner before;
// on B a contact with a vertex is recorded at the last point of its run, so that the records of arriving and leaving meet.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>

#include <zbr/boolean.h>

#include "boolean/contact.h"
#include "boolean/polygons.h"
#include "boolean/search.h"
#include "core/cost.h"
#include "core/prefetch.h"
#include "core/radix_sort.h"
#include "core/small_sort.h"
#include "loops/edge_index.h"
#include "loops/near_edges.h"
#include "loops/point_in_loop.h"

namespace zbr {

namespace {

constexpr std::uint32_t kNoCorner = 0xffffffff;

// For a ring with runs of equal points: the previous corner of each vertex, kNoCorner where the vertex is none.
using CornerTable = std::vector<std::uint32_t>;

// The first vertex that differs from its predecessor, or n if all are equal.
std::uint32_t FirstCorner(const std::vector<ZBR_PT>& p, double eps2) {
  const auto n = static_cast<std::uint32_t>(p.size());
  std::uint32_t i = 0;
  while (i < n && SamePoint(p[i], p[i == 0 ? n - 1 : i - 1], eps2)) ++i;
  return i;
}

CornerTable CornersOf(const IndexedRing& ring, double eps2) {
  CornerTable table(ring.n, kNoCorner);
  std::uint32_t prev = ring.start == 0 ? ring.n - 1 : ring.start - 1;
  for (std::uint32_t slot = 0; slot < ring.n; ++slot) {
    const std::uint32_t cur = ring.Vertex(slot);
    const ZBR_PT& p = ring.points[cur];
    if (p.Distance2(ring.points[prev]) <= eps2 || ring.points[ring.Next(cur)].Distance2(p) <= eps2) continue;
    table[cur] = prev;
    prev = cur;
  }
  return table;
}

// A record on its way to its place: its number as found, and what it is sorted by.
struct SortedRecord {
  std::uint32_t b;
  std::uint32_t found;
};

constexpr std::size_t PointsNeeded(bool isOpen) {
  return isOpen ? 2 : 3;
}

class CrossingSearch {
 public:
  CrossingSearch(const std::vector<Polygon>& a, const std::vector<Polygon>& b, bool closedB, std::vector<ZBR_CROSS>& out)
      : a_(a), b_(b), closedB_(closedB), eps2_(t_tolerance.eps2), out_(out) {}

  void Run() {
    const std::size_t before = out_.size();
    if (!IndexBoth()) return;
    needsOrder_ = a_.size() > 1 || b_.size() > 1;
    if (!SearchBoxes(!isCoarse_)) {
      constexpr double kNear = 64.0;  // tolerances: more than any contact sees
      std::vector<EdgePair> pairs;
      Forget(before);
      if (FindNearEdges(indexA_, indexB_, kNear * t_tolerance.eps, pairs)) {
        SearchPairs(pairs);
      } else {
        SearchBoxes(false);
      }
    }
    if (needsOrder_) PutInOrder(before);
  }

  const EdgeIndex& indexA() const { return indexA_; }
  const EdgeIndex& indexB() const { return indexB_; }
  void Report(SearchReport& report) {
    report.doubts = std::move(doubts_);
    report.contacts = std::move(contacts_);
    report.isCoarse = isCoarse_;
    report.simplicity[0] = SimplicityOf(indexA_, kBoxMargin);
    report.simplicity[1] = SimplicityOf(indexB_, 0.0);
  }

 private:
  // False when there is a limit to what is looked at in vain, and that is reached.
  bool SearchBoxes(bool isLimited) {
    constexpr std::size_t kPairsPerLeaf = 256;
    constexpr std::size_t kPairsPerCrossing = 8;
    const std::size_t before = out_.size();
    const std::size_t most = kPairsPerLeaf * (std::size_t{indexA_.tree().Count(0)} + indexB_.tree().Count(0));
    looks_ = 0;
    return BoxJoin::Run(indexA_.tree(), indexB_.tree(), [&](std::uint32_t leaf, std::span<const std::uint32_t> leavesB) {
      progress_ = leaf;
      SearchLeaf(indexA_.leaf(leaf), leavesB);
      return !isLimited || looks_ <= most + kPairsPerCrossing * (out_.size() - before);
    });
  }

  void SearchPairs(std::span<const EdgePair> pairs) {
    for (std::size_t first = 0; first < pairs.size();) {
      std::size_t last = first + 1;
      while (last < pairs.size() && pairs[last].a == pairs[first].a) ++last;
      progress_ = pairs[first].a / EdgeIndex::kLeafEdges;
      const EdgeIndex::Leaf& leaf = indexA_.leaf(progress_);
      const IndexedRing& ring = indexA_.rings()[leaf.ring];
      const std::uint32_t cur = ring.Vertex(leaf.first + pairs[first].a % EdgeIndex::kLeafEdges);
      const std::uint32_t prev = Before(leaf.ring, cur);
      if (prev != kNoCorner) SearchCorner(ring, prev, cur, pairs.subspan(first, last - first));
      first = last;
    }
  }

  void Forget(std::size_t before) {
    out_.resize(before);
    polygons_.clear();
    doubts_.clear();
    contacts_.clear();
  }

  bool IndexBoth() {
    std::vector<IndexedRing> ringsA;
    std::vector<IndexedRing> ringsB;
    AddRings(a_, true, ringsA);
    AddRings(b_, false, ringsB);
    const bool isOneEmpty = ringsA.empty() || ringsB.empty();
    if (!ringsA.empty()) indexA_.Build(std::move(ringsA), kBoxMargin, eps2_);
    if (!ringsB.empty()) indexB_.Build(std::move(ringsB), 0.0, eps2_);
    if (isOneEmpty) return false;
    isCoarse_ = RoundingOf(Bounds()) > kSurelyOn * t_tolerance.eps;
    if (isCoarse_) surelyOn_ = 0.0;
    for (std::uint32_t r = 0; r < indexA_.rings().size(); ++r) {
      const IndexedRing& ring = indexA_.rings()[r];
      if (ring.hasRepeats) corners_.emplace(r, CornersOf(ring, eps2_));
    }
    return true;
  }

  Box Bounds() const {
    Box box;
    box.Add(indexA_.tree().Level(indexA_.tree().TopLevel())[0]);
    box.Add(indexB_.tree().Level(indexB_.tree().TopLevel())[0]);
    return box;
  }

  // What a computed point, such as the middle of an edge, can lie beside the exact one.
  static double RoundingOf(const Box& box) {
    constexpr double kRounding = 4.0 * std::numeric_limits<double>::epsilon();
    return kRounding * std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)});
  }

  void AddRings(const std::vector<Polygon>& polygons, bool isA, std::vector<IndexedRing>& rings) {
    rings.reserve(polygons.size());
    for (std::uint32_t i = 0; i < polygons.size(); ++i) {
      if (i + 2 * kItemsAhead < polygons.size()) PrefetchObject(**polygons[i + 2 * kItemsAhead].loop);
      if (i + kItemsAhead < polygons.size()) Prefetch((**polygons[i + kItemsAhead].loop).pt().data());
      AddRing(polygons[i], i, isA, rings);
    }
  }

  // A's slots are corners from the first on. B's are edges, the closing one first.
  void AddRing(const Polygon& polygon, std::uint32_t id, bool isA, std::vector<IndexedRing>& rings) {
    ZBR_LOOP& loop = **polygon.loop;
    const auto n = static_cast<std::uint32_t>(loop.pt().size());
    const bool isOpen = !isA && !closedB_;
    if (n < PointsNeeded(isOpen)) return;
    loop.Setup();
    if (!IsFiniteRing(loop)) return;
    const std::uint32_t start = isOpen ? 0 : isA ? FirstCorner(loop.pt(), eps2_) : n - 1;
    if (start == n) return;
    rings.push_back({BoxOf(loop), loop.pt().data(), n, start, isOpen ? n - 1 : n, id, false});
  }

  void SearchLeaf(const EdgeIndex::Leaf& leaf, std::span<const std::uint32_t> leavesB) {
    const IndexedRing& ring = indexA_.rings()[leaf.ring];
    const std::uint32_t last = indexA_.LastSlot(leaf);
    for (std::uint32_t slot = leaf.first; slot < last; ++slot) {
      const std::uint32_t cur = ring.Vertex(slot);
      const std::uint32_t prev = Before(leaf.ring, cur);
      if (prev != kNoCorner) SearchCorner(ring, prev, cur, leavesB);
    }
  }

  // The corner of A before a vertex, kNoCorner where the vertex is none.
  std::uint32_t Before(std::uint32_t number, std::uint32_t cur) const {
    const IndexedRing& ring = indexA_.rings()[number];
    if (ring.hasRepeats) return corners_.at(number)[cur];
    return cur == 0 ? ring.n - 1 : cur - 1;
  }

  void SearchCorner(const IndexedRing& ring, std::uint32_t prev, std::uint32_t cur, std::span<const EdgePair> pairs) {
    const ZBR_PT& p = ring.points[cur];
    const ZBR_PT& next = ring.points[ring.Next(cur)];
    const Box edgeBox = BoxOfSegment(p, next).Widened(kBoxMargin);
    Corner corner(ring.points[prev], p, next, eps2_, surelyOn_);
    ZBR_COUNT(pairs, pairs.size());
    for (const EdgePair& pair : pairs) {
      const EdgeIndex::Leaf& leaf = indexB_.leaf(pair.b / EdgeIndex::kLeafEdges);
      const IndexedRing& other = indexB_.rings()[leaf.ring];
      const std::uint32_t from = other.Vertex(leaf.first + pair.b % EdgeIndex::kLeafEdges);
      LookAt(ring, cur, corner, edgeBox, other, from);
    }
  }

  void SearchCorner(const IndexedRing& ring, std::uint32_t prev, std::uint32_t cur, std::span<const std::uint32_t> leavesB) {
    const ZBR_PT& p = ring.points[cur];
    const ZBR_PT& next = ring.points[ring.Next(cur)];
    const Box edgeBox = BoxOfSegment(p, next).Widened(kBoxMargin);
    Corner corner(ring.points[prev], p, next, eps2_, surelyOn_);
    const Box* leafBoxes = indexB_.tree().Level(0);
    for (const std::uint32_t l : leavesB) {
      if (!Overlap(edgeBox, leafBoxes[l])) continue;
      const EdgeIndex::Leaf& leaf = indexB_.leaf(l);
      const IndexedRing& other = indexB_.rings()[leaf.ring];
      const std::uint32_t last = indexB_.LastSlot(leaf);
      std::uint32_t j = other.Vertex(leaf.first);
      unsigned beyond = SidesBeyond(other.points[j], edgeBox);
      ZBR_COUNT(pairs, last - leaf.first);
      ++looks_;
      for (std::uint32_t edge = leaf.first; edge < last; ++edge) {
        const std::uint32_t from = j;
        const unsigned beyondFrom = beyond;
        j = other.Next(j);
        beyond = SidesBeyond(other.points[j], edgeBox);
        if ((beyondFrom & beyond) != 0) continue;  // the edge's box lies wholly beyond one side
        LookAt(ring, cur, corner, edgeBox, other, from);
      }
    }
  }

  // An edge of B beside the edge that leaves a corner of A.
  void LookAt(const IndexedRing& ring, std::uint32_t cur, Corner& corner, const Box& edgeBox, const IndexedRing& other,
              std::uint32_t from) {
    const ZBR_PT& q0 = other.points[from];
    const ZBR_PT& q1 = other.points[other.Next(from)];
    if (other.hasRepeats && SamePoint(q0, q1, eps2_)) return;
    ++looks_;
    Contact contact;
    const bool meets = corner.Meet(q0, q1, contact);
    if (corner.isDoubtful()) Note({ring.id, other.id}, doubts_);
    if (corner.hasContact()) Note({ring.id, other.id}, contacts_);
    if (!meets || !LoopBoxesMeet(ring.bounds, other.bounds, edgeBox)) return;
    Record(contact, {ring.id, other.id}, cur, PositionOnB(other, from, contact.tB));
  }

  // The tests on whole loops, by their cached boxes. The search implies them, but for the last bit of a rounded margin and for
  // caches that a caller has let go stale.
  static bool LoopBoxesMeet(const Box& a, const Box& b, const Box& edgeBox) {
    return b.xmin <= a.xmax + kBoxMargin && a.xmin <= b.xmax + kBoxMargin && b.ymin <= a.ymax + kBoxMargin &&
           a.ymin <= b.ymax + kBoxMargin && Overlap(b, edgeBox);
  }

  double PositionOnB(const IndexedRing& ring, std::uint32_t from, double t) const {
    if (t != 1.0) return from + t;
    std::uint32_t v = ring.Next(from);
    if (!ring.hasRepeats) return v;
    while ((closedB_ || v + 1 < ring.n) && SamePoint(ring.points[v], ring.points[ring.Next(v)], eps2_)) v = ring.Next(v);
    return v;
  }

  static void Note(PolygonPair pair, std::vector<PolygonPair>& pairs) {
    if (pairs.empty() || pairs.back().a != pair.a || pairs.back().b != pair.b) pairs.push_back(pair);
  }

  void Record(const Contact& contact, PolygonPair polygons, std::uint32_t cur, double posB) {
    if (out_.size() == out_.capacity()) Grow();
    ZBR_CROSS& cross = out_.emplace_back();
    cross.pt = contact.pt;
    cross.dir = contact.dir;
    cross.a.loop = a_[polygons.a].key;
    cross.a.pos = cur + contact.tA;
    cross.b.loop = b_[polygons.b].key;
    cross.b.pos = posB;
    cross.valid = true;
    cross.index = static_cast<int>(out_.size()) - 1;
    if (needsOrder_) polygons_.push_back(polygons);
  }

  // Expects the rest of A to be crossed as often as what has been searched: one move of a large vector instead of many.
  void Grow() {
    const double share = (progress_ + 1.0) / indexA_.tree().Count(0);
    const double expected = static_cast<double>(out_.size()) / share * 1.1;
    const std::size_t doubled = 2 * out_.size() + 16;
    const std::size_t most = 16 * out_.size() + 16;
    out_.reserve(std::clamp(static_cast<std::size_t>(std::min(expected, 1e15)), doubled, most));
  }

  // The records of one polygon of A lie together, by corner, and those of one corner by edge of B. So they are brought into list
  // order polygon by polygon, each sorted stably by polygon of B; where a loop of A has several polygons, loops of B come before
  // them in the order and are sorted by last.
  void PutInOrder(std::size_t before) {
    std::vector<std::uint32_t> first(a_.size() + 1, 0);  // of each polygon's records in the final order
    for (const PolygonPair& p : polygons_) ++first[p.a + 1];
    std::partial_sum(first.begin(), first.end(), first.begin());
    std::vector<SortedRecord> order(polygons_.size());
    for (std::uint32_t i = 0; i < polygons_.size();) {
      const std::uint32_t a = polygons_[i].a;
      const std::span<SortedRecord> records = std::span(order).subspan(first[a], first[a + 1] - first[a]);
      for (SortedRecord& r : records) {
        r = {polygons_[i].b, i};
        ++i;
      }
      StableSort(records, [](const SortedRecord& r) { return r.b; });
    }
    SortByLoopOfB(first, order);
    const auto byFound = [](const SortedRecord& x, const SortedRecord& y) { return x.found < y.found; };
    if (!std::is_sorted(order.begin(), order.end(), byFound)) MoveRecords(before, order);
  }

  void SortByLoopOfB(const std::vector<std::uint32_t>& first, std::vector<SortedRecord>& order) {
    for (std::size_t a = 0; a < a_.size();) {
      std::size_t next = a + 1;
      while (next < a_.size() && a_[next].key.loop() == a_[a].key.loop()) ++next;
      if (next - a > 1) {
        StableSort(std::span(order).subspan(first[a], first[next] - first[a]),
                   [this](const SortedRecord& r) { return static_cast<std::uint32_t>(b_[r.b].key.loop()); });
      }
      a = next;
    }
  }

  template <class Key>
  void StableSort(std::span<SortedRecord> records, Key key) {
    constexpr std::size_t kFew = 32;
    const auto less = [key](const SortedRecord& x, const SortedRecord& y) { return key(x) < key(y); };
    if (std::is_sorted(records.begin(), records.end(), less)) return;
    if (records.size() <= kFew) return SmallSort(records.begin(), records.end(), less);
    sorted_.assign(records.begin(), records.end());
    RadixSort(sorted_, scratch_, key);
    std::copy(sorted_.begin(), sorted_.end(), records.begin());
  }

  void MoveRecords(std::size_t before, const std::vector<SortedRecord>& order) {
    std::vector<ZBR_CROSS> moved;
    moved.reserve(out_.size());
    moved.insert(moved.end(), out_.begin(), out_.begin() + static_cast<std::ptrdiff_t>(before));
    for (const SortedRecord& r : order) {
      moved.push_back(out_[before + r.found]);
      moved.back().index = static_cast<int>(moved.size()) - 1;
    }
    out_ = std::move(moved);
  }

  const std::vector<Polygon>& a_;
  const std::vector<Polygon>& b_;
  bool closedB_;
  double eps2_;
  bool isCoarse_ = false;
  double surelyOn_ = kSurelyOn;  // 0 where coordinates are so large that only equal ones are certain
  std::vector<ZBR_CROSS>& out_;
  EdgeIndex indexA_;
  EdgeIndex indexB_;
  std::unordered_map<std::uint32_t, CornerTable> corners_;
  std::vector<PolygonPair> doubts_;
  std::vector<PolygonPair> contacts_;
  std::vector<PolygonPair> polygons_;  // of the records appended, kept only when they may need sorting
  std::vector<SortedRecord> sorted_;   // scratch of StableSort, as the next
  std::vector<SortedRecord> scratch_;
  std::uint32_t progress_ = 0;
  std::size_t looks_ = 0;
  bool needsOrder_ = false;
};

void Note(const EdgeIndex& index, std::size_t polygons, std::vector<SearchedPolygon>* seen) {
  if (seen == nullptr) return;
  seen->assign(polygons, {});
  for (const IndexedRing& ring : index.rings()) (*seen)[ring.id] = {ring.points, ring.n, ring.hasRepeats};
}

bool HasRing(const std::vector<Polygon>& polygons, bool isOpen) {
  return std::any_of(polygons.begin(), polygons.end(),
                     [isOpen](const Polygon& polygon) { return (**polygon.loop).pt().size() >= PointsNeeded(isOpen); });
}

}  // namespace

void SearchCrossings(const std::vector<Polygon>& a, const std::vector<Polygon>& b, bool closedB, std::vector<ZBR_CROSS>& crosses,
                     std::vector<SearchedPolygon>* seenA, std::vector<SearchedPolygon>* seenB, SearchReport* report) {
  CrossingSearch search(a, b, closedB, crosses);
  search.Run();
  Note(search.indexA(), a.size(), seenA);
  Note(search.indexB(), b.size(), seenB);
  if (report != nullptr) search.Report(*report);
}

namespace {

// Where one side has no ring that can cross, no loop is set up.
void AppendCrossings(const std::vector<Polygon>& a, const std::vector<Polygon>& b, bool closedB, std::vector<ZBR_CROSS>& crosses) {
  if (HasRing(a, false) && HasRing(b, !closedB)) SearchCrossings(a, b, closedB, crosses, nullptr, nullptr, nullptr);
}

}  // namespace
}  // namespace zbr

void zbrGetPolygonCross(const std::shared_ptr<ZBR_LOOP>& A, const std::shared_ptr<ZBR_LOOP>& B, int loopA, int loopB, int polyA,
                        int polyB, std::vector<ZBR_CROSS>& crosses, bool closedB) {
  const std::vector<zbr::Polygon> a{{&A, ZBR_CROSS_LOOP(loopA, polyA)}};
  const std::vector<zbr::Polygon> b{{&B, ZBR_CROSS_LOOP(loopB, polyB)}};
  zbr::AppendCrossings(a, b, closedB, crosses);
}

void zbrGetLoopCross(const std::shared_ptr<ZBR_LOOP>& A, const std::shared_ptr<ZBR_LOOP>& B, int loopA, int loopB,
                     std::vector<ZBR_CROSS>& crosses) {
  std::vector<zbr::Polygon> a;
  std::vector<zbr::Polygon> b;
  zbr::AppendPolygons(A, loopA, a);
  zbr::AppendPolygons(B, loopB, b);
  zbr::AppendCrossings(a, b, true, crosses);
}

void zbrGetLoopsCross(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                      std::vector<ZBR_CROSS>& crosses) {
  zbr::AppendCrossings(zbr::PolygonsOf(A), zbr::PolygonsOf(B), true, crosses);
}
