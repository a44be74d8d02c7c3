// What must hold of crossings after clean-up, and of paths along them. A function gives null, or what is wrong.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "boolean/cross_sort.h"

namespace zbr {

// Whether positions from `low` to `high` on the polygon of list[k] follow each other within the tolerance: they are one place then.
inline bool IsOnePlace(const std::vector<ZBR_CROSS>& crosses, int side, std::span<const int> list, std::size_t k, double low,
                       double high, double eps) {
  const auto at = [&](int i) -> const ZBR_CROSS_AB& { return Side(crosses[static_cast<std::size_t>(i)], side); };
  std::vector<double> between;
  for (const int i : list) {
    if (at(i).loop.value == at(list[k]).loop.value && at(i).pos >= low && at(i).pos <= high) between.push_back(at(i).pos);
  }
  std::sort(between.begin(), between.end());
  const auto isGap = [eps](double p, double q) { return !WithinTol(p, q, eps); };
  return std::adjacent_find(between.begin(), between.end(), isGap) == between.end();
}

// One side's list: every crossing once, numbered by its place, in order of polygon and position, in a tie in order of rank.
inline const char* SortedSideFault(const std::vector<ZBR_CROSS>& crosses, int side, std::span<const int> list, double eps) {
  if (list.size() != crosses.size()) return "a crossing is missing in a list";
  for (std::size_t k = 0; k < list.size(); ++k) {
    if (list[k] < 0 || static_cast<std::size_t>(list[k]) >= crosses.size()) return "a list names a crossing that is not there";
    const ZBR_CROSS& cross = crosses[static_cast<std::size_t>(list[k])];
    if (!cross.valid || cross.index != list[k]) return "a crossing that was dropped, or is not at its index";
    const ZBR_CROSS_AB& cur = Side(cross, side);
    if (cur.seq != static_cast<int>(k)) return "a crossing whose number is not its place";
    if (k == 0) continue;
    const ZBR_CROSS_AB& prev = Side(crosses[static_cast<std::size_t>(list[k - 1])], side);
    if (prev.loop.value > cur.loop.value) return "polygons out of order";
    if (prev.loop.value != cur.loop.value || cur.pos >= prev.pos) continue;
    if (!IsOnePlace(crosses, side, list, k, cur.pos, prev.pos, eps)) return "positions out of order";
    if (prev.order > cur.order) return "ranks out of order at one place";
  }
  return nullptr;
}

inline const char* SortedFault(const std::vector<ZBR_CROSS>& crosses, const std::vector<int>* sorted, double eps) {
  for (int side = 0; side < 2; ++side) {
    if (const char* const fault = SortedSideFault(crosses, side, sorted[side], eps)) return fault;
  }
  return nullptr;
}
inline const char* SortedFault(const std::vector<ZBR_CROSS>& crosses, const std::vector<PlacedCrossing>* sides, double eps) {
  std::vector<int> sorted[2];
  for (int side = 0; side < 2; ++side) {
    for (const PlacedCrossing& p : sides[side]) sorted[side].push_back(p.index);
  }
  return SortedFault(crosses, sorted, eps);
}

// Boundaries in general position enter and leave in turn. Not so at shared stretches, which are recorded at one end or at none:
// there one direction may follow itself, so this is for callers who know that there are none.
inline const char* AlternationFault(const std::vector<ZBR_CROSS>& crosses, int side, std::span<const int> list) {
  const auto at = [&](std::size_t k) -> const ZBR_CROSS& { return crosses[static_cast<std::size_t>(list[k])]; };
  const char* fault = nullptr;
  const auto loopAt = [&](std::size_t k) { return Side(at(k), side).loop.value; };
  ForEachPolygonRun(list.size(), loopAt, [&](std::size_t first, std::size_t last) {
    for (std::size_t k = first; k < last; ++k) {
      if (at(k).dir == at(k == first ? last - 1 : k - 1).dir) fault = "two crossings of one direction in a row";
    }
  });
  return fault;
}

// A path along the boundaries of a result: back where it began after stretches along A and B in turn, and no crossing twice.
inline const char* PathFault(std::span<const std::uint32_t> path) {
  if (path.size() < 3 || path.front() != path.back()) return "a path that does not close";
  if (path.size() % 2 == 0) return "a path that ends along the side that it began with";
  std::vector<std::uint32_t> visited(path.begin() + 1, path.end());
  std::sort(visited.begin(), visited.end());
  return std::adjacent_find(visited.begin(), visited.end()) == visited.end() ? nullptr : "a crossing used twice";
}

}  // namespace zbr
