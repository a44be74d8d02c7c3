// The point test on one ring, and the few steps of it that the indexed locator shares.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include <zbr/loop.h>

#include "core/box.h"

namespace zbr {

// The cached box of a loop that is set up.
inline Box BoxOf(const ZBR_LOOP& loop) {
  return {loop.xmin(), loop.ymin(), loop.xmax(), loop.ymax()};
}

// The same, computed. A NaN that comes first stays, a later one is passed over.
inline Box BoundsOf(std::span<const ZBR_PT> ring) {
  if (ring.empty()) return {0.0, 0.0, 0.0, 0.0};
  Box box = {ring[0].x(), ring[0].y(), ring[0].x(), ring[0].y()};
  for (const ZBR_PT& p : ring) {
    if (p.x() > box.xmax) box.xmax = p.x();
    if (p.y() > box.ymax) box.ymax = p.y();
    if (p.x() < box.xmin) box.xmin = p.x();
    if (p.y() < box.ymin) box.ymin = p.y();
  }
  return box;
}

// Position of vertex v relative to p under eps, per axis. NaN counts as within.
inline ZBR_POS_PT_PT PositionOf(const ZBR_PT& v, const ZBR_PT& p, double eps) {
  const double dx = v.x() - p.x();
  const double dy = v.y() - p.y();
  ZBR_POS_PT_PT pos;
  pos.xPos = static_cast<signed char>((dx > eps) - (dx < -eps));
  pos.yPos = static_cast<signed char>((dy > eps) - (dy < -eps));
  return pos;
}

// Whether an edge lies wholly on one side of the eps-wide cross through the point, so that the point cannot be on it.
inline bool IsBesidePoint(ZBR_POS_PT_PT a, ZBR_POS_PT_PT b) {
  return (a.xPos == b.xPos && a.xPos != 0) || (a.yPos == b.yPos && a.yPos != 0);
}

// The quadrant's signs: towards +x for 0 and 3, towards +y for 0 and 1.
inline int QuadrantX(int q) {
  return q == 0 || q == 3 ? 1 : -1;
}
inline int QuadrantY(int q) {
  return q <= 1 ? 1 : -1;
}

// Whether an edge lies wholly behind the quadrant, so that a ray into it cannot meet the edge.
inline bool IsBehindQuadrant(ZBR_POS_PT_PT a, ZBR_POS_PT_PT b, int q) {
  const int x = QuadrantX(q);
  const int y = QuadrantY(q);
  return (a.xPos == -x && b.xPos == -x) || (a.yPos == -y && b.yPos == -y);
}

// Whether the box alone tells that p is outside. False for NaN.
inline bool IsOutsideBox(const ZBR_PT& p, const Box& box, double eps) {
  return box.xmin - eps > p.x() || box.ymin - eps > p.y() || p.x() - eps > box.xmax || p.y() - eps > box.ymax;
}

// Where p lies relative to a ring of three or more points whose box does not decide. `pos` is scratch with room for one entry per
// vertex; on return pos[0..used) holds the vertices' positions.
ZBR_POLY_INSIDE PointInRing(const ZBR_PT& p, std::span<const ZBR_PT> ring, double eps, ZBR_POS_PT_PT* pos, std::size_t& used);

}  // namespace zbr
