// Three-point relations: the turn at a vertex, and the side of a corner on which a point lies.
//
// Inside a convex corner is left of both edges, inside a reflex one is left of either. The lines of the edges reach beyond the
// corner point, so a point on one line needs a second look: at an acute corner it may lie past the tip, on neither edge.
#include <zbr/planar.h>

#include "core/constants.h"
#include "core/planar_inline.h"

namespace zbr {

namespace {

// p lies on the line of p0->p1; whether it is past the corner point p1 on both edge lines of an acute corner.
bool IsPastTip(const ZBR_PT& p, const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_3PT_INFO& info, double eps2) {
  return info.cosA < 0.0 && !SamePoint(p, p1, eps2) && ParamOnLine(p, p0, p1) >= 1.0 && ParamOnLine(p, p2, p1) >= 1.0;
}

}  // namespace

void MakeCorner(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, double eps2, ZBR_3PT_INFO& info) {
  const ZBR_PT d1 = p1 - p0;
  const ZBR_PT d2 = p2 - p1;
  const double len1 = d1.Length2();
  const double len2 = d2.Length2();
  if (WithinTol(len1, eps2)) {
    info.state = -2;
    return;
  }
  if (WithinTol(len2, eps2)) {
    info.state = -3;
    return;
  }
  info.invLen2Prev = 1.0 / len1;
  info.invLen2Next = 1.0 / len2;
  const ZBR_PT u1 = Unit(d1, kMinNormalizeLength);
  const ZBR_PT u2 = Unit(d2, kMinNormalizeLength);
  info.sinA = Cross(u1, u2);
  info.cosA = u1.InnerProduct(u2);
  info.isConvex = info.sinA >= 0.0;
  // The sine is compared with eps2 on purpose: only edges parallel to within eps2 radians count as a reversal.
  info.state = WithinTol(info.sinA, eps2) && info.cosA < 0.0 ? -4 : 0;
}

int SideOfCorner(const ZBR_PT& p, const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_3PT_INFO& info, double eps2,
                 int& side1, int& side2) {
  if (info.state != -2) side1 = SideOfLine(p, p0, p1, info.invLen2Prev, eps2);
  if (info.state != -3) side2 = SideOfLine(p, p1, p2, info.invLen2Next, eps2);
  if (info.state != 0) return info.state;
  // `out` is the side on which a single edge decides, `in` needs both; the reflex corner mirrors the convex one.
  const int out = info.isConvex ? -1 : 1;
  const int in = -out;
  if (side1 == out || side2 == out) return out;
  if (side1 == in) return side2 == in ? in : 0;
  if (side2 != in && IsPastTip(p, p0, p1, p2, info, eps2)) return out;
  return 0;
}

}  // namespace zbr

int ZBR_PT::Get3PtInfo(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, ZBR_3PT_INFO& info) {
  zbr::MakeCorner(p0, p1, p2, zbr::t_tolerance.eps2, info);
  return info.state;
}

int ZBR_PT::CheckPos(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_3PT_INFO& info, int& side1, int& side2) const {
  return zbr::SideOfCorner(*this, p0, p1, p2, info, zbr::t_tolerance.eps2, side1, side2);
}

int ZBR_PT::CheckPos(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, int& side1, int& side2) const {
  ZBR_3PT_INFO info;
  if (Get3PtInfo(p0, p1, p2, info) != 0) return info.state;
  return CheckPos(p0, p1, p2, info, side1, side2);
}
