// Idea: the hierarchy over all edges, joined with itself, gives the pairs that may meet; each is decided by exact sides.
// Difficulty: boundaries may pass through each other at a common vertex. Of two edges that start there, each with the one before
// it, the one's arms must not lie on different sides of the other's corner.
#include "loops/exact_simplicity.h"

#include <algorithm>

#include "core/exact_side.h"
#include "core/planar_inline.h"

namespace zbr {
namespace {

// A point of a boundary with its neighbours.
struct Corner {
  ZBR_PT before, at, after;

  // Whether q is seen from the corner on its left. Not for what lies on one of its arms.
  bool HasOnLeft(const ZBR_PT& q) const {
    const bool leftOfBefore = ExactSideOf(before, at, q) > 0;
    const bool leftOfAfter = ExactSideOf(at, after, q) > 0;
    return ExactSideOf(before, at, after) > 0 ? leftOfBefore && leftOfAfter : leftOfBefore || leftOfAfter;
  }
};

// Whether p and q, neither of them at the origin, are seen from there in the same direction.
bool AreInLine(const ZBR_PT& origin, const ZBR_PT& p, const ZBR_PT& q) {
  if (ExactSideOf(origin, p, q) != 0) return false;
  const bool alongX = p.x() != origin.x();
  return alongX ? (p.x() > origin.x()) == (q.x() > origin.x()) : (p.y() > origin.y()) == (q.y() > origin.y());
}

class ExactSearch {
 public:
  explicit ExactSearch(const EdgeIndex& index) : index_(index) {
    for (const IndexedRing& ring : index.rings()) left_ += kPairsPerEdge * ring.slots;
  }

  ExactSimplicity Run() {
    const BoxTree& tree = index_.tree();
    BoxJoin::Run(tree, tree, [this](std::uint32_t leaf, std::span<const std::uint32_t> others) {
      for (const std::uint32_t other : others) {
        if (other >= leaf) Examine(leaf, other);
      }
      return found_ == ExactSimplicity::kSimple;
    });
    return found_;
  }

 private:
  struct Edge {
    const IndexedRing* ring;
    std::uint32_t vertex;

    const ZBR_PT& From() const { return ring->points[vertex]; }
    const ZBR_PT& To() const { return ring->points[ring->Next(vertex)]; }
    Corner Start() const { return {ring->points[(vertex == 0 ? ring->n : vertex) - 1], From(), To()}; }
    bool IsFollowedBy(const Edge& o) const { return ring == o.ring && ring->Next(vertex) == o.vertex; }
  };

  void Examine(std::uint32_t a, std::uint32_t b) {
    const Box& boxB = index_.tree().Level(0)[b];
    for (std::uint32_t i = index_.leaf(a).first; i < index_.LastSlot(index_.leaf(a)); ++i) {
      const Edge e = EdgeAt(a, i);
      const Box box = BoxOfSegment(e.From(), e.To());
      if (!Overlap(box, boxB)) continue;
      for (std::uint32_t j = a == b ? i + 1 : index_.leaf(b).first; j < index_.LastSlot(index_.leaf(b)); ++j) {
        const Edge f = EdgeAt(b, j);
        if (!Overlap(box, BoxOfSegment(f.From(), f.To()))) continue;
        if (left_-- == 0) found_ = ExactSimplicity::kUnknown;
        if (found_ != ExactSimplicity::kSimple) return;
        if (AreFaulty(e, f)) found_ = ExactSimplicity::kFaulty;
      }
    }
  }

  Edge EdgeAt(std::uint32_t leaf, std::uint32_t slot) const {
    const IndexedRing& ring = index_.rings()[index_.leaf(leaf).ring];
    return {&ring, ring.Vertex(slot)};
  }

  static bool AreFaulty(const Edge& e, const Edge& f) {
    const ZBR_PT &p0 = e.From(), &p1 = e.To(), &q0 = f.From(), &q1 = f.To();
    const bool meets[] = {AreIdentical(p0, q0), AreIdentical(p0, q1), AreIdentical(p1, q0), AreIdentical(p1, q1)};
    if (meets[0]) return AreInLine(p0, p1, q1) || Cross(e.Start(), f.Start());
    if (meets[1]) return AreInLine(p0, p1, q0);
    if (meets[2]) return AreInLine(p1, p0, q1);
    if (meets[3]) return AreInLine(p1, p0, q0);
    if (ExactSideOf(p0, p1, q0) * ExactSideOf(p0, p1, q1) > 0) return false;
    return ExactSideOf(q0, q1, p0) * ExactSideOf(q0, q1, p1) <= 0;
  }

  // Whether boundaries pass through each other at a common vertex.
  static bool Cross(const Corner& a, const Corner& b) {
    for (const ZBR_PT& arm : {b.before, b.after}) {
      if (AreInLine(a.at, a.before, arm) || AreInLine(a.at, a.after, arm)) return true;
    }
    return a.HasOnLeft(b.before) != a.HasOnLeft(b.after);
  }

  static constexpr std::size_t kPairsPerEdge = 64;  // that are compared, on the average
  const EdgeIndex& index_;
  std::size_t left_ = kPairsPerEdge;
  ExactSimplicity found_ = ExactSimplicity::kSimple;
};

}  // namespace

ExactSimplicity ExactSimplicityOf(const EdgeIndex& index) {
  return ExactSearch(index).Run();
}

}  // namespace zbr
