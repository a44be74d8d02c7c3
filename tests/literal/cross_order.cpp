// Clean-up of crossings: discarding tests over the two sorted lists, renumbering, order of two crossings at one spot.
#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

#include "literal/boolean.h"

namespace literal {

namespace {

using Crosses = std::vector<ZBR_CROSS>;

ZBR_CROSS& At(Crosses& crosses, const std::vector<int>& list, std::size_t k) {
  return crosses[static_cast<std::size_t>(list[k])];
}

bool SamePos(const ZBR_CROSS_AB& p, const ZBR_CROSS_AB& c, const Tol& tol) {
  return p.loop.value == c.loop.value && Within(p.pos - c.pos, tol.eps);
}

void Resort(const Crosses& crosses, std::vector<int>* sorted, const Tol& tol) {
  for (int s = 0; s < 2; ++s) {
    sorted[s].resize(crosses.size());
    std::iota(sorted[s].begin(), sorted[s].end(), 0);
    const auto key = [&](int i, int side) {
      const ZBR_CROSS_AB& ab = SideOf(crosses[static_cast<std::size_t>(i)], side);
      return std::make_tuple(ab.loop.value, ab.pos, ab.order);
    };
    std::stable_sort(sorted[s].begin(), sorted[s].end(), [&](int i, int j) {
      return std::make_pair(key(i, s), key(i, 1 - s)) < std::make_pair(key(j, s), key(j, 1 - s));
    });
    // Among tied neighbours `order` goes before the position.
    const auto at = [&](int i) { return SideOf(crosses[static_cast<std::size_t>(i)], s); };
    for (auto first = sorted[s].begin(), last = first; first != sorted[s].end(); first = last) {
      while (++last != sorted[s].end() && SamePos(at(last[-1]), at(*last), tol)) {
      }
      std::stable_sort(first, last, [&](int i, int j) { return at(i).order < at(j).order; });
    }
  }
}

void Renumber(Crosses& crosses, const std::vector<int>* sorted) {
  for (int s = 0; s < 2; ++s) {
    for (std::size_t r = 0; r < crosses.size(); ++r) SideOf(At(crosses, sorted[s], r), s).seq = static_cast<int>(r);
  }
}

// Removes invalid crossings and sorts again. Returns false when too few are left; then everything is empty.
bool Compact(Crosses& crosses, std::vector<int>* sorted, const Tol& tol) {
  std::erase_if(crosses, [](const ZBR_CROSS& c) { return !c.valid; });
  if (crosses.size() < 2) {
    crosses.clear();
    sorted[0].clear();
    sorted[1].clear();
    return false;
  }
  for (std::size_t i = 0; i < crosses.size(); ++i) crosses[i].index = static_cast<int>(i);
  Resort(crosses, sorted, tol);
  return true;
}

bool DropUnbalanced(Crosses& crosses, const std::vector<int>& list, int s) {
  bool changed = false;
  for (std::size_t from = 0, to = 0; from < list.size(); from = to) {
    int count[2] = {0, 0};
    const std::int64_t loop = SideOf(At(crosses, list, from), s).loop.value;
    for (to = from; to < list.size() && SideOf(At(crosses, list, to), s).loop.value == loop; ++to) {
      if (At(crosses, list, to).valid) ++count[At(crosses, list, to).dir];
    }
    if (count[0] > 0 && count[1] > 0) continue;
    for (std::size_t k = from; k < to; ++k) At(crosses, list, k).valid = false;
    changed = true;
  }
  return changed;
}

bool DropCoincidentAlongA(Crosses& crosses, const std::vector<int>& list, const Tol& tol) {
  bool changed = false;
  const std::size_t n = list.size();
  if (n < 2) return false;
  for (std::size_t k = 0; k < (n == 2 ? 1 : n); ++k) {
    ZBR_CROSS& p = At(crosses, list, (k + n - 1) % n);
    ZBR_CROSS& c = At(crosses, list, k);
    if (!p.valid || !c.valid || !SamePos(p.a, c.a, tol) || !SamePos(p.b, c.b, tol)) continue;
    c.valid = false;
    if (p.dir != c.dir) p.valid = false;
    changed = true;
  }
  return changed;
}

bool DropTouchesAlongB(Crosses& crosses, const std::vector<int>& list, const Tol& tol) {
  bool changed = false;
  for (std::size_t k = 1; k < list.size(); ++k) {
    ZBR_CROSS& p = At(crosses, list, k - 1);
    ZBR_CROSS& c = At(crosses, list, k);
    if (!p.valid || !c.valid || !SamePos(p.b, c.b, tol)) continue;
    changed = true;
    if (p.dir != c.dir) p.valid = c.valid = false;
  }
  return changed;
}

// Whether c1 and c2 change places in the order along side s; sets *drop when they enclose nothing.
bool SwapsPair(const Loops& other, const ZBR_CROSS& c1, const ZBR_CROSS& c2, int s, const Tol& tol, bool* drop) {
  const int o = 1 - s;
  const bool c1Left = c1.dir == ZBR_CROSS_TO_LEFT;
  bool leftSwaps = false;
  if (SideOf(c1, o).loop.value == SideOf(c2, o).loop.value) {
    const ZBR_CROSS* from = c1Left ? &c1 : &c2;
    const ZBR_CROSS* to = c1Left ? &c2 : &c1;
    if (s == 1) std::swap(from, to);
    const ZBR_POLYGON ring(PolygonOf(other, SideOf(c1, o).loop).pt);
    const double area = ring.get_area(from->pt, to->pt, SideOf(*from, o).pos, SideOf(*to, o).pos);
    *drop = Within(area, tol.eps);
    leftSwaps = (area > 0.0) == (s == 0);
  } else {
    const bool sameLoop = SideOf(c1, o).loop.loop() == SideOf(c2, o).loop.loop();
    leftSwaps = sameLoop == (s == 0);
  }
  return leftSwaps == c1Left;
}

bool OrderTies(const Loops& other, Crosses& crosses, const std::vector<int>& list, int s, const Tol& tol) {
  bool changed = false;
  for (std::size_t k = 0; k + 1 < list.size(); ++k) {
    ZBR_CROSS& c1 = At(crosses, list, k);
    ZBR_CROSS& c2 = At(crosses, list, k + 1);
    const ZBR_CROSS_AB& p1 = SideOf(c1, s);
    const ZBR_CROSS_AB& p2 = SideOf(c2, s);
    const bool tied = p1.loop.value == p2.loop.value && p2.pos - tol.eps <= p1.pos && p1.pos <= p2.pos + tol.eps;
    if (!tied || c1.dir == c2.dir) continue;
    changed = true;
    bool drop = false;
    const bool swap = SwapsPair(other, c1, c2, s, tol, &drop);
    if (drop) {
      c1.valid = c2.valid = false;
    } else {
      SideOf(c1, s).order = swap ? 2 : 1;
      SideOf(c2, s).order = swap ? 1 : 2;
    }
  }
  return changed;
}

bool HasCrowdedSpot(Crosses& crosses, const std::vector<int>& list, int s, const Tol& tol) {
  std::size_t crowd = 1;
  for (std::size_t k = 1; k < list.size(); ++k) {
    crowd = SamePos(SideOf(At(crosses, list, k - 1), s), SideOf(At(crosses, list, k), s), tol) ? crowd + 1 : 1;
    if (crowd > 2) return true;
  }
  return false;
}

}  // namespace

bool OptimizeCross(const Loops& A, const Loops& B, Crosses& crosses, std::vector<int>* sorted, bool bothClosed, const Tol& tol) {
  if (bothClosed && crosses.size() < 2) {
    for (ZBR_CROSS& c : crosses) c.valid = false;
    Compact(crosses, sorted, tol);
    return false;
  }
  Resort(crosses, sorted, tol);
  if (bothClosed) {
    const bool a = DropUnbalanced(crosses, sorted[0], 0);
    const bool b = DropUnbalanced(crosses, sorted[1], 1);
    if ((a || b) && !Compact(crosses, sorted, tol)) return false;
  }
  if (DropCoincidentAlongA(crosses, sorted[0], tol) && !Compact(crosses, sorted, tol)) return false;
  if (!bothClosed && DropTouchesAlongB(crosses, sorted[1], tol) && !Compact(crosses, sorted, tol)) return false;
  Renumber(crosses, sorted);
  bool crowded = HasCrowdedSpot(crosses, sorted[0], 0, tol);
  if (bothClosed) crowded = HasCrowdedSpot(crosses, sorted[1], 1, tol) || crowded;
  for (int s = 0; s < (bothClosed ? 2 : 1); ++s) {
    if (!OrderTies(s == 0 ? B : A, crosses, sorted[s], s, tol)) continue;
    if (!Compact(crosses, sorted, tol)) return crowded;
    Renumber(crosses, sorted);
  }
  return crowded;
}

void SetFollowingCrossDone(Crosses& crosses, int side, const std::vector<int>& sorted, ZBR_CROSS_DIR dir, bool forward) {
  if (crosses.size() < 2) return;
  std::vector<int> walk = sorted;
  if (!forward) std::reverse(walk.begin(), walk.end());
  for (std::size_t from = 0, to = 0; from < walk.size(); from = to) {
    const std::int64_t loop = SideOf(At(crosses, walk, from), side).loop.value;
    while (to < walk.size() && SideOf(At(crosses, walk, to), side).loop.value == loop) ++to;
    for (std::size_t k = from; k < to; ++k) {
      ZBR_CROSS& c = At(crosses, walk, k);
      if (c.dir == dir && At(crosses, walk, k == from ? to - 1 : k - 1).dir == dir) c.done = true;
    }
  }
}

}  // namespace literal
