// What must hold of loops and lists of loops. A function gives null, or what is wrong.
#pragma once

#include <cmath>
#include <memory>
#include <vector>

#include <zbr/loop.h>

namespace zbr {

inline const char* RingFault(const ZBR_LOOP& ring, int level, double eps) {
  if (ring.level() != level) return "a loop of another level than its place";
  if (!ring.IsSetuped()) return "a loop that is not set up";
  if ((level == 0 ? ring.area() : -ring.area()) <= eps) return "an area within the tolerance, or of the wrong sign";
  return nullptr;
}

// What zbrMakeLoopTree leaves of any loops: outer loops counter-clockwise, below them clockwise holes, larger than the tolerance.
inline const char* NestingFault(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops, double eps) {
  for (const auto& loop : loops) {
    if (const char* const fault = RingFault(*loop, 0, eps)) return fault;
    for (const auto& hole : loop->children()) {
      if (const char* const fault = RingFault(*hole, 1, eps)) return fault;
      if (!hole->children().empty()) return "a hole with children";
    }
  }
  return nullptr;
}

// Area and bounds are those of the points. A reversed loop keeps the area of its former order, which may round another way.
inline const char* CacheFault(const ZBR_LOOP& ring) {
  ZBR_LOOP fresh;
  fresh.pt() = ring.pt();
  fresh.Setup();
  const bool isArea = std::fabs(ring.area() - fresh.area()) <= 1e-12 * (1.0 + std::fabs(fresh.area()));
  const bool isBox =
      ring.xmin() == fresh.xmin() && ring.xmax() == fresh.xmax() && ring.ymin() == fresh.ymin() && ring.ymax() == fresh.ymax();
  return isArea && isBox ? nullptr : "a stale cache";
}

// What holds besides of a region, whose rings do not cross: caches are fresh, and no hole's box sticks out of its loop's box by
// more than `slack`.
inline const char* RegionFault(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops, double eps, double slack) {
  if (const char* const fault = NestingFault(loops, eps)) return fault;
  for (const auto& loop : loops) {
    if (const char* const fault = CacheFault(*loop)) return fault;
    for (const auto& hole : loop->children()) {
      if (const char* const fault = CacheFault(*hole)) return fault;
      if (hole->xmin() < loop->xmin() - slack || hole->xmax() > loop->xmax() + slack || hole->ymin() < loop->ymin() - slack ||
          hole->ymax() > loop->ymax() + slack) {
        return "a hole's box sticks out of its loop's";
      }
    }
  }
  return nullptr;
}

}  // namespace zbr
