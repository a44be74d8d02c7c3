// Sorting crossings along one side of the Boolean.
//
// Crossings come in by the hundred thousand, mostly in runs that are in order already, forwards or backwards (one edge against the
// parallel edges of a comb, say). So they are first brought to their edge by counting digits, then each edge is looked at: in
// order, in reverse order, or, seldom, to be sorted by comparing.
#include "boolean/cross_sort.h"

#include <algorithm>

#include "core/radix_sort.h"

bool ZBR_CROSS_SORT_FUNCTOR::operator()(int i, int j) const {
  const ZBR_CROSS& x = crosses_[static_cast<std::size_t>(i)];
  const ZBR_CROSS& y = crosses_[static_cast<std::size_t>(j)];
  const auto compare = [](const ZBR_CROSS_AB& p, const ZBR_CROSS_AB& q) {
    if (p.loop.value != q.loop.value) return p.loop.value < q.loop.value ? -1 : 1;
    if (p.pos != q.pos) return p.pos < q.pos ? -1 : 1;
    return p.order < q.order ? -1 : p.order > q.order ? 1 : 0;
  };
  const int primary = compare(zbr::Side(x, primary_), zbr::Side(y, primary_));
  return primary != 0 ? primary < 0 : compare(zbr::Side(x, secondary_), zbr::Side(y, secondary_)) < 0;
}

namespace zbr {

namespace {

void SortOneEdge(std::vector<PlacedCrossing>& placed, std::size_t first, std::size_t last, const ZBR_CROSS_SORT_FUNCTOR& less) {
  const auto before = [&less](const PlacedCrossing& x, const PlacedCrossing& y) {
    return x.pos != y.pos ? x.pos < y.pos : less(x.index, y.index);
  };
  const auto begin = placed.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = placed.begin() + static_cast<std::ptrdiff_t>(last);
  if (std::is_sorted(begin, end, before)) return;
  const auto isNotDescending = [&](const PlacedCrossing& x, const PlacedCrossing& y) { return !before(y, x); };
  if (std::adjacent_find(begin, end, isNotDescending) == end) {
    std::reverse(begin, end);
  } else {
    std::stable_sort(begin, end, before);
  }
}

// Positions that name an edge; anything else (a caller's own records) is sorted by comparing alone.
bool HasEdge(double pos) {
  return pos >= 0.0 && pos < 4294967295.0;
}
std::uint32_t EdgeOf(const PlacedCrossing& p) {
  return static_cast<std::uint32_t>(p.pos);
}
// Biased so that unsigned order is the order of the signed keys.
std::uint64_t LoopKey(const PlacedCrossing& p) {
  return static_cast<std::uint64_t>(p.loop) ^ (std::uint64_t{1} << 63U);
}

bool IsOnEarlierEdge(const PlacedCrossing& x, const PlacedCrossing& y) {
  return x.loop != y.loop ? x.loop < y.loop : EdgeOf(x) < EdgeOf(y);
}

// What is seen of the crossings of a side while they are listed.
struct SideGlance {
  bool haveEdges = true;
  bool haveOneLoop = true;
  bool areInOrder = true;  // of their edges
  std::int64_t loop = 0;   // of the last one
  std::uint32_t edge = 0;

  void Add(std::int64_t newLoop, double pos) {
    if (!HasEdge(pos)) {
      haveEdges = false;
      return;
    }
    const auto newEdge = static_cast<std::uint32_t>(pos);
    haveOneLoop &= newLoop == loop;
    areInOrder &= loop < newLoop || (loop == newLoop && edge <= newEdge);
    loop = newLoop;
    edge = newEdge;
  }
};

void SortPlaced(const std::vector<ZBR_CROSS>& crosses, int side, const SideGlance& seen, std::vector<PlacedCrossing>& placed) {
  const ZBR_CROSS_SORT_FUNCTOR less(crosses, side, 1 - side);
  if (!seen.haveEdges) {
    std::stable_sort(placed.begin(), placed.end(),
                     [&less](const PlacedCrossing& x, const PlacedCrossing& y) { return less(x.index, y.index); });
    return;
  }
  if (!seen.areInOrder) {
    std::vector<PlacedCrossing> scratch;
    RadixSort(placed, scratch, [](const PlacedCrossing& p) { return EdgeOf(p); });
    if (!seen.haveOneLoop) RadixSort(placed, scratch, [](const PlacedCrossing& p) { return LoopKey(p); });
  }
  for (std::size_t first = 0; first < placed.size();) {
    std::size_t last = first + 1;
    while (last < placed.size() && !IsOnEarlierEdge(placed[first], placed[last])) ++last;
    if (last - first > 1) SortOneEdge(placed, first, last, less);
    first = last;
  }
}

}  // namespace

void SortAlongSides(const std::vector<ZBR_CROSS>& crosses, std::vector<PlacedCrossing>* placed) {
  placed[0].clear();
  placed[1].clear();
  placed[0].reserve(crosses.size());
  placed[1].reserve(crosses.size());
  if (crosses.empty()) return;
  SideGlance seenA{.loop = crosses[0].a.loop.value};
  SideGlance seenB{.loop = crosses[0].b.loop.value};
  for (std::size_t i = 0; i < crosses.size(); ++i) {  // the records are large: both sides are taken from them at once
    const ZBR_CROSS& c = crosses[i];
    seenA.Add(c.a.loop.value, c.a.pos);
    seenB.Add(c.b.loop.value, c.b.pos);
    placed[0].push_back({c.a.loop.value, c.a.pos, static_cast<std::int32_t>(i), c.dir});
    placed[1].push_back({c.b.loop.value, c.b.pos, static_cast<std::int32_t>(i), c.dir});
  }
  SortPlaced(crosses, 0, seenA, placed[0]);
  SortPlaced(crosses, 1, seenB, placed[1]);
}

void ResortTies(const std::vector<ZBR_CROSS>& crosses, int side, std::vector<PlacedCrossing>& placed) {
  const auto orderOf = [&](const PlacedCrossing& p) { return Side(crosses[static_cast<std::size_t>(p.index)], side).order; };
  const auto before = [&](const PlacedCrossing& x, const PlacedCrossing& y) { return orderOf(x) < orderOf(y); };
  for (std::size_t first = 0; first < placed.size();) {
    const std::size_t last = EndOfTie(placed, first);
    const auto begin = placed.begin() + static_cast<std::ptrdiff_t>(first);
    if (last - first > 1) std::stable_sort(begin, placed.begin() + static_cast<std::ptrdiff_t>(last), before);
    first = last;
  }
}

}  // namespace zbr
