// The polygons of a loop list: every loop and its direct children, in list order.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/boolean.h>

#include "core/prefetch.h"
#include "core/rings.h"

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
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (i + kItemsAhead < loops.size()) PrefetchObject(*loops[i + kItemsAhead]);
    AppendPolygons(loops[i], static_cast<int>(i), polygons);
  }
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

// A loop of the ring's points, set up.
inline std::shared_ptr<ZBR_LOOP> LoopOf(RingSpan ring, int level) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt().assign(ring.begin(), ring.end());
  loop->Setup();
  loop->level() = level;
  return loop;
}

// Whether a ring takes part in a combination. The area of three points or more tells of every coordinate that is not finite; an
// open polyline of two points has none. Extents whose square overflows leave nothing to compare lengths with and count as infinite.
inline bool IsFiniteRing(const ZBR_LOOP& loop) {
  const double size2 = ZBR_PT(loop.xmax() - loop.xmin(), loop.ymax() - loop.ymin()).Length2();
  if (!std::isfinite(loop.area()) || !std::isfinite(size2)) return false;
  if (loop.pt().size() > 2) return true;
  return std::all_of(loop.pt().begin(), loop.pt().end(),
                     [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); });
}

}  // namespace zbr
