// Point against loop: snap to vertices and edges, then cast rays into the emptiest quadrant, then into the others.
#include <array>

#include "literal/loops.h"

namespace literal {

namespace {

constexpr int kRaysDecide = 3;

signed char SignOutside(double d, double eps) {
  if (d < -eps) return -1;
  return d > eps ? 1 : 0;
}

int QuadrantOf(const ZBR_POS_PT_PT& pos) {
  if (pos.yPos > 0) return pos.xPos > 0 ? 0 : 1;
  return pos.xPos < 0 ? 2 : 3;
}

// Returns ON_VERTEX, ON_EDGE, or kRaysDecide with the quadrant chosen.
int ClassifyVertices(const ZBR_PT& pt, const Loop& loop, std::vector<ZBR_POS_PT_PT>& pos, int& quadrant, const Tol& tol) {
  pos.clear();
  std::array<int, 4> count = {};
  for (const ZBR_PT& v : loop.pt) {
    const ZBR_POS_PT_PT here = {SignOutside(v.x() - pt.x(), tol.eps), SignOutside(v.y() - pt.y(), tol.eps)};
    if (here.xPos == 0 && here.yPos == 0) return ZBR_PI_ON_VERTEX;
    if (here.xPos != 0 && here.yPos != 0) ++count[static_cast<std::size_t>(QuadrantOf(here))];
    pos.push_back(here);
  }
  for (std::size_t i = 0, prev = loop.pt.size() - 1; i < loop.pt.size(); prev = i++) {
    const bool besideX = pos[prev].xPos == pos[i].xPos && pos[i].xPos != 0;
    const bool besideY = pos[prev].yPos == pos[i].yPos && pos[i].yPos != 0;
    if (!besideX && !besideY && zbrIsOnSeg(pt, loop.pt[prev], loop.pt[i], nullptr, nullptr)) return ZBR_PI_ON_EDGE;
  }
  quadrant = 0;
  for (int q = 1; q < 4; ++q) {
    if (count[static_cast<std::size_t>(q)] < count[static_cast<std::size_t>(quadrant)]) quadrant = q;
  }
  return kRaysDecide;
}

bool CannotMeetRay(const ZBR_POS_PT_PT& a, const ZBR_POS_PT_PT& b, int q) {
  const int dx = q == 0 || q == 3 ? 1 : -1;
  const int dy = q == 0 || q == 1 ? 1 : -1;
  return (a.xPos == -dx && b.xPos == -dx) || (a.yPos == -dy && b.yPos == -dy);
}

// IN or OUT by one ray of slope s into quadrant q, UNKNOWN when it grazes a vertex.
ZBR_POLY_INSIDE CastRay(const ZBR_PT& pt, const Loop& loop, const std::vector<ZBR_POS_PT_PT>& pos, int q, double s, double eps) {
  int count = 0;
  const double c = pt.y() - s * pt.x();
  for (std::size_t i = 0, prev = loop.pt.size() - 1; i < loop.pt.size(); prev = i++) {
    if (CannotMeetRay(pos[prev], pos[i], q)) continue;
    const ZBR_PT& p0 = loop.pt[prev];
    const ZBR_PT& p1 = loop.pt[i];
    const double h0 = p0.y() - s * p0.x() - c;
    const double h1 = p1.y() - s * p1.x() - c;
    if (Within(h0, eps) || Within(h1, eps)) return ZBR_PI_UNKNOWN;
    if ((h0 < 0.0) == (h1 < 0.0)) continue;
    const double x = p0.x() + h0 / (h0 - h1) * (p1.x() - p0.x());
    const bool onRay = q == 0 || q == 3 ? x - eps > pt.x() : pt.x() - eps > x;
    if (onRay) ++count;
  }
  return count % 2 == 1 ? ZBR_PI_IN : ZBR_PI_OUT;
}

ZBR_POLY_INSIDE CastQuadrantRays(const ZBR_PT& pt, const Loop& loop, const std::vector<ZBR_POS_PT_PT>& pos, int q, const Tol& tol) {
  const double eps = std::abs(tol.eps * 1e-5);
  const double sign = q == 0 || q == 2 ? 1.0 : -1.0;
  for (int parts = 2; parts <= 32; parts *= 2) {
    for (int k = 1; k < parts; k += 2) {
      const ZBR_POLY_INSIDE r = CastRay(pt, loop, pos, q, sign * k / parts, eps);
      if (r != ZBR_PI_UNKNOWN) return r;
    }
  }
  return ZBR_PI_UNKNOWN;
}

}  // namespace

ZBR_POLY_INSIDE IsInside(const ZBR_PT& pt, const Loop& loop, std::vector<ZBR_POS_PT_PT>& pos, const Tol& tol) {
  if (loop.pt.size() < 3) return ZBR_PI_OUT;
  if (loop.xmin - tol.eps > pt.x() || loop.ymin - tol.eps > pt.y() || pt.x() - tol.eps > loop.xmax ||
      pt.y() - tol.eps > loop.ymax) {
    return ZBR_PI_OUT;
  }
  int q = 0;
  const int snapped = ClassifyVertices(pt, loop, pos, q, tol);
  if (snapped != kRaysDecide) return static_cast<ZBR_POLY_INSIDE>(snapped);
  for (int k = 0; k < 4; ++k) {
    const ZBR_POLY_INSIDE r = CastQuadrantRays(pt, loop, pos, (q + k) % 4, tol);
    if (r != ZBR_PI_UNKNOWN) return r;
  }
  return ZBR_PI_UNKNOWN;
}

}  // namespace literal
