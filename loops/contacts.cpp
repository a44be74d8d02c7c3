// Search for crossing and overlapping edges within one set of rings.
//
// Idea: the hierarchy of boxes over all edges, joined with itself, yields the pairs of leaves, and so of edges, with common boxes.
// Difficulty: what happens at a vertex is seen by up to four pairs of edges. Each contact has one owner: a vertex belongs to the
// edge that starts there, and whether the boundaries cross at it is decided by the two edges that meet there.
#include "loops/contacts.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "core/tolerance_state.h"

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

class RingContactSearch {
 public:
  RingContactSearch(const EdgeIndex& index, std::size_t most, std::vector<RingContact>& found)
      : index_(index), most_(most), found_(found), eps_(t_tolerance.eps) {}

  bool Run() {
    const BoxTree& tree = index_.tree();
    return BoxJoin::Run(tree, tree, [this](std::uint32_t leaf, std::span<const std::uint32_t> others) {
      for (const std::uint32_t other : others) {
        if (other >= leaf) ExamineLeaves(leaf, other);
        if (found_.size() >= most_) return false;
      }
      return true;
    });
  }

 private:
  Edge EdgeAt(std::uint32_t leaf, std::uint32_t slot) const {
    const IndexedRing& ring = index_.rings()[index_.leaf(leaf).ring];
    return {&ring, ring.Vertex(slot)};
  }

  void ExamineLeaves(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t lastA = index_.LastSlot(index_.leaf(a));
    const std::uint32_t lastB = index_.LastSlot(index_.leaf(b));
    for (std::uint32_t i = index_.leaf(a).first; i < lastA; ++i) {
      const Edge e = EdgeAt(a, i);
      const Box box = BoxOfSegment(e.From(), e.To()).Widened(2.0 * eps_);
      for (std::uint32_t j = a == b ? i + 1 : index_.leaf(b).first; j < lastB; ++j) {
        const Edge f = EdgeAt(b, j);
        if (Overlap(box, BoxOfSegment(f.From(), f.To()))) Examine(e, f);
      }
    }
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
    if (sideQ0 * sideQ1 < 0 && sideP0 * sideP1 < 0) return Note(RingContactKind::kCrossing, e, f, Meeting(p0, p1, q0, q1));
    if (sideQ0 == 0 && sideQ1 == 0) return CheckOverlap(e, f);
    if (sideQ0 == 0) CheckVertexOnEdge(f, e);
    if (sideP0 == 0 && q0 != p0) CheckVertexOnEdge(e, f);
  }

  void CheckFold(const Edge& e, const Edge& next) {
    const ZBR_PT &a = e.From(), &b = next.From(), &c = next.To();
    if (c.CheckPos(a, b) == 0 && (a - b).InnerProduct(c - b) > 0.0) Note(RingContactKind::kFold, e, next, b);
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
    found_.push_back({kind, a.first, a.second, b.first, b.second, at});
  }

  const EdgeIndex& index_;
  std::size_t most_;
  std::vector<RingContact>& found_;
  double eps_;
};

}  // namespace

bool FindRingContacts(const EdgeIndex& index, std::size_t most, std::vector<RingContact>& found) {
  return RingContactSearch(index, most, found).Run();
}

}  // namespace zbr
