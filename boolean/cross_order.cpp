// Cleans the crossings up, so that walks along them can be traced.
//
// What detection leaves: a vertex of one polygon on a vertex of the other twice, touches as two records of opposite directions, now
// and then a polygon crossed one way only (a crossing was missed), and crossings at one place whose order positions cannot tell.
// The tests below clear `valid`; after each the vector is compacted and both sorted sides are thinned out with it. Removing records
// does not change the order of those that stay, so the sides are sorted once, and only ties are put in order again when `order` was
// settled. In a tie it is `order` that holds, not the positions: on slanting edges one place comes out with positions an ulp apart,
// and noise puts boundaries that touch a little beside or across each other. Order of the tests: balance first, since a polygon
// crossed one way only has no partner for the other tests; coincidence before ties, since duplicates are ties that need no order;
// numbering last, it names places in the final lists.
#include <cmath>
#include <utility>

#include <zbr/boolean.h>

#include "boolean/check.h"
#include "boolean/cross_clean.h"
#include "boolean/polygons.h"
#include "boolean/spot_order.h"
#include "core/assert.h"
#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"

namespace zbr {

namespace {

class Cleaner {
 public:
  Cleaner(const LoopList& a, const LoopList& b, std::vector<ZBR_CROSS>& crosses, SortedCrossings& sorted, Touching touching)
      : families_{&a, &b}, touches_{touching.a, touching.b}, crosses_(crosses), sorted_(sorted), side_(sorted.side) {}

  void Sort() { SortAlongSides(crosses_, side_); }

  bool DropUnbalanced(int side);
  bool DropCoincidentAlongA();
  bool DropTouchesAlongB();
  bool OrderTies(int side);

  // Removes what is not valid. False, with everything emptied, when fewer than two crossings are left: one cannot be traced.
  bool Compact();
  void Clear() {
    crosses_.clear();
    side_[0].clear();
    side_[1].clear();
  }
  void ResortBoth() {
    ResortTies(crosses_, 0, side_[0]);
    ResortTies(crosses_, 1, side_[1]);
  }
  void Number();
  bool IsCertain() const { return isCertain_; }
  void LookAtNeighbours();
  void LookAtTurns();

 private:
  ZBR_CROSS& RecordOf(const PlacedCrossing& p) { return crosses_[static_cast<std::size_t>(p.index)]; }
  static bool AreCoincident(const PlacedCrossing& x, const PlacedCrossing& y) {
    return x.loop == y.loop && std::fabs(x.pos - y.pos) <= t_tolerance.eps;
  }

  void LookAtPair(const PlacedCrossing& x, const PlacedCrossing& y, double apart);
  bool RunSideBySide(const ZBR_CROSS& x, const ZBR_CROSS& y, int side) const;
  void LookAtTouch(const ZBR_CROSS& x, const ZBR_CROSS& y);
  bool GoesBeyond(const ZBR_CROSS& x, const ZBR_CROSS& y, int side) const;

  const LoopList* families_[2];
  bool touches_[2];
  std::vector<ZBR_CROSS>& crosses_;
  SortedCrossings& sorted_;
  std::vector<PlacedCrossing>* side_;
  bool mayBeTied_[2] = {true, true};  // some neighbours along a side, as far as is known
  bool isCertain_ = true;
  std::vector<std::int32_t> renamed_;
  std::vector<int> spot_;
  std::vector<std::pair<int, int>> dropped_;
};

// A closed boundary goes out as often as it comes in: a polygon crossed one way only has lost a crossing, and keeps none.
bool Cleaner::DropUnbalanced(int side) {
  bool dropped = false;
  const std::vector<PlacedCrossing>& list = side_[side];
  ForEachPolygonRun(list, [&](std::size_t first, std::size_t last) {
    bool seen[2] = {false, false};
    for (std::size_t k = first; k < last && !(seen[0] && seen[1]); ++k) {
      if (RecordOf(list[k]).valid) seen[list[k].dir == ZBR_CROSS_TO_LEFT ? 0 : 1] = true;
    }
    if (seen[0] && seen[1]) return;
    for (std::size_t k = first; k < last; ++k) RecordOf(list[k]).valid = false;
    dropped = true;
    isCertain_ = false;
  });
  return dropped;
}

// Two records at one place of both sides: a passage found twice keeps the first, a touch keeps none. The last entry meets the
// first, as neighbours do on a ring, but positions are compared as they stand.
bool Cleaner::DropCoincidentAlongA() {
  const std::vector<PlacedCrossing>& list = side_[0];
  const std::size_t n = list.size();
  if (n < 2 || !mayBeTied_[0]) return false;
  bool dropped = false;
  for (std::size_t k = 0; k < (n == 2 ? 1 : n); ++k) {
    const PlacedCrossing& before = list[k == 0 ? n - 1 : k - 1];
    if (!AreCoincident(before, list[k])) continue;
    ZBR_CROSS& p = RecordOf(before);
    ZBR_CROSS& c = RecordOf(list[k]);
    if (!p.valid || !c.valid || p.b.loop.value != c.b.loop.value || !(std::fabs(p.b.pos - c.b.pos) <= t_tolerance.eps)) continue;
    c.valid = false;
    dropped = true;
    if (p.dir == c.dir) continue;
    p.valid = false;
    LookAtTouch(p, c);
  }
  return dropped;
}

// An open polyline of B that meets A twice at one place of its own, in opposite directions, only touches.
bool Cleaner::DropTouchesAlongB() {
  const std::vector<PlacedCrossing>& list = side_[1];
  bool found = false;
  for (std::size_t k = 1; k < list.size(); ++k) {
    if (!AreCoincident(list[k - 1], list[k])) continue;
    ZBR_CROSS& p = RecordOf(list[k - 1]);
    ZBR_CROSS& c = RecordOf(list[k]);
    if (!p.valid || !c.valid) continue;
    found = true;
    if (p.dir == c.dir) continue;
    p.valid = false;
    c.valid = false;
  }
  return found;
}

bool Cleaner::OrderTies(int side) {
  if (!mayBeTied_[side]) return false;
  bool found = false;
  const std::vector<PlacedCrossing>& list = side_[side];
  for (std::size_t first = 0; first < list.size();) {
    const std::size_t last = EndOfTie(list, first);
    if (last - first > 1) {
      spot_.clear();
      for (std::size_t k = first; k < last; ++k) spot_.push_back(list[k].index);
      dropped_.clear();
      found |= OrderSpot(crosses_, spot_, side, *families_[side], *families_[1 - side], touches_[1 - side], dropped_);
      for (const auto& [x, y] : dropped_) LookAtTouch(crosses_[static_cast<std::size_t>(x)], crosses_[static_cast<std::size_t>(y)]);
    }
    first = last;
  }
  return found;
}

bool Cleaner::Compact() {
  constexpr std::int32_t kRemoved = -1;
  renamed_.assign(crosses_.size(), kRemoved);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < crosses_.size(); ++i) {
    if (!crosses_[i].valid) continue;
    renamed_[i] = static_cast<std::int32_t>(kept);
    if (kept != i) crosses_[kept] = crosses_[i];
    crosses_[kept].index = static_cast<int>(kept);
    ++kept;
  }
  if (kept < 2) {
    Clear();
    return false;
  }
  if (kept == crosses_.size()) return true;
  crosses_.resize(kept);
  mayBeTied_[0] = mayBeTied_[1] = true;
  for (int side = 0; side < 2; ++side) {
    std::vector<PlacedCrossing>& list = side_[side];
    std::size_t out = 0;
    for (PlacedCrossing p : list) {
      p.index = renamed_[static_cast<std::size_t>(p.index)];
      if (p.index != kRemoved) list[out++] = p;
    }
    list.resize(out);
  }
  return true;
}

void Cleaner::Number() {
  // A record is visited once, in the order along A, which is nearly its own. The places along B come by way of a small array.
  const std::size_t n = crosses_.size();
  std::vector<std::int32_t>& seqB = renamed_;
  seqB.resize(n);
  for (std::size_t k = 0; k < n; ++k) seqB[static_cast<std::size_t>(side_[1][k].index)] = static_cast<std::int32_t>(k);
  sorted_.traced.reserve(n);
  sorted_.placesOnB.reserve(n);
  for (std::size_t k = 0; k < n; ++k) {
    const auto i = static_cast<std::size_t>(side_[0][k].index);
    ZBR_CROSS& c = crosses_[i];
    c.a.seq = static_cast<int>(k);
    c.b.seq = seqB[i];
    sorted_.traced.push_back({c.pt, {c.a.pos, c.b.pos}});
    sorted_.placesOnB.push_back(static_cast<std::uint32_t>(seqB[i]));
  }
}

// Neighbours in position: at one place, or apart.
void Cleaner::LookAtPair(const PlacedCrossing& x, const PlacedCrossing& y, double apart) {
  constexpr double kWorthALook = 1e-4;  // beyond, edges on which the two could be in one place are shorter than any that matters
  if (!isCertain_ || apart > kWorthALook) return;
  const double eps2 = t_tolerance.eps2;
  const double distance2 = RecordOf(x).pt.Distance2(RecordOf(y).pt);
  const bool isOnePlace = apart <= t_tolerance.eps;
  isCertain_ = isOnePlace ? distance2 <= kSurelyOn * kSurelyOn * eps2 : distance2 >= kSurelyOff * kSurelyOff * eps2;
}

// The ends of a tie are the tolerance apart and what rounding adds, at most as much.
void Cleaner::LookAtNeighbours() {
  const double tied = 2.0 * t_tolerance.eps;
  for (int side = 0; side < 2; ++side) {
    const std::vector<PlacedCrossing>& list = side_[side];
    bool mayBeTied = false;
    for (std::size_t k = 1; k < list.size(); ++k) {
      if (list[k - 1].loop != list[k].loop) continue;
      const double apart = list[k].pos - list[k - 1].pos;
      mayBeTied |= !(apart > tied);
      LookAtPair(list[k - 1], list[k], apart);
    }
    mayBeTied_[side] = mayBeTied || (!list.empty() && AreCoincident(list.back(), list.front()));
  }
}

// Whether two crossings that follow each other along `side` do so along one polygon of the other side as well.
bool Cleaner::RunSideBySide(const ZBR_CROSS& x, const ZBR_CROSS& y, int side) const {
  const ZBR_CROSS_AB& a = Side(x, 1 - side);
  const ZBR_CROSS_AB& b = Side(y, 1 - side);
  if (a.loop.value != b.loop.value) return false;
  if (std::abs(a.seq - b.seq) == 1) return true;
  // The first and the last of a polygon follow each other.
  const std::vector<PlacedCrossing>& other = side_[1 - side];
  const auto first = static_cast<std::size_t>(std::min(a.seq, b.seq));
  const auto last = static_cast<std::size_t>(std::max(a.seq, b.seq));
  return (first == 0 || other[first - 1].loop != a.loop.value) &&
         (last + 1 == other.size() || other[last + 1].loop != a.loop.value);
}

void Cleaner::LookAtTurns() {
  for (int side = 0; side < 2 && isCertain_; ++side) {
    const std::vector<PlacedCrossing>& list = side_[side];
    ForEachPolygonRun(list, [&](std::size_t first, std::size_t last) {
      std::size_t before = last - 1;
      bool seen[2] = {false, false};
      for (std::size_t k = first; k < last && isCertain_; before = k++) {
        seen[list[k].dir == ZBR_CROSS_TO_LEFT ? 0 : 1] = true;
        if (list[before].dir == list[k].dir) isCertain_ = RunSideBySide(RecordOf(list[before]), RecordOf(list[k]), side);
      }
      // Both ways until touches were dropped: at the tip of a needle, a passage that counts as a touch takes one of them along.
      isCertain_ = isCertain_ && seen[0] && seen[1];
    });
  }
}

// Two crossings at one place and in opposite directions, of which nothing stays. Where a tip goes through the other boundary and
// not just up to it, samples may be in the tip, and what crossings are left need not alternate.
void Cleaner::LookAtTouch(const ZBR_CROSS& x, const ZBR_CROSS& y) {
  if (isCertain_) isCertain_ = !GoesBeyond(x, y, 0) && !GoesBeyond(x, y, 1);
}

// Whether the polygon of a side has no vertex at the place itself, where it turns back: a tip so thin that its sides cross the
// other boundary at one place, however far it reaches.
bool Cleaner::GoesBeyond(const ZBR_CROSS& x, const ZBR_CROSS& y, int side) const {
  const ZBR_LOOP* polygon = PolygonAt(*families_[side], Side(x, side).loop);
  if (polygon == nullptr || polygon->pt().empty() || Side(x, side).loop.value != Side(y, side).loop.value) return false;
  const std::vector<ZBR_PT>& p = polygon->pt();
  const auto edgeOf = [&](const ZBR_CROSS& c) {
    const double pos = Side(c, side).pos;
    return pos >= 0.0 && pos <= static_cast<double>(p.size()) ? static_cast<std::size_t>(pos) % p.size() : 0;
  };
  const auto endsHere = [&](std::size_t edge) { return SamePoint(p[(edge + 1) % p.size()], x.pt, t_tolerance.eps2); };
  return edgeOf(x) != edgeOf(y) && !endsHere(edgeOf(x)) && !endsHere(edgeOf(y));
}

}  // namespace

bool CleanCrossings(const LoopList& a, const LoopList& b, std::vector<ZBR_CROSS>& crosses, bool bothClosed, SortedCrossings& sorted,
                    Touching touching) {
  Cleaner cleaner(a, b, crosses, sorted, touching);
  if (bothClosed && crosses.size() < 2) {
    const bool isCertain = crosses.empty();
    cleaner.Clear();
    return isCertain;
  }
  cleaner.Sort();
  if (bothClosed) cleaner.LookAtNeighbours();
  if (bothClosed) {
    const bool droppedA = cleaner.DropUnbalanced(0);
    const bool droppedB = cleaner.DropUnbalanced(1);
    if ((droppedA || droppedB) && !cleaner.Compact()) return false;
  }
  if (cleaner.DropCoincidentAlongA() && !cleaner.Compact()) return cleaner.IsCertain();
  if (!bothClosed && cleaner.DropTouchesAlongB() && !cleaner.Compact()) return cleaner.IsCertain();
  for (int side = 0; side < (bothClosed ? 2 : 1); ++side) {
    if (!cleaner.OrderTies(side)) continue;
    if (!cleaner.Compact()) return cleaner.IsCertain();
    cleaner.ResortBoth();
  }
  cleaner.Number();
  ZBR_CHECK(SortedFault(crosses, sorted.side, t_tolerance.eps));
  if (bothClosed) cleaner.LookAtTurns();
  return cleaner.IsCertain();
}

}  // namespace zbr

void zbrOptimizeCross(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                      std::vector<ZBR_CROSS>& crosses, std::vector<int>* sorted, bool bothClosed) {
  zbr::SortedCrossings ordered;
  zbr::CleanCrossings(A, B, crosses, bothClosed, ordered, {});
  for (int side = 0; side < 2; ++side) {
    sorted[side].clear();
    for (const zbr::PlacedCrossing& p : ordered.side[side]) sorted[side].push_back(p.index);
  }
}

void zbrSetFollowingCrossDone(std::vector<ZBR_CROSS>& crosses, int side, const std::vector<int>& sorted, ZBR_CROSS_DIR dir,
                              bool forward) {
  if (crosses.size() < 2) return;
  const auto recordAt = [&](std::size_t k) -> ZBR_CROSS& { return crosses[static_cast<std::size_t>(sorted[k])]; };
  const auto loopAt = [&](std::size_t k) { return zbr::Side(recordAt(k), side).loop.value; };
  zbr::ForEachPolygonRun(sorted.size(), loopAt, [&](std::size_t first, std::size_t last) {
    for (std::size_t k = first; k < last; ++k) {
      const std::size_t before = forward ? (k == first ? last : k) - 1 : (k + 1 == last ? first : k + 1);
      if (recordAt(k).dir == dir && recordAt(before).dir == dir) recordAt(k).done = true;
    }
  });
}
