// Idea: a chain of edges whose directions all lie in one half-plane goes on and on in the direction in its middle, so it can't meet
// itself (as Volino and Magnenat-Thalmann have it for surfaces, "Efficient self-collision detection on smoothly discretized surface
// animations", 1994). The hierarchy over the edges of a ring is a hierarchy of chains: a mask of the directions in each node, one
// bit for an eighth of a turn, tells for most of them that nothing needs to be looked at. What is left is searched like the edges
// of two different rings, down to pairs of edges.
#include "loops/simplicity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"

namespace zbr {
namespace {

// The eighth of the turn that holds the direction, as a bit. Opposite directions are never in the first and the last of four
// neighbours.
unsigned OctantBit(const ZBR_PT& d) {
  static constexpr std::array<std::uint8_t, 8> kOctants = {0, 7, 3, 4, 1, 6, 2, 5};
  const bool left = d.x() < 0.0 || (d.x() == 0.0 && d.y() > 0.0);
  const bool down = d.y() < 0.0 || (d.y() == 0.0 && d.x() < 0.0);
  const bool steep = std::fabs(d.y()) > std::fabs(d.x());
  return 1U << kOctants[static_cast<unsigned>(down) | static_cast<unsigned>(left) << 1U | static_cast<unsigned>(steep) << 2U];
}

// By mask: whether all its octants are among four neighbours.
constexpr std::array<bool, 256> kFitsHalfPlane = [] {
  std::array<bool, 256> fits{};
  for (unsigned first = 0; first < 8; ++first) {
    const unsigned half = (0x0fU << first | 0x0fU << first >> 8U) & 0xffU;
    for (unsigned mask = 0; mask < 256; ++mask) fits[mask] = fits[mask] || (mask & ~half) == 0;
  }
  return fits;
}();

class SelfSearch {
 public:
  SelfSearch(const EdgeIndex& index, double margin)
      : index_(index),
        eps2_(t_tolerance.eps2),
        near_(kSurelyOff * t_tolerance.eps),
        room_(2.0 * (near_ - margin)),
        leaves_(index.tree().Count(0)) {}

  bool FindsContact() {
    if (leaves_ == 0) return false;
    FillMasks();
    return IsMetInside(index_.tree().TopLevel(), 0);
  }

 private:
  struct Edge {
    ZBR_PT from;
    ZBR_PT to;
    std::uint32_t slot;
  };
  using LeafEdges = std::array<Edge, EdgeIndex::kLeafEdges>;

  void FillMasks();
  std::uint32_t FirstLeaf(int level, std::uint32_t node) const { return node << (2 * level); }
  std::uint32_t LastLeaf(int level, std::uint32_t node) const { return std::min(leaves_, (node + 1) << (2 * level)) - 1; }
  bool IsChain(std::uint32_t firstLeaf, std::uint32_t lastLeaf) const {
    return index_.leaf(firstLeaf).ring == index_.leaf(lastLeaf).ring;
  }
  unsigned Mask(int level, std::uint32_t node) const { return masks_[static_cast<std::size_t>(level)][node]; }

  bool IsMetInside(int level, std::uint32_t node);
  bool Meet(int level, std::uint32_t a, std::uint32_t b);
  bool LeavesMeet(std::uint32_t a, std::uint32_t b);
  std::uint32_t Read(std::uint32_t leaf, LeafEdges& edges) const;
  bool AreNeighbours(const IndexedRing& ring, std::uint32_t slot, std::uint32_t next) const;
  bool EdgesMeet(const Edge& a, const Edge& b) const;
  bool FoldsBack(const Edge& a, const Edge& b) const;
  bool IsNearEdge(const ZBR_PT& p, const Edge& e) const;

  const EdgeIndex& index_;
  double eps2_;
  double near_;
  double room_;  // by which a box is widened so that it meets what is near; the index's own margin is taken off
  std::uint32_t leaves_;
  std::vector<std::vector<std::uint8_t>> masks_;  // by level and node
};

void SelfSearch::FillMasks() {
  masks_.resize(static_cast<std::size_t>(index_.tree().TopLevel()) + 1);
  masks_[0].resize(leaves_);
  for (std::uint32_t leaf = 0; leaf < leaves_; ++leaf) {
    unsigned mask = 0;
    index_.VisitEdges(leaf, [&mask](const ZBR_PT& p, const ZBR_PT& q) { mask |= OctantBit(q - p); });
    masks_[0][leaf] = static_cast<std::uint8_t>(mask);
  }
  for (std::size_t level = 1; level < masks_.size(); ++level) {
    masks_[level].assign(index_.tree().Count(static_cast<int>(level)), 0);
    for (std::size_t i = 0; i < masks_[level - 1].size(); ++i) masks_[level][i / BoxTree::kFanOut] |= masks_[level - 1][i];
  }
}

bool SelfSearch::IsMetInside(int level, std::uint32_t node) {
  if (kFitsHalfPlane[Mask(level, node)] && IsChain(FirstLeaf(level, node), LastLeaf(level, node))) return false;
  if (level == 0) return LeavesMeet(node, node);
  const std::uint32_t first = node * BoxTree::kFanOut;
  const std::uint32_t last = std::min(first + BoxTree::kFanOut, index_.tree().Count(level - 1));
  for (std::uint32_t i = first; i < last; ++i) {
    if (IsMetInside(level - 1, i)) return true;
    for (std::uint32_t j = i + 1; j < last; ++j) {
      if (Meet(level - 1, i, j)) return true;
    }
  }
  return false;
}

// Of two nodes, a before b.
bool SelfSearch::Meet(int level, std::uint32_t a, std::uint32_t b) {
  const Box* boxes = index_.tree().Level(level);
  if (!Overlap(boxes[a].Widened(room_), boxes[b])) return false;
  if (b == a + 1 && kFitsHalfPlane[Mask(level, a) | Mask(level, b)] && IsChain(FirstLeaf(level, a), LastLeaf(level, b)))
    return false;
  if (level == 0) return LeavesMeet(a, b);
  const std::uint32_t count = index_.tree().Count(level - 1);
  for (std::uint32_t i = a * BoxTree::kFanOut; i < std::min((a + 1) * BoxTree::kFanOut, count); ++i) {
    for (std::uint32_t j = b * BoxTree::kFanOut; j < std::min((b + 1) * BoxTree::kFanOut, count); ++j) {
      if (Meet(level - 1, i, j)) return true;
    }
  }
  return false;
}

// The edges of a leaf, without those that are no longer than the tolerance.
std::uint32_t SelfSearch::Read(std::uint32_t leaf, LeafEdges& edges) const {
  std::uint32_t slot = index_.leaf(leaf).first;
  std::uint32_t count = 0;
  index_.VisitEdges(leaf, [&](const ZBR_PT& p, const ZBR_PT& q) {
    if (p.Distance2(q) > eps2_) edges[count++] = {p, q, slot};
    ++slot;
  });
  return count;
}

bool SelfSearch::LeavesMeet(std::uint32_t a, std::uint32_t b) {
  LeafEdges edgesA;
  LeafEdges edgesB;
  const std::uint32_t countA = Read(a, edgesA);
  const std::uint32_t countB = a == b ? countA : Read(b, edgesB);
  const LeafEdges& others = a == b ? edgesA : edgesB;
  const bool oneRing = IsChain(a, b);
  const IndexedRing& ring = index_.rings()[index_.leaf(a).ring];
  for (std::uint32_t i = 0; i < countA; ++i) {
    const Box box = BoxOfSegment(edgesA[i].from, edgesA[i].to).Widened(near_);
    for (std::uint32_t j = a == b ? i + 1 : 0; j < countB; ++j) {
      const Edge& e = edgesA[i];
      const Edge& f = others[j];
      if (!Overlap(box, BoxOfSegment(f.from, f.to))) continue;
      const bool follows = oneRing && AreNeighbours(ring, e.slot, f.slot);
      const bool precedes = oneRing && AreNeighbours(ring, f.slot, e.slot);
      if (follows || precedes) {
        if ((follows && FoldsBack(e, f)) || (precedes && FoldsBack(f, e))) return true;
      } else if (EdgesMeet(e, f)) {
        return true;
      }
    }
  }
  return false;
}

// Whether nothing but edges without length lies between the two slots.
bool SelfSearch::AreNeighbours(const IndexedRing& ring, std::uint32_t slot, std::uint32_t next) const {
  for (std::uint32_t tries = 0; tries < ring.slots; ++tries) {
    slot = slot + 1 == ring.slots ? 0 : slot + 1;
    if (slot == next) return true;
    if (!ring.hasRepeats) return false;
    const std::uint32_t v = ring.Vertex(slot);
    if (ring.points[v].Distance2(ring.points[ring.Next(v)]) > eps2_) return false;
  }
  return false;
}

bool SelfSearch::IsNearEdge(const ZBR_PT& p, const Edge& e) const {
  const ZBR_PT d = e.to - e.from;
  const double length2 = d.Length2();
  const double along = std::clamp(d.InnerProduct(p - e.from) / length2, 0.0, 1.0);
  return p.Distance2(e.from + d * along) <= near_ * near_;
}

bool SelfSearch::EdgesMeet(const Edge& a, const Edge& b) const {
  const auto sides = [](const Edge& e, const Edge& f) {
    const ZBR_PT d = e.to - e.from;
    return std::pair(Cross(d, f.from - e.from), Cross(d, f.to - e.from));
  };
  const auto areApart = [](const std::pair<double, double>& s, double least) {
    return (s.first > least && s.second > least) || (s.first < -least && s.second < -least);
  };
  const double largest = near_ * std::max((a.to - a.from).Length(), (b.to - b.from).Length());
  const auto ofA = sides(a, b);
  if (areApart(ofA, largest)) return false;
  const auto ofB = sides(b, a);
  if (areApart(ofB, largest)) return false;
  const auto differ = [](const std::pair<double, double>& s) { return (s.first > 0.0) != (s.second > 0.0); };
  if (differ(ofA) && differ(ofB)) return true;
  return IsNearEdge(b.from, a) || IsNearEdge(b.to, a) || IsNearEdge(a.from, b) || IsNearEdge(a.to, b);
}

// Of two edges that follow each other.
bool SelfSearch::FoldsBack(const Edge& a, const Edge& b) const {
  return (a.to - a.from).InnerProduct(b.to - b.from) < 0.0 && (IsNearEdge(b.to, a) || IsNearEdge(a.from, b));
}

}  // namespace

Simplicity SimplicityOf(const EdgeIndex& index, double margin) {
  return SelfSearch(index, margin).FindsContact() ? Simplicity::kUnclear : Simplicity::kSimple;
}

}  // namespace zbr
