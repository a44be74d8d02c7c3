// The tolerant planar decisions, inline and with the tolerance passed in, for the library's inner loops.
//
// The exported members of ZBR_PT and the free functions of planar.h are these, with the thread's tolerance. All are computed in the
// order written: regrouping a sum or sharing a quotient would change results in the last bit, and with them decisions.
#pragma once

#include <cmath>

#include <zbr/planar.h>

#include "core/tolerance_state.h"

namespace zbr {

// Equality of points: squared distance within eps2.
inline bool SamePoint(const ZBR_PT& p, const ZBR_PT& q, double eps2) {
  return WithinTol(p.Distance2(q), eps2);
}

// Equality of coordinates, whatever the tolerance is: a closing point that repeats the first, copies of rings.
inline bool AreIdentical(const ZBR_PT& p, const ZBR_PT& q) {
  return p.x() == q.x() && p.y() == q.y();
}

// From left to right, and from the lowest to the highest at one x.
inline bool IsLess(const ZBR_PT& p, const ZBR_PT& q) {
  return p.x() != q.x() ? p.x() < q.x() : p.y() < q.y();
}

inline double Cross(const ZBR_PT& u, const ZBR_PT& v) {
  return u.x() * v.y() - u.y() * v.x();
}

// Side of the line through a with direction d (squared length given as a divisor or as a reciprocal): c*c / |d|^2 is the squared
// distance of p from the line.
inline int SideOfLine(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double eps2) {
  const ZBR_PT d = b - a;
  const double len2 = d.Length2();
  if (WithinTol(len2, eps2)) return -2;
  const double c = Cross(d, p - a);
  if (c * c / len2 > eps2) return c > 0.0 ? 1 : -1;
  return 0;
}

inline int SideOfLine(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double invLen2, double eps2) {
  const double c = Cross(b - a, p - a);
  if (c * c * invLen2 > eps2) return c > 0.0 ? 1 : -1;
  return 0;
}

// Parameter of p along a->b on the longer axis.
inline double ParamOnLine(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b) {
  const double dx = b.x() - a.x();
  const double dy = b.y() - a.y();
  return std::fabs(dx) >= std::fabs(dy) ? (p.x() - a.x()) / dx : (p.y() - a.y()) / dy;
}

inline ZBR_PT Unit(const ZBR_PT& v, double minLength) {
  const double len = v.Length();
  return len < minLength ? ZBR_PT(0.0, 0.0) : v / len;
}

// Point on segment; `foot` and `t` may be null.
bool IsOnSegment(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double eps2, ZBR_PT* foot, double* t);

// The corner p0->p1->p2 and the position of a point relative to it.
void MakeCorner(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, double eps2, ZBR_3PT_INFO& info);
int SideOfCorner(const ZBR_PT& p, const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_3PT_INFO& info, double eps2,
                 int& side1, int& side2);

}  // namespace zbr
