// What must hold of triangles while lines are removed. A function gives null, or what is wrong. Coordinates beyond what can be
// computed with make parameters that are not numbers; they are no fault.
#pragma once

#include <utility>
#include <vector>

#include <zbr/hidden_line.h>

namespace zbr {

// Stretches of the edge from 0 to 1, each ahead of the next.
inline const char* IntervalsFault(const std::vector<ZBR_HL_INTERVAL>& list) {
  double end = 0.0;
  for (const ZBR_HL_INTERVAL& v : list) {
    if (v.s.t < end || v.e.t < v.s.t) return "intervals of an edge that are not sorted or overlap";
    end = v.e.t;
  }
  return end > 1.0 ? "an interval beyond the end of its edge" : nullptr;
}

// The lists of its edges, and whether any is left.
inline const char* VisibleFault(const ZBR_HL_TRI& t) {
  bool isAny = false;
  for (const auto& list : t.intvl_v) {
    if (const char* const fault = IntervalsFault(list)) return fault;
    isAny = isAny || !list.empty();
  }
  return isAny == t.any_edge_visible ? nullptr : "a triangle that does not know whether anything of it is visible";
}

// Identifiers ascend, so that a neighbour is found by halving; every triangle is where its identifier says.
inline const char* IdMapFault(const ZBR_HL_SHELL& shell) {
  const std::pair<int, int>* prev = nullptr;
  for (const auto& entry : shell.id_map) {
    if (prev != nullptr && entry.first < prev->first) return "identifiers of triangles out of order";
    if (entry.second < 0 || static_cast<unsigned>(entry.second) >= shell.count) return "a triangle outside its shell";
    if (shell.tris[entry.second].idx != entry.first) return "a triangle that is not where its identifier says";
    prev = &entry;
  }
  return nullptr;
}

}  // namespace zbr
