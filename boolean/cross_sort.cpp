// Sorting crossings along one side of the Boolean.
//
// Crossings come in by the hundred thousand, mostly in runs that are in order already, forwards or backwards (one edge against the
// parallel edges of a comb, say). So they are first brought to their edge by counting digits, then each edge is looked at: in
// order, in reverse order, or, seldom, to be sorted by comparing.
#include "boolean/cross_sort.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

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

// What the sort needs of a crossing, close together.
struct Entry {
  std::uint64_t loop;  // the packed key, biased so that unsigned order is its order
  double pos;
  std::uint32_t edge;  // floor(pos)
  int index;
};

void SortOneEdge(std::vector<Entry>& entries, std::size_t first, std::size_t last, const ZBR_CROSS_SORT_FUNCTOR& less) {
  const auto before = [&less](const Entry& x, const Entry& y) { return x.pos != y.pos ? x.pos < y.pos : less(x.index, y.index); };
  const auto begin = entries.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = entries.begin() + static_cast<std::ptrdiff_t>(last);
  if (std::is_sorted(begin, end, before)) return;
  const auto isNotDescending = [&](const Entry& x, const Entry& y) { return !before(y, x); };
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

}  // namespace

void SortAlongSide(const std::vector<ZBR_CROSS>& crosses, int side, std::vector<int>& sorted) {
  const ZBR_CROSS_SORT_FUNCTOR less(crosses, side, 1 - side);
  sorted.resize(crosses.size());
  std::iota(sorted.begin(), sorted.end(), 0);
  if (!std::all_of(crosses.begin(), crosses.end(), [side](const ZBR_CROSS& c) { return HasEdge(Side(c, side).pos); })) {
    std::stable_sort(sorted.begin(), sorted.end(), less);
    return;
  }

  std::vector<Entry> entries(crosses.size());
  for (std::size_t i = 0; i < crosses.size(); ++i) {
    const ZBR_CROSS_AB& at = Side(crosses[i], side);
    entries[i] = {static_cast<std::uint64_t>(at.loop.value) ^ (std::uint64_t{1} << 63U), at.pos, static_cast<std::uint32_t>(at.pos),
                  static_cast<int>(i)};
  }
  const auto byEdge = [](const Entry& x, const Entry& y) { return x.loop != y.loop ? x.loop < y.loop : x.edge < y.edge; };
  if (!std::is_sorted(entries.begin(), entries.end(), byEdge)) {
    std::vector<Entry> scratch;
    RadixSort(entries, scratch, 32, [](const Entry& e) { return e.edge; });
    RadixSort(entries, scratch, 64, [](const Entry& e) { return e.loop; });
  }
  for (std::size_t first = 0; first < entries.size();) {
    std::size_t last = first + 1;
    while (last < entries.size() && !byEdge(entries[first], entries[last])) ++last;
    if (last - first > 1) SortOneEdge(entries, first, last, less);
    first = last;
  }
  for (std::size_t i = 0; i < entries.size(); ++i) sorted[i] = entries[i].index;
}

void ResortTies(const std::vector<ZBR_CROSS>& crosses, int side, std::vector<int>& sorted) {
  const auto same = [&](int i, int j) {
    const ZBR_CROSS_AB& x = Side(crosses[static_cast<std::size_t>(i)], side);
    const ZBR_CROSS_AB& y = Side(crosses[static_cast<std::size_t>(j)], side);
    return x.loop.value == y.loop.value && x.pos == y.pos;
  };
  const ZBR_CROSS_SORT_FUNCTOR less(crosses, side, 1 - side);
  for (auto first = sorted.begin(); first != sorted.end();) {
    auto last = first + 1;
    while (last != sorted.end() && same(*first, *last)) ++last;
    if (last - first > 1) std::stable_sort(first, last, less);
    first = last;
  }
}

}  // namespace zbr
