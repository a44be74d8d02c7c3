// How one corner of A, with the edge that leaves it, meets one edge of B.
#pragma once

#include <cmath>

#include <zbr/boolean.h>

#include "core/box.h"
#include "core/constants.h"
#include "core/planar_inline.h"

namespace zbr {

// A meeting that is recorded: where, at which parameters of the two edges, and in which direction B passes.
struct Contact {
  ZBR_PT pt;
  double tA;
  double tB;
  ZBR_CROSS_DIR dir;
};

// The corner prev->cur->next of A; E is the edge cur->next.
//
// Most edges of B either miss E or cross it in the open, far from every vertex. MeetInTheOpen settles those with four cross
// products; whatever comes near a vertex or a line goes to MeetClosely, where the cases are told apart under the tolerance.
class Corner {
 public:
  // What is nearer than surelyOn, in tolerances, is on: see kSurelyOn.
  Corner(const ZBR_PT& prev, const ZBR_PT& cur, const ZBR_PT& next, double eps2, double surelyOn)
      : prev_(prev),
        cur_(cur),
        next_(next),
        edge_(next - cur),
        eps2_(eps2),
        least2_(surelyOn * surelyOn * eps2),
        clear_(kClearFactor * eps2 * edge_.Length2()) {}

  // Whether some edge met so far came so close to what the tolerance says that other cases, looking at the same place, may see it
  // otherwise.
  bool isDoubtful() const { return isDoubtful_; }
  // Whether some edge met so far came that close, or closer.
  bool hasContact() const { return hasContact_; }

  // At most one contact of the edge q0->q1 of B, which has two different ends.
  bool Meet(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) {
    switch (MeetInTheOpen(q0, q1, contact)) {
      case Outcome::kNothing:
        return false;
      case Outcome::kContact:
        return true;
      case Outcome::kUnsettled:
        break;
    }
    return MeetClosely(q0, q1, contact);
  }

 private:
  enum class Outcome { kNothing, kContact, kUnsettled };

  // Squared clearance from a line, in units of eps2, beyond which no case of MeetClosely can apply: a point that counts as on a
  // line or on a vertex is within sqrt(2) eps of it.
  static constexpr double kClearFactor = 4.0;
  // Share of the products' size that a cross product must exceed for its sign, and that of sums with it, to be certain.
  static constexpr double kSignCertain = 1e-14;

  Outcome MeetInTheOpen(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) const;
  bool MeetClosely(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact);
  void Doubt(const ZBR_PT& q0, const ZBR_PT& q1);
  void DoubtVertex(const ZBR_PT& p, const ZBR_PT& q);
  void DoubtEdge(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b);
  bool MeetAtCorner(double t, const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact);
  bool MeetOnEdge(const ZBR_PT& q0, const ZBR_PT& q1, int lineQ0, int lineQ1, Contact& contact) const;
  bool Cross(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) const;
  int SideOf(const ZBR_PT& q, const ZBR_PT& q0, const ZBR_PT& q1);

  ZBR_PT prev_;
  ZBR_PT cur_;
  ZBR_PT next_;
  ZBR_PT edge_;
  double eps2_;
  double least2_;  // squared distance up to which contacts are certain
  double clear_;
  ZBR_3PT_INFO info_;  // made on first need
  bool isPrepared_ = false;
  bool isDoubtful_ = false;
  bool hasContact_ = false;
};

// The proper crossing of E with q0->q1, if the parameters say so.
inline bool Corner::Cross(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) const {
  const ZBR_PT b = q1 - q0;
  const ZBR_PT w = cur_ - q0;
  const double d = zbr::Cross(b, edge_);
  if (std::fabs(d) <= eps2_) return false;
  const double tA = zbr::Cross(w, b) / d;
  const double tB = zbr::Cross(w, edge_) / d;
  if (!(0.0 <= tA && tA <= 1.0 && 0.0 <= tB && tB <= 1.0)) return false;
  contact = {cur_ + edge_ * tA, tA, tB, d >= 0.0 ? ZBR_CROSS_TO_RIGHT : ZBR_CROSS_TO_LEFT};
  return true;
}

inline Corner::Outcome Corner::MeetInTheOpen(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) const {
  const ZBR_PT w0 = q0 - cur_;
  const ZBR_PT w1 = q1 - cur_;
  const double p0 = edge_.x() * w0.y();
  const double m0 = edge_.y() * w0.x();
  const double p1 = edge_.x() * w1.y();
  const double m1 = edge_.y() * w1.x();
  const double c0 = p0 - m0;
  const double c1 = p1 - m1;
  const double certain = kSignCertain * (std::fabs(p0) + std::fabs(m0) + std::fabs(p1) + std::fabs(m1));
  const double least = std::min(std::fabs(c0), std::fabs(c1));
  // Negated so that NaN counts as unclear.
  if (!(least > certain && least * least > clear_)) return Outcome::kUnsettled;
  if ((c0 > 0.0) == (c1 > 0.0)) return Outcome::kNothing;

  const ZBR_PT b = q1 - q0;
  const double limit = kClearFactor * eps2_ * b.Length2();
  const double e0 = zbr::Cross(b, cur_ - q0);
  const double e1 = zbr::Cross(b, next_ - q0);
  if (!(e0 * e0 > limit && e1 * e1 > limit)) return Outcome::kUnsettled;
  return Cross(q0, q1, contact) ? Outcome::kContact : Outcome::kNothing;
}

}  // namespace zbr
