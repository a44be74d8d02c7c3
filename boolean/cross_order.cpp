// Cleans the crossings up, so that walks along them can be traced.
//
// What detection leaves: a vertex of one polygon on a vertex of the other twice, touches as two records of opposite directions, now
// and then a polygon crossed one way only (a crossing was missed), and crossings at one place whose order positions cannot tell.
// The tests below clear `valid`; after each the vector is compacted and both sorted lists are thinned out with it. Removing records
// does not change the order of those that stay, so the lists are sorted once, and only ties are put in order again when `order` was
// settled. Order of the tests: balance first, since a polygon crossed one way only has no partner for the other tests; coincidence
// before ties, since duplicates are ties that need no order; renumbering last, it names places in the final lists.
#include <cmath>

#include <zbr/boolean.h>

#include "boolean/cross_sort.h"
#include "boolean/spot_order.h"
#include "core/tolerance_state.h"

namespace zbr {

namespace {

class Cleaner {
 public:
  Cleaner(const LoopList& a, const LoopList& b, std::vector<ZBR_CROSS>& crosses, std::vector<int>* sorted)
      : families_{&a, &b}, crosses_(crosses), sorted_(sorted) {}

  void Sort() {
    SortAlongSide(crosses_, 0, sorted_[0]);
    SortAlongSide(crosses_, 1, sorted_[1]);
  }

  bool DropUnbalanced(int side);
  bool DropCoincidentAlongA();
  bool DropTouchesAlongB();
  bool OrderTies(int side);

  // Removes what is not valid. False, with everything emptied, when fewer than two crossings are left: one cannot be traced.
  bool Compact();
  void Clear() {
    crosses_.clear();
    sorted_[0].clear();
    sorted_[1].clear();
  }
  void ResortBoth() {
    ResortTies(crosses_, 0, sorted_[0]);
    ResortTies(crosses_, 1, sorted_[1]);
  }
  void Renumber() {
    for (std::size_t k = 0; k < crosses_.size(); ++k) {
      At(0, k).a.seq = static_cast<int>(k);
      At(1, k).b.seq = static_cast<int>(k);
    }
  }

 private:
  ZBR_CROSS& At(int side, std::size_t k) { return crosses_[static_cast<std::size_t>(sorted_[side][k])]; }
  static bool AtSamePlace(const ZBR_CROSS_AB& x, const ZBR_CROSS_AB& y) {
    return x.loop.value == y.loop.value && std::fabs(x.pos - y.pos) <= t_tolerance.eps;
  }
  // The same with the band built around the second position, which may differ in its last bit.
  static bool AreTied(const ZBR_CROSS_AB& x, const ZBR_CROSS_AB& y) {
    return x.loop.value == y.loop.value && WithinTol(x.pos, y.pos, t_tolerance.eps);
  }

  const LoopList* families_[2];
  std::vector<ZBR_CROSS>& crosses_;
  std::vector<int>* sorted_;
  std::vector<int> newIndex_;
};

// A closed boundary goes out as often as it comes in: a polygon crossed one way only has lost a crossing, and keeps none.
bool Cleaner::DropUnbalanced(int side) {
  bool dropped = false;
  ForEachPolygonRun(crosses_, side, sorted_[side], [&](std::size_t first, std::size_t last) {
    bool seen[2] = {false, false};
    for (std::size_t k = first; k < last; ++k) {
      if (At(side, k).valid) seen[At(side, k).dir == ZBR_CROSS_TO_LEFT ? 0 : 1] = true;
    }
    if (seen[0] && seen[1]) return;
    for (std::size_t k = first; k < last; ++k) At(side, k).valid = false;
    dropped = true;
  });
  return dropped;
}

// Two records at one place of both sides: a passage found twice keeps the first, a touch keeps none. The last entry meets the
// first, as neighbours do on a ring, but positions are compared as they stand.
bool Cleaner::DropCoincidentAlongA() {
  const std::size_t n = crosses_.size();
  if (n < 2) return false;
  bool dropped = false;
  for (std::size_t k = 0; k < (n == 2 ? 1 : n); ++k) {
    ZBR_CROSS& p = At(0, k == 0 ? n - 1 : k - 1);
    ZBR_CROSS& c = At(0, k);
    if (!p.valid || !c.valid || !AtSamePlace(p.a, c.a) || !AtSamePlace(p.b, c.b)) continue;
    c.valid = false;
    if (p.dir != c.dir) p.valid = false;
    dropped = true;
  }
  return dropped;
}

// An open polyline of B that meets A twice at one place of its own, in opposite directions, only touches.
bool Cleaner::DropTouchesAlongB() {
  bool found = false;
  for (std::size_t k = 1; k < crosses_.size(); ++k) {
    ZBR_CROSS& p = At(1, k - 1);
    ZBR_CROSS& c = At(1, k);
    if (!p.valid || !c.valid || !AtSamePlace(p.b, c.b)) continue;
    found = true;
    if (p.dir == c.dir) continue;
    p.valid = false;
    c.valid = false;
  }
  return found;
}

bool Cleaner::OrderTies(int side) {
  bool found = false;
  const std::vector<int>& list = sorted_[side];
  for (std::size_t first = 0; first < list.size();) {
    std::size_t last = first + 1;
    while (last < list.size() && AreTied(Side(At(side, last - 1), side), Side(At(side, last), side))) ++last;
    if (last - first > 1) {
      const std::span<const int> spot(list.data() + first, last - first);
      found |= OrderSpot(crosses_, spot, side, *families_[side], *families_[1 - side]);
    }
    first = last;
  }
  return found;
}

bool Cleaner::Compact() {
  constexpr int kRemoved = -1;
  newIndex_.assign(crosses_.size(), kRemoved);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < crosses_.size(); ++i) {
    if (!crosses_[i].valid) continue;
    newIndex_[i] = static_cast<int>(kept);
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
  for (int side = 0; side < 2; ++side) {
    std::vector<int>& list = sorted_[side];
    std::size_t out = 0;
    for (const int i : list) {
      const int renamed = newIndex_[static_cast<std::size_t>(i)];
      if (renamed != kRemoved) list[out++] = renamed;
    }
    list.resize(out);
  }
  return true;
}

}  // namespace

}  // namespace zbr

void zbrOptimizeCross(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                      std::vector<ZBR_CROSS>& crosses, std::vector<int>* sorted, bool bothClosed) {
  zbr::Cleaner cleaner(A, B, crosses, sorted);
  if (bothClosed && crosses.size() < 2) return cleaner.Clear();
  cleaner.Sort();
  if (bothClosed) {
    const bool droppedA = cleaner.DropUnbalanced(0);
    const bool droppedB = cleaner.DropUnbalanced(1);
    if ((droppedA || droppedB) && !cleaner.Compact()) return;
  }
  if (cleaner.DropCoincidentAlongA() && !cleaner.Compact()) return;
  if (!bothClosed && cleaner.DropTouchesAlongB() && !cleaner.Compact()) return;
  cleaner.Renumber();
  for (int side = 0; side < (bothClosed ? 2 : 1); ++side) {
    if (!cleaner.OrderTies(side)) continue;
    if (!cleaner.Compact()) return;
    cleaner.ResortBoth();
    cleaner.Renumber();
  }
}

void zbrSetFollowingCrossDone(std::vector<ZBR_CROSS>& crosses, int side, const std::vector<int>& sorted, ZBR_CROSS_DIR dir,
                              bool forward) {
  if (crosses.size() < 2) return;
  zbr::ForEachPolygonRun(crosses, side, sorted, [&](std::size_t first, std::size_t last) {
    for (std::size_t k = first; k < last; ++k) {
      const std::size_t before = forward ? (k == first ? last : k) - 1 : (k + 1 == last ? first : k + 1);
      ZBR_CROSS& c = crosses[static_cast<std::size_t>(sorted[k])];
      if (c.dir == dir && crosses[static_cast<std::size_t>(sorted[before])].dir == dir) c.done = true;
    }
  });
}
