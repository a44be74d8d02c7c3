// Lists of crossing indices in order along one side.
#pragma once

#include <vector>

#include <zbr/boolean.h>

namespace zbr {

// The record of one side of a crossing: 0 for a, 1 for b.
inline const ZBR_CROSS_AB& Side(const ZBR_CROSS& c, int side) {
  return side == 0 ? c.a : c.b;
}
inline ZBR_CROSS_AB& Side(ZBR_CROSS& c, int side) {
  return side == 0 ? c.a : c.b;
}

// Fills `sorted` with the indices of all crossings in the order of ZBR_CROSS_SORT_FUNCTOR(crosses, side, 1 - side); crossings that
// are equal in it keep their order.
void SortAlongSide(const std::vector<ZBR_CROSS>& crosses, int side, std::vector<int>& sorted);

// Puts `sorted`, in order but for changed `order` fields, in order again.
void ResortTies(const std::vector<ZBR_CROSS>& crosses, int side, std::vector<int>& sorted);

// Calls visit(first, last) for each run of entries on the same polygon.
template <class Visit>
void ForEachPolygonRun(const std::vector<ZBR_CROSS>& crosses, int side, const std::vector<int>& sorted, Visit visit) {
  const auto keyAt = [&](std::size_t k) { return Side(crosses[static_cast<std::size_t>(sorted[k])], side).loop.value; };
  for (std::size_t first = 0; first < sorted.size();) {
    std::size_t last = first + 1;
    while (last < sorted.size() && keyAt(last) == keyAt(first)) ++last;
    visit(first, last);
    first = last;
  }
}

}  // namespace zbr
