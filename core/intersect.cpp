// Intersection of two lines, and the tolerant test of a point against a segment.
#include <zbr/planar.h>

#include "core/planar_inline.h"

namespace zbr {

bool IsOnSegment(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double eps2, ZBR_PT* foot, double* t) {
  const ZBR_PT d = b - a;
  const double len2 = d.Length2();
  if (WithinTol(len2, eps2)) return SamePoint(p, a, eps2);
  if (SideOfLine(p, a, b, eps2) != 0) return false;
  const double s = (p - a).InnerProduct(d) / len2;
  const ZBR_PT f = a + d * s;
  const bool isWithin = SamePoint(f, a, eps2) || SamePoint(f, b, eps2) || (0.0 < s && s < 1.0);
  const bool isOn = isWithin && SamePoint(p, f, eps2);
  if (t != nullptr) *t = s;
  if (foot != nullptr) *foot = f;  // which may be one of the points that were asked about
  return isOn;
}

}  // namespace zbr

bool zbrIsIntersect(const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_PT& p3, const ZBR_PT& p4, double* t, double* u, double* det) {
  const ZBR_PT d1 = p2 - p1;
  const ZBR_PT d2 = p3 - p4;
  const ZBR_PT w = p1 - p3;
  const double c = zbr::Cross(d1, d2);
  if (det != nullptr) *det = -c;
  if (zbr::WithinTol(c, zbr::t_tolerance.eps2)) return false;
  *t = (w.y() * d2.x() - w.x() * d2.y()) / c;
  *u = (w.x() * d1.y() - w.y() * d1.x()) / c;
  return true;
}

bool zbrIsOnSeg(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, ZBR_PT* foot, double* t) {
  return zbr::IsOnSegment(p, a, b, zbr::t_tolerance.eps2, foot, t);
}
