// Telling at a glance that a triangle hides nothing of an edge.
//
// Of the triangles whose boxes meet an edge's, most leave it whole: they lie behind it, or beside it in projection. QuickLook says
// so only where every decision of the full rule is far from its tolerance, so that the full rule would say the same; in all other
// cases it asks for the full rule. The same goes for triangles that hide nothing but what others hide already. "Far" is a distance
// of twice the tolerance and, where a cut of the edge at a plane could bend the line on which the rule then decides, an angle of
// 1e-4: with coordinates up to 1000 and an edge longer than a millionth of its coordinates, a cut that leaves a ten-thousandth of
// the edge on either side bends it less than a tenth of that.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "hiddenline/interval.h"
#include "hiddenline/occlusion.h"

namespace zbr {

class QuickLook {
 public:
  QuickLook(const ZBR_PT3& p, const ZBR_PT3& q, double contact)
      : p_(p), q_(q), along_(q.xy() - p.xy()), length2_(along_.Length2()), contact_(contact) {
    const double size = std::max({std::fabs(p.x()), std::fabs(p.y()), std::fabs(q.x()), std::fabs(q.y())});
    reliable_ = size <= kLargestUsual && length2_ > kLeastLength * kLeastLength * (size * size);
    far2_ = length2_ * kFar2;
    farther2_ = length2_ * kClearAngle2;
  }

  // False when the edge certainly stays whole. front and on receive the ends of the edge in front of and on the triangle's plane,
  // unless both are in front. The rule on a triangle with coordinates beyond any drawing's (not of usual size) is as good as its
  // rounding, and nothing tells what it leaves.
  bool CanHide(const ZBR_HL_TRI& o, bool ofUsualSize, unsigned& front, unsigned& on) {
    apex_ = -1;
    double dp = o.normal.distance(p_);
    double dq = o.normal.distance(q_);
    if (o.clockwise) {
      dp = -dp;
      dq = -dq;
    }
    if (dp > contact_ && dq > contact_) return false;
    front = (dp > contact_ ? 1U : 0U) | (dq > contact_ ? 2U : 0U);
    on = (std::fabs(dp) <= contact_ ? 1U : 0U) | (std::fabs(dq) <= contact_ ? 2U : 0U);
    if (o.IsTriVertical()) return on == 3 && !IsLowerWall(p_, q_, o);
    if (front != 0 && on != 0) return false;
    if (!reliable_) return true;
    if (on == 3) return !IsOffTwoCorners(o);
    if (front != 0) {
      const double nearer = std::min(std::fabs(dp), std::fabs(dq));
      if (nearer < 2.0 * contact_ || nearer < kClearAngle * std::fabs(dp - dq)) return true;
    }
    return !IsBeside(o, front == 0 && length2_ > kFar2, ofUsualSize);
  }

  // Of the triangle last asked about, which can hide something: the vertex that the line of the edge clearly parts from the two
  // others, on whichever side of it those are; -1 where that is not clear.
  int apex() const { return apex_; }

  // Of the triangle last asked about, which can hide something: whether all of that is clearly hidden already, so that the full
  // rule would leave the visible parts as they are. The line of the edge has to cross two of its sides clearly, and in between is
  // all that it can hide. As the rule decides within the tolerance on which side of a side's line an end lies, it is up to the
  // tolerance wrong across that line, and along the edge more, the less the two are inclined.
  bool IsHiddenAlready(const ZBR_HL_TRI& o, const Intervals& visible) const {
    if (apex_ < 0 || IsWholeEdge(visible)) return false;
    const ZBR_PT& a = o.pt[apex_].xy();
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const int k : {(apex_ + 1) % 3, (apex_ + 2) % 3}) {
      const ZBR_PT side = o.pt[k].xy() - a;
      const double rise = crosses_[k] - crosses_[apex_];  // not 0, as the two lie on different sides
      const double at = along_.InnerProduct(a - p_.xy() - side * (crosses_[apex_] / rise)) / length2_;
      const double margin = kLeastPart + kWide * side.Length() / std::fabs(rise);
      low = std::min(low, at - margin);
      high = std::max(high, at + margin);
    }
    return std::all_of(visible.begin(), visible.end(),
                       [&](const ZBR_HL_INTERVAL& v) { return v.e.t - v.s.t > kLeastPart && (v.e.t < low || v.s.t > high); });
  }

 private:
  static constexpr double kOcclusionEps2 = kOcclusionEps * kOcclusionEps;
  static constexpr double kFar2 = 4.0 * kOcclusionEps * kOcclusionEps;
  static constexpr double kClearAngle = 1e-4;
  static constexpr double kClearAngle2 = 1e-8;
  static constexpr double kLeastLength = 1e-6;  // of an edge, in its coordinates
  static constexpr double kWide = 4.0 * kOcclusionEps;
  static constexpr double kLeastPart = 10.0 * kOcclusionEps;  // of an edge; the rule drops parts of less than a tenth of that

  // Of an edge in the plane of o: whether two corners are clearly off its line, so that it runs along none of the sides. Then it
  // stays, wherever it projects. Of 10,000 boxes a third of what the full rule was asked were halves of faces (bench_hidden).
  bool IsOffTwoCorners(const ZBR_HL_TRI& o) const {
    if (!(length2_ > kFar2)) return false;
    int off = 0;
    for (const ZBR_PT3& v : o.pt) {
      int side = 0;
      double c = 0.0;
      off += ClearSide(v.xy(), side, c) && side != 0 ? 1 : 0;
    }
    return off >= 2;
  }

  // Whether the stretch certainly projects outside o. Sets apex_ when it is as certain that its line runs through o. Where the rule
  // looks at the whole edge, sides of corners near its line are those that the rule itself finds: of boxes in a lattice seen along
  // a diagonal two fifths of what the full rule was asked touched a corner (bench_hidden, lattice:32).
  bool IsBeside(const ZBR_HL_TRI& o, bool isWhole, bool ofUsualSize) {
    unsigned left = 0;
    unsigned right = 0;
    bool areClear = true;
    for (unsigned k = 0; k < 3; ++k) {
      const ZBR_PT w = o.pt[k].xy() - p_.xy();
      const double c = crosses_[k] = Cross(along_, w);
      if (c * c > far2_ + farther2_ * w.Length2()) {
        left |= (c > 0.0 ? 1U : 0U) << k;
        right |= (c > 0.0 ? 0U : 1U) << k;
      } else if (!IsEnd(o.pt[k].xy())) {
        if (!isWhole) return false;
        areClear = false;
        if (c * c / length2_ > kOcclusionEps2) (c > 0.0 ? left : right) |= 1U << k;
      }
    }
    const unsigned off = left | right;
    if (left == 0 || right == 0) return (off & (off - 1U)) != 0 || (isWhole && off != 0 && IsApart(p_, q_, OppositeOf(off), o));
    if (off != 7 || !areClear || !ofUsualSize) return false;
    const unsigned alone = (left & (left - 1U)) == 0 ? left : right;
    const int apex = static_cast<int>(alone >> 1U);
    if (IsBeyondApex(o, apex)) return true;
    apex_ = apex;
    return false;
  }

  // The edge opposite the only vertex in the mask.
  static int OppositeOf(unsigned vertex) { return vertex == 1 ? 1 : vertex == 2 ? 2 : 0; }

  // The side of the edge's line on which v lies, 0 for an end of the edge itself; false when that is not clear.
  bool ClearSide(const ZBR_PT& v, int& side, double& c) const {
    const ZBR_PT w = v - p_.xy();
    c = Cross(along_, w);
    const double c2 = c * c;
    side = c > 0.0 ? 1 : -1;
    if (c2 > far2_ + farther2_ * w.Length2()) return true;
    side = 0;
    return IsEnd(v);
  }

  // The line of the edge passes between the apex and the other two vertices: whether the edge lies wholly beyond one of the two
  // sides that it crosses, which are then both on one hand of it.
  bool IsBeyondApex(const ZBR_HL_TRI& o, int apex) const {
    const ZBR_PT& a = o.pt[apex].xy();
    const ZBR_PT p = p_.xy() - a;
    const ZBR_PT q = q_.xy() - a;
    const int hand = ClearSideOfEnds(p, q, o.pt[apex == 2 ? 0 : apex + 1].xy() - a);
    return hand != 0 && ClearSideOfEnds(p, q, o.pt[apex == 0 ? 2 : apex - 1].xy() - a) == hand;
  }

  // The side of a line, from the point that p and q are given from, on which both clearly lie; 0 when they do not.
  static int ClearSideOfEnds(const ZBR_PT& p, const ZBR_PT& q, const ZBR_PT& line) {
    const double far2 = kFar2 * line.Length2();
    const double cp = Cross(line, p);
    const double cq = Cross(line, q);
    if (!(cp * cp > far2 && cq * cq > far2)) return 0;
    return cp > 0.0 && cq > 0.0 ? 1 : cp < 0.0 && cq < 0.0 ? -1 : 0;
  }

  bool IsEnd(const ZBR_PT& v) const { return AreIdentical(v, p_.xy()) || AreIdentical(v, q_.xy()); }

  const ZBR_PT3& p_;
  const ZBR_PT3& q_;
  ZBR_PT along_;
  double length2_;
  double contact_;
  bool reliable_;
  double far2_, farther2_;  // of cross products with the edge, squared: of points twice the tolerance away, and per distance
  // Of the triangle last asked about:
  int apex_ = -1;              // the vertex that the line of the edge parts from the others; -1: that is not clear
  double crosses_[3] = {0.0};  // of vertices: cross product with the edge
};

}  // namespace zbr
