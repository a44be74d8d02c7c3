// Telling at a glance that a triangle hides nothing of an edge.
//
// Of the triangles whose boxes meet an edge's, most leave it whole: they lie behind it, or beside it in projection. QuickLook says
// so only where every decision of the full rule is far from its tolerance, so that the full rule would say the same; in all other
// cases it asks for the full rule. "Far" is a distance of twice the tolerance and, where a cut of the edge at a plane could bend
// the line on which the rule then decides, an angle of 1e-4: with coordinates up to 1000 and an edge longer than a millionth of its
// coordinates, a cut that leaves a ten-thousandth of the edge on either side bends it less than a tenth of that.
#pragma once

#include <algorithm>
#include <cmath>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "hiddenline/occlusion.h"

namespace zbr {

class QuickLook {
 public:
  QuickLook(const ZBR_PT3& p, const ZBR_PT3& q, double contact)
      : p_(p), q_(q), along_(q.xy() - p.xy()), length2_(along_.Length2()), contact_(contact) {
    const double size = std::max({std::fabs(p.x()), std::fabs(p.y()), std::fabs(q.x()), std::fabs(q.y())});
    reliable_ = size <= kLargestSize && length2_ > kLeastLength * kLeastLength * (size * size);
  }

  // False when the edge certainly stays whole. front and on receive the ends of the edge in front of and on the triangle's plane.
  bool CanHide(const ZBR_HL_TRI& o, unsigned& front, unsigned& on) const {
    double dp = o.normal.distance(p_);
    double dq = o.normal.distance(q_);
    if (o.clockwise) {
      dp = -dp;
      dq = -dq;
    }
    front = (dp > contact_ ? 1U : 0U) | (dq > contact_ ? 2U : 0U);
    on = (std::fabs(dp) <= contact_ ? 1U : 0U) | (std::fabs(dq) <= contact_ ? 2U : 0U);
    if (o.IsTriVertical()) return on == 3;
    if (front == 3 || (front != 0 && on != 0)) return false;
    if (!reliable_ || on == 3) return true;
    if (front != 0) {
      const double nearer = std::min(std::fabs(dp), std::fabs(dq));
      if (nearer < 2.0 * contact_ || nearer < kClearAngle * std::fabs(dp - dq)) return true;
    }
    return !IsBeside(o);
  }

 private:
  static constexpr double kFar2 = 4.0 * kOcclusionEps * kOcclusionEps;
  static constexpr double kClearAngle = 1e-4;
  static constexpr double kClearAngle2 = 1e-8;
  static constexpr double kLargestSize = 1e3;
  static constexpr double kLeastLength = 1e-6;  // of an edge, in its coordinates

  // Whether the stretch certainly projects outside o.
  bool IsBeside(const ZBR_HL_TRI& o) const {
    int sides[3];
    int sum = 0;
    int off = 0;
    for (int k = 0; k < 3; ++k) {
      if (!ClearSide(o.pt[k].xy(), sides[k])) return false;
      sum += sides[k];
      off += sides[k] * sides[k];
    }
    if (sum == off || sum == -off) return off >= 2;
    return off == 3 && IsBeyondApex(o, sides[0] == sides[1] ? 2 : sides[0] == sides[2] ? 1 : 0);
  }

  // The side of the edge's line on which v lies, 0 for an end of the edge itself; false when that is not clear.
  bool ClearSide(const ZBR_PT& v, int& side) const {
    const ZBR_PT w = v - p_.xy();
    const double c = Cross(along_, w);
    const double c2 = c * c;
    side = c > 0.0 ? 1 : -1;
    if (c2 > length2_ * (kFar2 + kClearAngle2 * w.Length2())) return true;
    side = 0;
    return IsExactly(v, p_.xy()) || IsExactly(v, q_.xy());
  }

  // The line of the edge passes between the apex and the other two vertices: whether the edge lies wholly beyond one of the two
  // sides that it crosses.
  bool IsBeyondApex(const ZBR_HL_TRI& o, int apex) const {
    const ZBR_PT& a = o.pt[apex].xy();
    const ZBR_PT* after = &o.pt[(apex + 1) % 3].xy();
    const ZBR_PT* before = &o.pt[(apex + 2) % 3].xy();
    if (o.clockwise) std::swap(after, before);
    const int beyondAfter = ClearSideOfEnds(a, *after);
    return beyondAfter != 0 && ClearSideOfEnds(*before, a) == -beyondAfter;
  }

  // The side of the line a->b on which both ends of the edge clearly lie; 0 when they do not.
  int ClearSideOfEnds(const ZBR_PT& a, const ZBR_PT& b) const {
    const ZBR_PT line = b - a;
    const double far2 = kFar2 * line.Length2();
    const double cp = Cross(line, p_.xy() - a);
    const double cq = Cross(line, q_.xy() - a);
    if (!(cp * cp > far2 && cq * cq > far2)) return 0;
    return cp > 0.0 && cq > 0.0 ? 1 : cp < 0.0 && cq < 0.0 ? -1 : 0;
  }

  static bool IsExactly(const ZBR_PT& a, const ZBR_PT& b) { return a.x() == b.x() && a.y() == b.y(); }

  const ZBR_PT3& p_;
  const ZBR_PT3& q_;
  ZBR_PT along_;
  double length2_;
  double contact_;
  bool reliable_;
};

}  // namespace zbr
