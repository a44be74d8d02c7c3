// Crossings in order along one side.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <zbr/boolean.h>

#include "core/tolerance_state.h"

namespace zbr {

// The record of one side of a crossing: 0 for a, 1 for b.
inline const ZBR_CROSS_AB& Side(const ZBR_CROSS& c, int side) {
  return side == 0 ? c.a : c.b;
}
inline ZBR_CROSS_AB& Side(ZBR_CROSS& c, int side) {
  return side == 0 ? c.a : c.b;
}

// What walks along a side need of a crossing, close together: the records themselves lie in the order in which they were found, and
// reading them in any other order costs more than the walk.
struct PlacedCrossing {
  std::int64_t loop;
  double pos;
  std::int32_t index;  // of the record
  ZBR_CROSS_DIR dir;
};

// Fills placed[side] with all crossings in the order of ZBR_CROSS_SORT_FUNCTOR(crosses, side, 1 - side), for both sides; crossings
// that are equal in it keep their order.
void SortAlongSides(const std::vector<ZBR_CROSS>& crosses, std::vector<PlacedCrossing>* placed);

// Whether two neighbours along a side share one place: positions that differ by less than the tolerance are one, since each pair of
// edges computes its own. The band is built around the second position, which may differ in its last bit.
inline bool AreTied(const PlacedCrossing& x, const PlacedCrossing& y) {
  return x.loop == y.loop && WithinTol(x.pos, y.pos, t_tolerance.eps);
}

// The end of the tied neighbours from `first` on.
inline std::size_t EndOfTie(const std::vector<PlacedCrossing>& list, std::size_t first) {
  std::size_t last = first + 1;
  while (last < list.size() && AreTied(list[last - 1], list[last])) ++last;
  return last;
}

// Puts tied neighbours in the order of their `order` fields, whatever their positions say.
void ResortTies(const std::vector<ZBR_CROSS>& crosses, int side, std::vector<PlacedCrossing>& placed);

// Calls visit(first, last) for each run of places on the same polygon; loopAt(k) is the packed key at place k.
template <class LoopAt, class Visit>
void ForEachPolygonRun(std::size_t count, LoopAt loopAt, Visit visit) {
  for (std::size_t first = 0; first < count;) {
    const std::int64_t loop = loopAt(first);
    std::size_t last = first + 1;
    while (last < count && loopAt(last) == loop) ++last;
    visit(first, last);
    first = last;
  }
}

// The same of a sorted side, where the end of a run is found by doubling steps: long runs are not read to be told apart.
template <class Visit>
void ForEachPolygonRun(const std::vector<PlacedCrossing>& sorted, Visit visit) {
  const auto begin = sorted.begin();
  for (auto first = begin; first != sorted.end();) {
    std::ptrdiff_t step = 1;
    while (step < sorted.end() - first && first[step].loop == first->loop) step *= 2;
    const auto last = std::partition_point(first + step / 2 + 1, first + std::min(step, sorted.end() - first),
                                           [&](const PlacedCrossing& p) { return p.loop == first->loop; });
    visit(static_cast<std::size_t>(first - begin), static_cast<std::size_t>(last - begin));
    first = last;
  }
}

}  // namespace zbr
