// Idea: sweep a vertical line over the plane from left to right. It meets pieces, kept from the lowest to the highest, and between
// them the winding number is constant: 0 below all, and across each piece it grows by the piece's net count (Bentley and Ottmann's
// sweep, 1979, without their crossings: there are none). At a vertex the pieces that end there make room for those that begin
// there; what lies below the former lies below the latter. Only where none ends, the place is searched for. Pieces that become
// neighbours are held against each other: the first two that cross or overlap are neighbours before they do (Shamos and Hoey 1976).
#include "arrangement/winding_sweep.h"

#include <algorithm>
#include <numeric>
#include <span>

#include "loops/sweep_status.h"

namespace zbr {
namespace {

class WindingSweep {
 public:
  WindingSweep(const Arrangement& arrangement, Arrangement::Care care)
      : arrangement_(arrangement),
        pieces_(arrangement.pieces()),
        nodes_(arrangement.nodes()),
        looks_(care == Arrangement::Care::kQuick),
        status_(pieces_.size()) {
    swept_.below.resize(pieces_.size());
    swept_.under.resize(pieces_.size());
    ending_.resize(pieces_.size());
    std::vector<std::uint32_t> place(nodes_.size() + 1, 0);
    for (const ArrangedPiece& piece : pieces_) ++place[piece.to + 1];
    std::partial_sum(place.begin(), place.end(), place.begin());
    for (std::uint32_t i = 0; i < pieces_.size(); ++i) ending_[place[pieces_[i].to]++] = {pieces_[i].to, i};
  }

  SweptPieces Run() {
    std::uint32_t begin = 0;
    std::size_t end = 0;
    while (end < ending_.size() && swept_.isPlanar) {
      std::uint32_t v = ending_[end].vertex;
      if (begin < pieces_.size()) v = std::min(v, pieces_[begin].from);
      beginningHere_.clear();
      endingHere_.clear();
      for (; begin < pieces_.size() && pieces_[begin].from == v; ++begin) beginningHere_.push_back(begin);
      for (; end < ending_.size() && ending_[end].vertex == v; ++end) endingHere_.push_back(ending_[end].piece);
      Pass(nodes_[v]);
    }
    return std::move(swept_);
  }

 private:
  struct End {
    std::uint32_t vertex;
    std::uint32_t piece;
  };

  GridPoint From(std::uint32_t piece) const { return nodes_[pieces_[piece].from]; }
  GridPoint To(std::uint32_t piece) const { return nodes_[pieces_[piece].to]; }

  // Lowest first.
  void SortAround(GridPoint p) {
    if (beginningHere_.size() > 1) {
      std::sort(beginningHere_.begin(), beginningHere_.end(),
                [&](std::uint32_t a, std::uint32_t b) { return SideSign(p, arrangement_.After(a), arrangement_.After(b)) > 0; });
      for (std::size_t i = 1; i < beginningHere_.size(); ++i) Compare(beginningHere_[i - 1], beginningHere_[i]);
    }
    if (endingHere_.size() > 1) {
      std::sort(endingHere_.begin(), endingHere_.end(),
                [&](std::uint32_t a, std::uint32_t b) { return SideSign(p, arrangement_.Before(a), arrangement_.Before(b)) < 0; });
    }
  }

  // The sign of SideSign. Notes when p comes near the line, too.
  int LookAt(GridPoint from, GridPoint to, GridPoint p) {
    constexpr double kTight = 2.0;  // steps, by which the points that the ends stand for can move the line
    constexpr double kNear = 6.0;   // the same past vertices that lie as far beside it as they may to be left out
    const double side = SideProducts(from, to, p).Value();
    const double length2 = Along(from, to, to);
    if (side * side <= kNear * kNear * length2) {
      swept_.isNear = true;
      if (side * side <= kTight * kTight * length2) swept_.isTight = true;
    }
    return SideSign(from, to, p);
  }

  // Notes when two pieces of the status, the first below the second, cross or touch where they share no vertex.
  void Compare(std::uint32_t lower, std::uint32_t upper) {
    if (!looks_ || lower == SweepStatus::kNone || upper == SweepStatus::kNone) return;
    if (arrangement_.BendCount(lower) > 0 || arrangement_.BendCount(upper) > 0) return;  // nothing comes near these
    const ArrangedPiece& l = pieces_[lower];
    const ArrangedPiece& u = pieces_[upper];
    bool isFine = true;
    if (l.from != u.from) {
      isFine = l.from < u.from ? LookAt(From(lower), To(lower), From(upper)) > 0 : LookAt(From(upper), To(upper), From(lower)) < 0;
    }
    if (l.to != u.to) {
      isFine =
          isFine && (l.to < u.to ? LookAt(From(upper), To(upper), To(lower)) < 0 : LookAt(From(lower), To(lower), To(upper)) > 0);
    } else {
      isFine = isFine && l.from != u.from;
    }
    if (!isFine) swept_.isPlanar = false;
  }

  // The pieces ending here are neighbours in the status, unless something crosses.
  bool EndTogether() const {
    for (std::size_t i = 1; i < endingHere_.size(); ++i) {
      if (status_.Above(endingHere_[i - 1]) != endingHere_[i]) return false;
    }
    return true;
  }

  void Pass(GridPoint p) {
    SortAround(p);
    if (looks_ && !EndTogether()) {
      swept_.isPlanar = false;
      return;
    }
    Winding winding;
    std::uint32_t under = kNoPieceBelow;
    std::uint32_t lower = SweepStatus::kNone;
    if (endingHere_.empty()) {
      lower = status_.HighestBelow([&](std::uint32_t piece) { return arrangement_.SideOf(piece, p) > 0; });
      under = lower;
      if (lower != SweepStatus::kNone) winding = swept_.below[lower] + pieces_[lower].net;
    } else {
      winding = swept_.below[endingHere_[0]];
      under = swept_.under[endingHere_[0]];
    }
    const std::uint32_t neighbour = endingHere_.empty() ? lower : status_.Below(endingHere_[0]);
    if (beginningHere_.empty()) Compare(neighbour, status_.Above(endingHere_.back()));
    const std::size_t reused = std::min(endingHere_.size(), beginningHere_.size());
    for (std::size_t i = reused; i < endingHere_.size(); ++i) status_.Erase(endingHere_[i]);
    for (std::size_t i = 0; i < beginningHere_.size(); ++i) {
      const std::uint32_t piece = beginningHere_[i];
      if (i < reused) {
        status_.Replace(endingHere_[i], piece);
      } else {
        status_.InsertAbove(lower, piece);
      }
      lower = piece;
      swept_.below[piece] = winding;
      swept_.under[piece] = under;
      winding += pieces_[piece].net;
      under = piece;
    }
    if (beginningHere_.empty()) return;
    Compare(neighbour, beginningHere_[0]);
    Compare(lower, status_.Above(lower));
  }

  const Arrangement& arrangement_;
  std::span<const ArrangedPiece> pieces_;
  std::span<const GridPoint> nodes_;
  bool looks_;  // for pieces that cross
  SweepStatus status_;
  SweptPieces swept_;
  std::vector<End> ending_;  // pieces by the vertex at which they end
  std::vector<std::uint32_t> beginningHere_;
  std::vector<std::uint32_t> endingHere_;
};

}  // namespace

SweptPieces SweepWindings(const Arrangement& arrangement, Arrangement::Care care) {
  return WindingSweep(arrangement, care).Run();
}

std::vector<std::int8_t> BoundarySides(const Arrangement& arrangement) {
  const auto& pieces = arrangement.pieces();
  const SweptPieces swept = SweepWindings(arrangement, Arrangement::Care::kThorough);
  std::vector<std::int8_t> sides(pieces.size());
  for (std::uint32_t i = 0; i < pieces.size(); ++i) {
    const bool below = swept.below[i].of[0] > 0;
    const bool above = swept.below[i].of[0] + pieces[i].net.of[0] > 0;
    sides[i] = static_cast<std::int8_t>(static_cast<int>(above) - static_cast<int>(below));
  }
  return sides;
}

}  // namespace zbr
