// Dropping to a coordinate plane, and relations of spatial lines.
#include <cmath>

#include <zbr/spatial.h>

#include "core/spatial_inline.h"

ZBR_DROP_TYPE zbrDropType(const ZBR_PT3& n) {
  const double x = std::fabs(n.x());
  const double y = std::fabs(n.y());
  const double z = std::fabs(n.z());
  if (y > x) return z > y ? ZBR_DROP_Z : ZBR_DROP_Y;
  return z > x ? ZBR_DROP_Z : ZBR_DROP_X;
}

void zbrDropPt(ZBR_PT* out, const ZBR_PT3& p, ZBR_DROP_TYPE t) {
  switch (t) {
    case ZBR_DROP_X:
      out->Set(p.y(), p.z());
      break;
    case ZBR_DROP_Y:
      out->Set(p.z(), p.x());
      break;
    case ZBR_DROP_Z:
      out->Set(p.x(), p.y());
      break;
  }
}

ZBR_LL_RELATION zbrIsIntersect(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, ZBR_PT3* pa, ZBR_PT3* pb,
                               double* ta, double* tb) {
  const double eps2 = zbr::t_tolerance.eps2;
  const ZBR_PT3 dirA = a1 - a0;
  const ZBR_PT3 dirB = b1 - b0;
  const ZBR_PT3 between = b0 - a0;
  const ZBR_PT3 normal = dirA.OuterProduct(dirB);
  const double normal2 = normal.Length2();
  if (zbr::WithinTol(normal2, eps2)) {
    const ZBR_PT3 dir = zbr::WithinTol(dirB.Length2(), eps2) ? dirA : dirB;
    return zbr::WithinTol(dir.OuterProduct(between).Length2(), eps2) ? ZBR_LL_SAME : ZBR_LL_PARALLEL;
  }
  const double atA = between.InnerProduct(dirB.OuterProduct(normal)) / normal2;
  const double atB = between.InnerProduct(dirA.OuterProduct(normal)) / normal2;
  const ZBR_PT3 nearA = a0 + dirA * atA;
  const ZBR_PT3 nearB = b0 + dirB * atB;
  if (ta != nullptr) *ta = atA;
  if (tb != nullptr) *tb = atB;
  if (pa != nullptr) *pa = nearA;
  if (pb != nullptr) *pb = nearB;
  return zbr::SamePoint(nearA, nearB, eps2) ? ZBR_LL_CROSS : ZBR_LL_SKEW;
}

double zbrGetOnLineParameter(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b) {
  const ZBR_PT3 d = b - a;
  return d.InnerProduct(p - a) / d.InnerProduct(d);
}

ZBR_PT3 zbrGetOnLinePt(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b) {
  return a + (b - a) * zbrGetOnLineParameter(p, a, b);
}

bool zbrIsOnSeg(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b, ZBR_PT3* foot, double* t) {
  const double eps2 = zbr::t_tolerance.eps2;
  if (zbr::SamePoint(a, b, eps2)) return zbr::SamePoint(p, a, eps2) && zbr::SamePoint(p, b, eps2);
  const double at = zbrGetOnLineParameter(p, a, b);
  const ZBR_PT3 nearest = a + (b - a) * at;
  const bool isWithin = zbr::SamePoint(nearest, a, eps2) || zbr::SamePoint(nearest, b, eps2) || (0.0 < at && at < 1.0);
  const bool isOn = isWithin && zbr::SamePoint(p, nearest, eps2);
  if (t != nullptr) *t = at;
  if (foot != nullptr) *foot = nearest;  // which may be one of the points that were asked about
  return isOn;
}
