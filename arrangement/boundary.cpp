// Idea: around a vertex, parts of the region and of its outside alternate. The piece that arrives with a part on its left is
// followed by the one that bounds the same part on its other side, the next in clockwise order. So every walk stays on the border
// of one connected part. Where a walk comes back to a vertex, what it did since is a ring and is taken off: it passes no vertex
// twice then, and holes that touch their outer ring come off it.
// A ring is a hole when it runs clockwise, which its lowest leftmost vertex tells. The face below that vertex belongs to the
// region; going down through pieces that do not bound it, one comes to a ring that bounds the same part: the outer ring, or another
// hole of it, which begins no farther right.
#include "arrangement/boundary.h"

#include <algorithm>

#include "core/assert.h"

namespace zbr {
namespace {

constexpr std::uint32_t kNone = ~std::uint32_t{0};

class BoundaryTracer {
 public:
  BoundaryTracer(const Arrangement& arrangement, std::span<const std::int8_t> sides, const SweptPieces& swept)
      : arrangement_(arrangement), nodes_(arrangement.nodes()), pieces_(arrangement.pieces()), sides_(sides), swept_(swept) {}

  BoundaryRings Run() {
    Link();
    place_.assign(nodes_.size(), kNone);
    std::vector<bool> walked(pieces_.size(), false);
    for (std::uint32_t start = 0; start < pieces_.size(); ++start) {
      if (sides_[start] == 0 || walked[start]) continue;
      // Only the last edge of a chain that is walked back begins here; the others come last.
      const bool beginsInChain = sides_[start] < 0 && arrangement_.BendCount(start) > 0;
      walked[start] = true;
      if (!beginsInChain) Step(start);
      std::uint32_t piece = next_[start];
      for (; piece != start && piece != kNone && !walked[piece]; piece = next_[piece]) {
        walked[piece] = true;
        Step(piece);
      }
      ZBR_ASSERT(piece == start);
      if (beginsInChain) {
        Step(start);
        rings_.beginningInChain.push_back(static_cast<std::uint32_t>(rings_.size()));
      }
      TakeRing(0);
    }
    FindParents();
    return std::move(rings_);
  }

 private:
  std::uint32_t Start(std::uint32_t piece) const { return StartOf(pieces_[piece], sides_[piece]); }
  std::uint32_t End(std::uint32_t piece) const { return EndOf(pieces_[piece], sides_[piece]); }

  // The nodes next to these.
  GridPoint AfterStart(std::uint32_t piece) const {
    return sides_[piece] > 0 ? arrangement_.After(piece) : arrangement_.Before(piece);
  }
  GridPoint BeforeEnd(std::uint32_t piece) const {
    return sides_[piece] > 0 ? arrangement_.Before(piece) : arrangement_.After(piece);
  }

  // An end of a boundary piece at a vertex.
  struct Arm {
    GridPoint other;  // the next node along the piece
    std::uint32_t piece;
    bool leaves;
  };

  void Link();
  void LinkCrowded(std::vector<std::uint32_t>& arriving);
  void LinkAround(std::uint32_t vertex, std::vector<Arm>& arms);
  void Step(std::uint32_t piece);
  void TakeRing(std::size_t first);
  void FindParents();
  std::uint32_t ParentOf(std::uint32_t ring);
  std::uint32_t BoundaryBelow(std::uint32_t piece);

  const Arrangement& arrangement_;
  std::span<const GridPoint> nodes_;
  std::span<const ArrangedPiece> pieces_;
  std::span<const std::int8_t> sides_;
  const SweptPieces& swept_;
  std::vector<std::uint32_t> next_;     // by piece
  std::vector<std::uint32_t> leaving_;  // by vertex: the piece that leaves it, or kCrowded
  std::vector<std::uint32_t> place_;    // by crowded vertex: where in the walk it was passed
  std::vector<std::uint32_t> walk_;     // pieces
  std::vector<std::uint32_t> ringOf_;   // by piece
  std::vector<std::uint32_t> below_;    // by piece: a boundary piece that the same part of the region or its outside lies above
  std::vector<std::uint32_t> chain_;    // scratch of BoundaryBelow
  BoundaryRings rings_;

  static constexpr std::uint32_t kCrowded = kNone - 1;
};

// Finds the piece that follows each piece.
void BoundaryTracer::Link() {
  next_.assign(pieces_.size(), kNone);
  leaving_.assign(nodes_.size(), kNone);
  bool anyCrowded = false;
  for (std::uint32_t i = 0; i < pieces_.size(); ++i) {
    if (sides_[i] == 0) continue;
    std::uint32_t& leaving = leaving_[Start(i)];
    anyCrowded |= leaving != kNone;
    leaving = leaving == kNone ? i : kCrowded;
  }
  std::vector<std::uint32_t> arriving;  // at crowded vertices
  for (std::uint32_t i = 0; i < pieces_.size(); ++i) {
    if (sides_[i] == 0) continue;
    next_[i] = leaving_[End(i)];
    if (next_[i] == kCrowded) arriving.push_back(i);
  }
  if (anyCrowded) LinkCrowded(arriving);
}

void BoundaryTracer::LinkCrowded(std::vector<std::uint32_t>& arriving) {
  struct Touch {
    std::uint32_t vertex;
    Arm arm;
  };
  std::vector<Touch> touches;
  for (const std::uint32_t i : arriving) touches.push_back({End(i), {BeforeEnd(i), i, false}});
  for (std::uint32_t i = 0; i < pieces_.size(); ++i) {
    if (sides_[i] != 0 && leaving_[Start(i)] == kCrowded) touches.push_back({Start(i), {AfterStart(i), i, true}});
  }
  std::stable_sort(touches.begin(), touches.end(), [](const Touch& a, const Touch& b) { return a.vertex < b.vertex; });
  std::vector<Arm> arms;
  for (std::size_t first = 0; first < touches.size();) {
    const std::uint32_t vertex = touches[first].vertex;
    arms.clear();
    for (; first < touches.size() && touches[first].vertex == vertex; ++first) arms.push_back(touches[first].arm);
    LinkAround(vertex, arms);
  }
}

void BoundaryTracer::LinkAround(std::uint32_t vertex, std::vector<Arm>& arms) {
  const GridPoint p = nodes_[vertex];
  std::sort(arms.begin(), arms.end(), [p](const Arm& a, const Arm& b) {
    const bool rightA = IsBefore(p, a.other);
    const bool rightB = IsBefore(p, b.other);
    return rightA != rightB ? rightA : SideSign(p, a.other, b.other) > 0;
  });
  for (std::size_t i = 0; i < arms.size(); ++i) {
    if (arms[i].leaves) continue;
    const Arm& clockwise = arms[i == 0 ? arms.size() - 1 : i - 1];
    ZBR_ASSERT(clockwise.leaves);
    next_[arms[i].piece] = clockwise.piece;
  }
}

void BoundaryTracer::Step(std::uint32_t piece) {
  const std::uint32_t from = Start(piece);
  if (leaving_[from] == kCrowded) {
    if (place_[from] != kNone) TakeRing(place_[from]);
    place_[from] = static_cast<std::uint32_t>(walk_.size());
  }
  walk_.push_back(piece);
}

// Takes what was walked from the given place on as a ring.
void BoundaryTracer::TakeRing(std::size_t first) {
  for (std::size_t i = first; i < walk_.size(); ++i) {
    const std::uint32_t from = Start(walk_[i]);
    if (leaving_[from] == kCrowded) place_[from] = kNone;
    rings_.pieces.push_back(walk_[i]);
  }
  rings_.ends.push_back(static_cast<std::uint32_t>(rings_.pieces.size()));
  walk_.resize(first);
}

void BoundaryTracer::FindParents() {
  constexpr std::uint32_t kUnknown = kNone - 1;
  rings_.parent.assign(rings_.size(), kUnknown);
  ringOf_.assign(pieces_.size(), kNone);
  below_.assign(pieces_.size(), kNone);
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    for (const std::uint32_t piece : rings_.ring(r)) ringOf_[piece] = r;
  }
  std::vector<std::uint32_t> waiting;
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    // A hole waits for the ring below it, until there is one whose place is known.
    std::uint32_t at = r;
    while (rings_.parent[at] == kUnknown) {
      const std::uint32_t parent = ParentOf(at);
      if (parent == BoundaryRings::kOuter) {
        rings_.parent[at] = parent;
        break;
      }
      waiting.push_back(at);
      at = parent;
    }
    const std::uint32_t outer = rings_.parent[at] == BoundaryRings::kOuter ? at : rings_.parent[at];
    for (const std::uint32_t hole : waiting) rings_.parent[hole] = outer;
    waiting.clear();
  }
}

// kOuter for an outer ring; for a hole a ring that bounds the same part of the region.
std::uint32_t BoundaryTracer::ParentOf(std::uint32_t ring) {
  const std::span<const std::uint32_t> pieces = rings_.ring(ring);
  std::size_t first = 0;
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    if (Start(pieces[i]) < Start(pieces[first])) first = i;
  }
  const std::uint32_t leaving = pieces[first];
  const std::uint32_t arriving = pieces[first == 0 ? pieces.size() - 1 : first - 1];
  const bool isOuter = SideSign(nodes_[Start(leaving)], AfterStart(leaving), BeforeEnd(arriving)) > 0;
  if (isOuter) return BoundaryRings::kOuter;
  const std::uint32_t below = BoundaryBelow(arriving);
  ZBR_ASSERT(below != kNone);
  return below == kNone ? BoundaryRings::kOuter : ringOf_[below];
}

std::uint32_t BoundaryTracer::BoundaryBelow(std::uint32_t piece) {
  chain_.clear();
  std::uint32_t found = kNone;
  for (;;) {
    chain_.push_back(piece);
    if (below_[piece] != kNone) {
      found = below_[piece];
      break;
    }
    piece = swept_.under[piece];
    if (piece == kNoPieceBelow) break;
    if (sides_[piece] != 0) {
      found = piece;
      break;
    }
  }
  for (const std::uint32_t p : chain_) below_[p] = found;
  return found;
}

}  // namespace

BoundaryRings TraceBoundary(const Arrangement& arrangement, std::span<const std::int8_t> sides, const SweptPieces& swept) {
  return BoundaryTracer(arrangement, sides, swept).Run();
}

}  // namespace zbr
