// What is measured of rings of points, and the list type that loops are handed around in.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include <zbr/loop.h>

#include "core/box.h"
#include "core/planar_inline.h"

namespace zbr {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;

// A closed polygon, its last point joined to the first.
using RingSpan = std::span<const ZBR_PT>;

inline std::size_t CountPoints(std::span<const RingSpan> rings) {
  std::size_t count = 0;
  for (const RingSpan& ring : rings) count += ring.size();
  return count;
}

inline Box BoxOfRing(RingSpan ring) {
  Box box;
  for (const ZBR_PT& p : ring) box.Add(p);
  return box;
}

inline Box BoxOfRings(std::span<const RingSpan> rings) {
  Box box;
  for (const RingSpan& ring : rings) box.Add(BoxOfRing(ring));
  return box;
}

// Twice the signed area, computed near the origin.
inline double TwiceArea(RingSpan ring) {
  double sum = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) sum += Cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
  return sum;
}

inline double Perimeter(RingSpan ring) {
  double sum = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) sum += ring[i].Distance(ring[i + 1 < ring.size() ? i + 1 : 0]);
  return sum;
}

}  // namespace zbr
