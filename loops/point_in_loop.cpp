// Where a point lies relative to a ring.
//
// Idea: snap first, then count. The point is compared with every vertex and edge under the ordinary tolerance; only a point that
// is on none of them goes on to ray casting, where the parity of the edges met tells inside from outside.
// Difficulty: a ray that passes a vertex counts one edge or two, depending on rounding. So no such ray is used: a ray that comes
// close to a vertex is given up and the next slope is tried, 31 of them in each of four quadrants. "Close" is 1e-5 of the
// snapping tolerance, which keeps abandoned rays rare and still leaves room for rounding: the point is known to be farther from
// every edge than the full tolerance.
// Way taken: vertices are classified once, per axis, into less / equal / greater. Edges then fall away by comparing two small
// integers, and rays go into the quadrant with the fewest vertices, where the fewest edges are left.
#include "loops/point_in_loop.h"

#include <array>

#include "core/constants.h"
#include "core/planar_inline.h"

namespace zbr {

namespace {

constexpr int kRaySlopes = 31;

// Slope magnitudes in the order they are tried: a half, quarters, ... odd thirty-seconds.
double RaySlope(int k) {
  int denominator = 2;
  for (; k >= denominator / 2; denominator *= 2) k -= denominator / 2;
  return static_cast<double>(2 * k + 1) / denominator;
}

// What vertices and edges say about the point: on one of them, or else the quadrant into which rays are cast first.
struct Snap {
  ZBR_POLY_INSIDE on = ZBR_PI_UNKNOWN;  // ZBR_PI_ON_VERTEX, ZBR_PI_ON_EDGE or, if on neither, ZBR_PI_UNKNOWN
  int quadrant = 0;
};

int EmptiestQuadrant(const std::array<std::size_t, 4>& counts) {
  return static_cast<int>(std::min_element(counts.begin(), counts.end()) - counts.begin());
}

Snap ClassifyVertices(const ZBR_PT& p, std::span<const ZBR_PT> ring, double eps, ZBR_POS_PT_PT* pos, std::size_t& used) {
  std::array<std::size_t, 4> counts{};
  for (used = 0; used < ring.size(); ++used) {
    const ZBR_POS_PT_PT at = PositionOf(ring[used], p, eps);
    if (at.xPos == 0 && at.yPos == 0) return {ZBR_PI_ON_VERTEX, 0};
    if (at.xPos != 0 && at.yPos != 0) ++counts[at.yPos > 0 ? (at.xPos > 0 ? 0 : 1) : (at.xPos > 0 ? 3 : 2)];
    pos[used] = at;
  }
  std::size_t prev = ring.size() - 1;
  for (std::size_t cur = 0; cur < ring.size(); prev = cur++) {
    if (IsBesidePoint(pos[prev], pos[cur])) continue;
    if (IsOnSegment(p, ring[prev], ring[cur], eps * eps, nullptr, nullptr)) return {ZBR_PI_ON_EDGE, 0};
  }
  return {ZBR_PI_UNKNOWN, EmptiestQuadrant(counts)};
}

// Casts one ray of slope s into quadrant q. ZBR_PI_UNKNOWN when it grazes a vertex.
ZBR_POLY_INSIDE CastRay(const ZBR_PT& p, std::span<const ZBR_PT> ring, const ZBR_POS_PT_PT* pos, int q, double s, double rayEps) {
  const double c = p.y() - s * p.x();
  const bool forward = QuadrantX(q) > 0;
  bool odd = false;
  std::size_t prev = ring.size() - 1;
  for (std::size_t cur = 0; cur < ring.size(); prev = cur++) {
    if (IsBehindQuadrant(pos[prev], pos[cur], q)) continue;
    const ZBR_PT& u = ring[prev];
    const ZBR_PT& v = ring[cur];
    const double h0 = u.y() - s * u.x() - c;
    const double h1 = v.y() - s * v.x() - c;
    if (WithinTol(h0, rayEps) || WithinTol(h1, rayEps)) return ZBR_PI_UNKNOWN;
    if ((h0 > 0.0) == (h1 > 0.0)) continue;
    const double x = u.x() + h0 / (h0 - h1) * (v.x() - u.x());
    if (forward ? x - rayEps > p.x() : p.x() - rayEps > x) odd = !odd;
  }
  return odd ? ZBR_PI_IN : ZBR_PI_OUT;
}

ZBR_POLY_INSIDE CastQuadrantRays(const ZBR_PT& p, std::span<const ZBR_PT> ring, const ZBR_POS_PT_PT* pos, int q, double rayEps) {
  const double sign = QuadrantX(q) == QuadrantY(q) ? 1.0 : -1.0;
  for (int k = 0; k < kRaySlopes; ++k) {
    const ZBR_POLY_INSIDE found = CastRay(p, ring, pos, q, sign * RaySlope(k), rayEps);
    if (found != ZBR_PI_UNKNOWN) return found;
  }
  return ZBR_PI_UNKNOWN;
}

}  // namespace

ZBR_POLY_INSIDE PointInRing(const ZBR_PT& p, std::span<const ZBR_PT> ring, double eps, ZBR_POS_PT_PT* pos, std::size_t& used) {
  const Snap snap = ClassifyVertices(p, ring, eps, pos, used);
  if (snap.on != ZBR_PI_UNKNOWN) return snap.on;
  const double rayEps = std::fabs(eps * kRayEpsScale);
  for (int k = 0; k < 4; ++k) {
    const ZBR_POLY_INSIDE found = CastQuadrantRays(p, ring, pos, (snap.quadrant + k) % 4, rayEps);
    if (found != ZBR_PI_UNKNOWN) return found;
  }
  return ZBR_PI_UNKNOWN;
}

}  // namespace zbr

ZBR_POLY_INSIDE zbrIsInside(const ZBR_PT& pt, ZBR_LOOP& loop, std::vector<ZBR_POS_PT_PT>& pos) {
  if (loop.pt().size() < 3) return ZBR_PI_OUT;
  loop.Setup();
  const double eps = zbr::t_tolerance.eps;
  if (zbr::IsOutsideBox(pt, zbr::BoxOf(loop), eps)) return ZBR_PI_OUT;
  std::size_t used = 0;
  pos.resize(loop.pt().size());
  const ZBR_POLY_INSIDE found = zbr::PointInRing(pt, loop.pt(), eps, pos.data(), used);
  pos.resize(used);
  return found;
}
