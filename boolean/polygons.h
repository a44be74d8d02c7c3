// The polygons of a loop list: every loop and its direct children, in list order.
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/boolean.h>

namespace zbr {

struct Polygon {
  const std::shared_ptr<ZBR_LOOP>* loop;
  ZBR_CROSS_LOOP key;
};

inline void AppendPolygons(const std::shared_ptr<ZBR_LOOP>& loop, int index, std::vector<Polygon>& polygons) {
  polygons.push_back({&loop, ZBR_CROSS_LOOP(index, 0)});
  int poly = 0;
  for (const std::shared_ptr<ZBR_LOOP>& hole : loop->children()) polygons.push_back({&hole, ZBR_CROSS_LOOP(index, ++poly)});
}

inline std::vector<Polygon> PolygonsOf(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  std::vector<Polygon> polygons;
  polygons.reserve(loops.size());
  for (std::size_t i = 0; i < loops.size(); ++i) AppendPolygons(loops[i], static_cast<int>(i), polygons);
  return polygons;
}

// The loop that a key names, or null when the list has no such polygon.
inline const ZBR_LOOP* PolygonAt(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops, ZBR_CROSS_LOOP key) {
  if (key.loop() < 0 || static_cast<std::size_t>(key.loop()) >= loops.size()) return nullptr;
  const ZBR_LOOP* loop = loops[static_cast<std::size_t>(key.loop())].get();
  if (key.poly() == 0) return loop;
  const auto hole = static_cast<std::size_t>(key.poly()) - 1;
  return key.poly() > 0 && hole < loop->children().size() ? loop->children()[hole].get() : nullptr;
}

// Whether a ring takes part in a combination: its area tells of every coordinate that is not finite.
inline bool IsFiniteRing(const ZBR_LOOP& loop) {
  return std::isfinite(loop.area()) && std::isfinite(loop.xmax() - loop.xmin());
}

}  // namespace zbr
