// Search for crossing and overlapping edges within one set of rings.
//
// Idea: the hierarchy of boxes over all edges, joined with itself, yields the pairs of leaves, and so of edges, with common boxes;
// where these are many and have little in common but that, slabs yield the pairs.
// Difficulty: what happens at a vertex is seen by up to four pairs of edges. Each contact has one owner: a vertex belongs to the
// edge that starts there, and whether the boundaries cross at it is decided by the two edges that meet there.
// Edges that are exactly apart may come within the tolerance all the same, or a corner be so narrow. So what is found counts only
// where one of the edges has an exact fault: it, or the one before it, crosses some edge or runs along it.
#include "loops/contacts.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "core/exact_side.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "loops/near_edges.h"

namespace zbr {
namespace {

// An edge, named by its start vertex.
struct Edge {
  const IndexedRing* ring;
  std::uint32_t vertex;

  const ZBR_PT& From() const { return ring->points[vertex]; }
  const ZBR_PT& To() const { return ring->points[ring->Next(vertex)]; }
  const ZBR_PT& Before() const { return ring->points[(vertex == 0 ? ring->n : vertex) - 1]; }
  bool IsFollowedBy(const Edge& o) const { return ring == o.ring && ring->Next(vertex) == o.vertex; }
};

// Whether p and q, neither of them at the origin, are seen from there in the same direction.
bool AreInLine(const ZBR_PT& origin, const ZBR_PT& p, const ZBR_PT& q) {
  if (ExactSideOf(origin, p, q) != 0) return false;
  const bool alongX = p.x() != origin.x();
  return alongX ? (p.x() > origin.x()) == (q.x() > origin.x()) : (p.y() > origin.y()) == (q.y() > origin.y());
}

// Whether p lies on the line of a-b between these.
bool IsWithin(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b) {
  return AreInLine(a, b, p) && AreInLine(b, a, p);
}

// Whether q is seen from the start of an edge on its left. Not for what lies on one of the arms there.
bool HasOnLeft(const Edge& e, const ZBR_PT& q) {
  const bool leftOfBefore = ExactSideOf(e.Before(), e.From(), q) > 0;
  const bool leftOfAfter = ExactSideOf(e.From(), e.To(), q) > 0;
  return ExactSideOf(e.Before(), e.From(), e.To()) > 0 ? leftOfBefore && leftOfAfter : leftOfBefore || leftOfAfter;
}

// Whether the boundaries pass through each other at the start of both edges, or have an arm in common.
bool PassThrough(const Edge& e, const Edge& f) {
  for (const ZBR_PT& arm : {f.Before(), f.To()}) {
    if (AreInLine(e.From(), e.Before(), arm) || AreInLine(e.From(), e.To(), arm)) return true;
  }
  return HasOnLeft(e, f.Before()) != HasOnLeft(e, f.To());
}

// Whether the edges cross or run along each other, without any tolerance, or boundaries cross where one of them starts.
bool AreFaulty(const Edge& e, const Edge& f) {
  const ZBR_PT &p0 = e.From(), &p1 = e.To(), &q0 = f.From(), &q1 = f.To();
  if (AreIdentical(p0, q0)) return PassThrough(e, f);
  if (AreIdentical(p0, q1)) return AreInLine(p0, p1, q0);
  if (AreIdentical(p1, q0)) return AreInLine(p1, p0, q1);
  if (AreIdentical(p1, q1)) return AreInLine(p1, p0, q0);
  const int sideQ0 = ExactSideOf(p0, p1, q0), sideQ1 = ExactSideOf(p0, p1, q1);
  if (sideQ0 == 0 && sideQ1 == 0) return IsWithin(q0, p0, p1) || IsWithin(q1, p0, p1) || IsWithin(p0, q0, q1);
  const int sideP0 = ExactSideOf(q0, q1, p0), sideP1 = ExactSideOf(q0, q1, p1);
  if (sideQ0 * sideQ1 < 0 && sideP0 * sideP1 < 0) return true;
  if (sideQ0 == 0 && IsWithin(q0, p0, p1)) return ExactSideOf(p0, p1, f.Before()) * sideQ1 < 0;
  return sideP0 == 0 && IsWithin(p0, q0, q1) && ExactSideOf(q0, q1, e.Before()) * sideP1 < 0;
}

class RingContactSearch {
 public:
  RingContactSearch(const EdgeIndex& index, std::size_t most, std::vector<RingContact>& found)
      : index_(index), most_(most), found_(found), eps_(t_tolerance.eps) {
    std::size_t edges = 0;
    for (const IndexedRing& ring : index.rings()) {
      firstEdge_.push_back(edges);
      edges += ring.n;
    }
    isFaulty_.resize(edges);
  }

  bool Run() {
    if (!ExamineBoxes(true) && (Forget(), !ExamineSlabs())) {
      Forget();
      ExamineBoxes(false);
    }
    const bool wasDone = certain_ < most_;
    DropDoubtful();
    candidates_.resize(std::min(candidates_.size(), most_));
    for (const Candidate& c : candidates_) found_.push_back(c.contact);
    return wasDone;
  }

 private:
  // With more pairs than this, slabs are as quick.
  static constexpr std::size_t kExaminedPerEdge = 64;
  static constexpr std::size_t kExaminedPerContact = 8;

  // What only comes near some edge is kept for the case that the edge proves to be faulty elsewhere, as long as there is little of
  // it.
  static constexpr std::size_t kMostDoubtful = std::size_t{1} << 20U;

  // False when there is a limit to what is looked at in vain, and that is reached.
  bool ExamineBoxes(bool isLimited) {
    const BoxTree& tree = index_.tree();
    const auto isVain = [&] {
      return isLimited && examined_ > kExaminedPerEdge * isFaulty_.size() + kExaminedPerContact * candidates_.size();
    };
    BoxJoin::Run(tree, tree, [&](std::uint32_t leaf, std::span<const std::uint32_t> others) {
      return std::all_of(others.begin(), others.end(), [&](std::uint32_t other) {
        if (other >= leaf) ExamineLeaves(leaf, other);
        return certain_ < most_ && !isVain();
      });
    });
    return certain_ >= most_ || !isVain();
  }

  // Pairs of edges in the order in which boxes give them. False when there are too many.
  bool ExamineSlabs() {
    constexpr double kFar = 16.0;  // tolerances: what is farther apart has no contact
    std::vector<EdgePair> pairs;
    if (!FindNearEdges(index_, index_, kFar * eps_, pairs)) return false;
    constexpr std::uint32_t kLeaf = EdgeIndex::kLeafEdges;
    std::sort(pairs.begin(), pairs.end(), [](const EdgePair& x, const EdgePair& y) {
      return std::tuple(x.a / kLeaf, x.b / kLeaf, x.a, x.b) < std::tuple(y.a / kLeaf, y.b / kLeaf, y.a, y.b);
    });
    for (const EdgePair& pair : pairs) {
      if (pair.b > pair.a) ExamineEdges(EdgeOf(pair.a), EdgeOf(pair.b));
      if (certain_ >= most_) break;
    }
    return true;
  }
  Edge EdgeOf(std::uint32_t place) const {
    const std::uint32_t leaf = place / EdgeIndex::kLeafEdges;
    return EdgeAt(leaf, index_.leaf(leaf).first + place % EdgeIndex::kLeafEdges);
  }

  void Forget() {
    candidates_.clear();
    isFaulty_.assign(isFaulty_.size(), false);
    certain_ = 0;
  }

  void DropDoubtful() {
    std::erase_if(candidates_, [this](const Candidate& c) { return !isFaulty_[c.edges[0]] && !isFaulty_[c.edges[1]]; });
    certain_ = candidates_.size();
  }

  Edge EdgeAt(std::uint32_t leaf, std::uint32_t slot) const {
    const IndexedRing& ring = index_.rings()[index_.leaf(leaf).ring];
    return {&ring, ring.Vertex(slot)};
  }

  std::size_t NumberOf(const Edge& e) const {
    return firstEdge_[static_cast<std::size_t>(e.ring - index_.rings().data())] + e.vertex;
  }

  void MarkFaults(const Edge& e, const Edge& f) {
    if (!AreFaulty(e, f)) return;
    for (const Edge& edge : {e, f})
      isFaulty_[NumberOf(edge)] = isFaulty_[NumberOf({edge.ring, edge.ring->Next(edge.vertex)})] = true;
  }

  void ExamineLeaves(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t lastA = index_.LastSlot(index_.leaf(a));
    const std::uint32_t lastB = index_.LastSlot(index_.leaf(b));
    for (std::uint32_t i = index_.leaf(a).first; i < lastA; ++i) {
      const Edge e = EdgeAt(a, i);
      for (std::uint32_t j = a == b ? i + 1 : index_.leaf(b).first; j < lastB; ++j) ExamineEdges(e, EdgeAt(b, j));
    }
  }

  void ExamineEdges(const Edge& e, const Edge& f) {
    if (!Overlap(BoxOfSegment(e.From(), e.To()).Widened(2.0 * eps_), BoxOfSegment(f.From(), f.To()))) return;
    ++examined_;
    Examine(e, f);
  }

  void Examine(const Edge& e, const Edge& f) {
    if (e.IsFollowedBy(f)) return CheckFold(e, f);
    if (f.IsFollowedBy(e)) return CheckFold(f, e);
    const ZBR_PT &p0 = e.From(), &p1 = e.To(), &q0 = f.From(), &q1 = f.To();
    const int sideQ0 = q0.CheckPos(p0, p1);
    const int sideQ1 = q1.CheckPos(p0, p1);
    if (sideQ0 * sideQ1 > 0) return;
    const int sideP0 = p0.CheckPos(q0, q1);
    const int sideP1 = p1.CheckPos(q0, q1);
    if (sideP0 * sideP1 > 0) return;
    MarkFaults(e, f);
    if (sideQ0 * sideQ1 < 0 && sideP0 * sideP1 < 0) return Note(RingContactKind::kCrossing, e, f, Meeting(p0, p1, q0, q1));
    if (sideQ0 == 0 && sideQ1 == 0) return CheckOverlap(e, f);
    if (sideQ0 == 0) CheckVertexOnEdge(f, e);
    if (sideP0 == 0 && q0 != p0) CheckVertexOnEdge(e, f);
  }

  void CheckFold(const Edge& e, const Edge& next) {
    const ZBR_PT &a = e.From(), &b = next.From(), &c = next.To();
    if (c.CheckPos(a, b) != 0 || (a - b).InnerProduct(c - b) <= 0.0) return;
    MarkFaults(e, next);
    Note(RingContactKind::kFold, e, next, b);
  }

  // Edges on one line: shared is more than a point if the one's ends reach into the other's stretch.
  void CheckOverlap(const Edge& e, const Edge& f) {
    const ZBR_PT& p0 = e.From();
    const ZBR_PT along = e.To() - p0;
    const double length = along.Length();
    const auto position = [&](const ZBR_PT& p) { return (p - p0).InnerProduct(along) / length; };
    const auto [f0, f1] = std::minmax({position(f.From()), position(f.To())});
    const double from = std::max(0.0, f0);
    const double to = std::min(length, f1);
    if (to - from > eps_) return Note(RingContactKind::kOverlap, e, f, p0 + along * ((from + to) / 2.0 / length));
    if (f.From() == p0) CheckVertexOnEdge(f, e);
  }

  // The start of v lies on the line of `edge`: do the boundaries cross there?
  void CheckVertexOnEdge(const Edge& v, const Edge& edge) {
    const ZBR_PT &at = v.From(), &before = v.Before(), &after = v.To();
    const ZBR_PT &a = edge.From(), &b = edge.To();
    if (at == b) return;  // belongs to the edge that starts there
    if (at != a) {
      const double along = (at - a).InnerProduct(b - a);
      const bool isBetween = along > 0.0 && along < (b - a).Length2();
      if (isBetween && before.CheckPos(a, b) * after.CheckPos(a, b) == -1) Note(RingContactKind::kCrossing, v, edge, at);
      return;
    }
    int ignored1 = 0;
    int ignored2 = 0;
    const int sideBefore = before.CheckPos(edge.Before(), a, b, ignored1, ignored2);
    const int sideAfter = after.CheckPos(edge.Before(), a, b, ignored1, ignored2);
    if (sideBefore * sideAfter == -1) Note(RingContactKind::kCrossing, v, edge, at);
  }

  static ZBR_PT Meeting(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& q0, const ZBR_PT& q1) {
    const ZBR_PT p = p1 - p0;
    const ZBR_PT q = q1 - q0;
    return p0 + p * ((q0 - p0).OuterProduct(q) / p.OuterProduct(q));
  }

  void Note(RingContactKind kind, const Edge& e, const Edge& f, const ZBR_PT& at) {
    std::pair a(e.ring->id, e.vertex);
    std::pair b(f.ring->id, f.vertex);
    if (b < a) std::swap(a, b);
    candidates_.push_back({{kind, a.first, a.second, b.first, b.second, at}, {NumberOf(e), NumberOf(f)}});
    if (isFaulty_[NumberOf(e)] || isFaulty_[NumberOf(f)]) ++certain_;
    if (candidates_.size() - certain_ > kMostDoubtful) DropDoubtful();
  }

  struct Candidate {
    RingContact contact;
    std::size_t edges[2];
  };

  const EdgeIndex& index_;
  std::size_t most_;
  std::vector<RingContact>& found_;
  double eps_;
  std::vector<std::size_t> firstEdge_;  // by ring
  std::vector<bool> isFaulty_;          // by edge
  std::vector<Candidate> candidates_;
  std::size_t certain_ = 0;   // candidates
  std::size_t examined_ = 0;  // pairs of edges
};

}  // namespace

bool FindRingContacts(const EdgeIndex& index, std::size_t most, std::vector<RingContact>& found) {
  return RingContactSearch(index, most, found).Run();
}

}  // namespace zbr
