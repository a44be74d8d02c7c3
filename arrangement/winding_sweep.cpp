// Idea: sweep a vertical line over the plane from left to right. It meets pieces, kept from the lowest to the highest, and between
// them the winding number is constant: 0 below all, and across each piece it grows by the piece's net count (Bentley and Ottmann's
// sweep, 1979, without their crossings: there are none). At a vertex the pieces that end there make room for those that begin
// there; what lies below the former lies below the latter. Only where none ends, the place is searched for.
#include "arrangement/winding_sweep.h"

#include <algorithm>
#include <set>
#include <span>

namespace zbr {
namespace {

class WindingSweep {
 public:
  explicit WindingSweep(const Arrangement& arrangement)
      : pieces_(arrangement.pieces()),
        nodes_(arrangement.nodes()),
        status_(Below{this}),
        below_(pieces_.size()),
        at_(pieces_.size()) {
    CollectEnding();
  }

  void Run() {
    std::uint32_t beginning = 0;
    for (std::uint32_t v = 0; v < nodes_.size(); ++v) {
      beginning_.clear();
      for (; beginning < pieces_.size() && pieces_[beginning].from == v; ++beginning) beginning_.push_back(beginning);
      const std::span<std::uint32_t> ending = std::span(ending_).subspan(endingBegin_[v], endingBegin_[v + 1] - endingBegin_[v]);
      if (beginning_.empty() && ending.empty()) continue;
      Pass(v, ending);
    }
  }

  std::int32_t WindingBelow(std::uint32_t piece) const { return below_[piece]; }

 private:
  // An entry may come to stand for another piece at the same place.
  struct Entry {
    mutable std::uint32_t piece;
  };
  // Exact for pieces that do not cross and that the sweep line meets both, and for its place on a vertex that is on neither.
  struct Below {
    using is_transparent = void;
    const WindingSweep* sweep;

    bool operator()(const Entry& a, const Entry& b) const { return sweep->IsBelow(a.piece, b.piece); }
    bool operator()(const Entry& a, GridPoint p) const { return Side(sweep->From(a.piece), sweep->To(a.piece), p) > 0; }
    bool operator()(GridPoint p, const Entry& a) const { return Side(sweep->From(a.piece), sweep->To(a.piece), p) < 0; }
  };
  using Status = std::multiset<Entry, Below>;

  GridPoint From(std::uint32_t piece) const { return nodes_[pieces_[piece].from]; }
  GridPoint To(std::uint32_t piece) const { return nodes_[pieces_[piece].to]; }

  bool IsBelow(std::uint32_t a, std::uint32_t b) const {
    if (pieces_[a].from == pieces_[b].from) return Side(From(a), To(a), To(b)) > 0;
    if (pieces_[a].from > pieces_[b].from) return Side(From(b), To(b), From(a)) < 0;
    return Side(From(a), To(a), From(b)) > 0;
  }

  void CollectEnding() {
    endingBegin_.assign(nodes_.size() + 1, 0);
    for (const Arrangement::Piece& p : pieces_) ++endingBegin_[p.to + 1];
    for (std::size_t v = 1; v < endingBegin_.size(); ++v) endingBegin_[v] += endingBegin_[v - 1];
    ending_.resize(pieces_.size());
    std::vector<std::uint32_t> place(endingBegin_.begin(), endingBegin_.end() - 1);
    for (std::uint32_t i = 0; i < pieces_.size(); ++i) ending_[place[pieces_[i].to]++] = i;
  }

  void Pass(std::uint32_t v, std::span<std::uint32_t> ending) {
    const GridPoint p = nodes_[v];
    if (beginning_.size() > 1) {
      std::sort(beginning_.begin(), beginning_.end(), [&](std::uint32_t a, std::uint32_t b) { return Side(p, To(a), To(b)) > 0; });
    }
    if (ending.size() > 1) {
      std::sort(ending.begin(), ending.end(), [&](std::uint32_t a, std::uint32_t b) { return Side(p, From(a), From(b)) < 0; });
    }
    Status::iterator next;
    std::int32_t winding = 0;
    std::size_t reused = 0;
    if (ending.empty()) {
      next = status_.lower_bound(p);
      if (next != status_.begin()) winding = WindingAbove(std::prev(next)->piece);
    } else {
      winding = below_[ending[0]];
      reused = std::min(ending.size(), beginning_.size());
      next = std::next(at_[ending.back()]);
    }
    for (std::size_t i = 0; i < ending.size(); ++i) {
      if (i < reused) {
        at_[beginning_[i]] = at_[ending[i]];
        at_[beginning_[i]]->piece = beginning_[i];
      } else {
        status_.erase(at_[ending[i]]);
      }
    }
    for (std::size_t i = 0; i < beginning_.size(); ++i) {
      const std::uint32_t piece = beginning_[i];
      if (i >= reused) at_[piece] = status_.insert(next, Entry{piece});
      below_[piece] = winding;
      winding += pieces_[piece].net;
    }
  }

  std::int32_t WindingAbove(std::uint32_t piece) const { return below_[piece] + pieces_[piece].net; }

  const std::vector<Arrangement::Piece>& pieces_;
  const std::vector<GridPoint>& nodes_;
  Status status_;
  std::vector<std::int32_t> below_;
  std::vector<Status::iterator> at_;
  std::vector<std::uint32_t> beginning_;
  std::vector<std::uint32_t> ending_;  // pieces by the vertex at which they end
  std::vector<std::uint32_t> endingBegin_;
};

}  // namespace

std::vector<std::int8_t> BoundarySides(const Arrangement& arrangement) {
  WindingSweep sweep(arrangement);
  sweep.Run();
  const auto& pieces = arrangement.pieces();
  std::vector<std::int8_t> sides(pieces.size());
  for (std::uint32_t i = 0; i < pieces.size(); ++i) {
    const bool below = sweep.WindingBelow(i) > 0;
    const bool above = sweep.WindingBelow(i) + pieces[i].net > 0;
    sides[i] = static_cast<std::int8_t>(static_cast<int>(above) - static_cast<int>(below));
  }
  return sides;
}

}  // namespace zbr
