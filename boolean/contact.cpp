// The contacts near vertices and along lines, told apart under the tolerance.
//
// Difficulty: a meeting at a vertex belongs to two edges of A and two of B and must not be found four times. So every contact has
// one owner. What lies on a vertex of A belongs to the corner there: the edge that arrives leaves it to the next corner. An end of
// B's edge on the open edge E counts at its start only (0 <= t < 1). One doubling is wanted: a vertex of B on A is found from both
// edges of B that meet there, once arriving and once leaving; equal directions then tell a passage from a touch.
//
// The cases, first match wins; posQ is the side of the corner (which of A's sides, with both its edges), lineQ of E's line alone:
//
//   StartOnCorner   q0 on cur          by posQ1
//   EndOnCorner     q1 on cur          by posQ0
//   CornerOnEdge    cur inside q0-q1   by both; same side or both on A: a touch
//   NextOnEnd       q0 or q1 on next   left to the next corner
//   StartOnEdge     q0 on E's line     by lineQ1        q1 left of E           q1 /
//   EndOnEdge       q1 on E's line     by lineQ0        B goes to the left:      /
//   Proper          otherwise          by the turn                     cur --- q0 ----> next
//
// At a vertex where A doubles back on itself A has no sides; the first three cases record nothing there. An edge of A at the corner
// with both ends on the line of q0-q1 lies on it, whichever is longer.
#include "boolean/contact.h"

namespace zbr {

namespace {

constexpr int kDoublesBack = -4;  // both sides get it, so MeetAtCorner finds no difference

ZBR_CROSS_DIR LeftIf(bool left) {
  return left ? ZBR_CROSS_TO_LEFT : ZBR_CROSS_TO_RIGHT;
}

}  // namespace

// Side of the corner on which q lies. Which sides of the two edge lines is of no interest here.
int Corner::SideOf(const ZBR_PT& q, const ZBR_PT& q0, const ZBR_PT& q1) {
  if (!isPrepared_) MakeCorner(prev_, cur_, next_, eps2_, info_);
  isPrepared_ = true;
  int prevLine = 0;
  int nextLine = 0;
  // On which side of a short edge the far end of a long one lies, would depend on the noise of the short one: a rounded vertex can
  // turn it by more than the tolerance there. So what lies on the line of q0-q1 is taken out first.
  ZBR_3PT_INFO info = info_;
  if (SideOfLine(prev_, q0, q1, eps2_) == 0) info.invLen2Prev = 0.0;
  if (SideOfLine(next_, q0, q1, eps2_) == 0) info.invLen2Next = 0.0;
  return SideOfCorner(q, prev_, cur_, next_, info, eps2_, prevLine, nextLine);
}

// What is within kSurelyOn tolerances is on, what is farther than kSurelyOff is not, whoever asks and however it is computed.
// Between them a point can be on a line and not on the vertex where the line ends, or on one edge and not on the next.
void Corner::DoubtVertex(const ZBR_PT& p, const ZBR_PT& q) {
  const double distance2 = p.Distance2(q);
  if (!(distance2 < kSurelyApart * kSurelyApart * eps2_)) return;
  hasContact_ = true;
  if (distance2 > least2_) isDoubtful_ = true;
}

// Beyond the edge's ends its vertices are asked.
void Corner::DoubtEdge(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b) {
  const ZBR_PT d = b - a;
  const ZBR_PT w = p - a;
  const double length2 = d.Length2();
  const double side = zbr::Cross(d, w);
  if (!(side * side < kSurelyOff * kSurelyOff * eps2_ * length2)) return;
  const double along = d.InnerProduct(w);
  if (!(along > 0.0 && along < length2)) return;
  hasContact_ = true;
  if (side * side > least2_ * length2) isDoubtful_ = true;
}

void Corner::Doubt(const ZBR_PT& q0, const ZBR_PT& q1) {
  if (isDoubtful_) return;
  DoubtVertex(cur_, q0);
  DoubtVertex(cur_, q1);
  DoubtVertex(next_, q0);
  DoubtVertex(next_, q1);
  DoubtEdge(q0, cur_, next_);
  DoubtEdge(q1, cur_, next_);
  DoubtEdge(cur_, q0, q1);
  DoubtEdge(next_, q0, q1);
}

bool Corner::MeetClosely(const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) {
  Doubt(q0, q1);
  if (SamePoint(cur_, q0, eps2_)) {  // StartOnCorner
    const int posQ1 = SideOf(q1, q0, q1);
    if (posQ1 == 0 || posQ1 == kDoublesBack) return false;
    contact = {cur_, 0.0, 0.0, LeftIf(posQ1 == 1)};
    return true;
  }
  if (SamePoint(cur_, q1, eps2_)) {  // EndOnCorner
    const int posQ0 = SideOf(q0, q0, q1);
    if (posQ0 == 0 || posQ0 == kDoublesBack) return false;
    contact = {cur_, 0.0, 1.0, LeftIf(posQ0 != 1)};
    return true;
  }
  if (SideOfLine(cur_, q0, q1, eps2_) == 0) {
    const double t = ParamOnLine(cur_, q0, q1);
    if (0.0 <= t && t <= 1.0) return MeetAtCorner(t, q0, q1, contact);  // CornerOnEdge
  }
  if (SamePoint(next_, q0, eps2_) || SamePoint(next_, q1, eps2_)) return false;  // NextOnEnd
  const double invLen2 = 1.0 / edge_.Length2();
  const int lineQ0 = SideOfLine(q0, cur_, next_, invLen2, eps2_);
  const int lineQ1 = SideOfLine(q1, cur_, next_, invLen2, eps2_);
  if (lineQ0 == 0 || lineQ1 == 0) return MeetOnEdge(q0, q1, lineQ0, lineQ1, contact);  // StartOnEdge, EndOnEdge
  return SideOfLine(next_, q0, q1, eps2_) != 0 && Cross(q0, q1, contact);              // Proper
}

bool Corner::MeetAtCorner(double t, const ZBR_PT& q0, const ZBR_PT& q1, Contact& contact) {
  const int posQ0 = SideOf(q0, q0, q1);
  const int posQ1 = SideOf(q1, q0, q1);
  if (posQ0 == posQ1) return false;
  // From the right or, if q0 is on A, to the left.
  contact = {cur_, 0.0, t, LeftIf(posQ0 == -1 || (posQ0 == 0 && posQ1 == 1))};
  return true;
}

bool Corner::MeetOnEdge(const ZBR_PT& q0, const ZBR_PT& q1, int lineQ0, int lineQ1, Contact& contact) const {
  const bool isStart = lineQ0 == 0;
  const ZBR_PT& q = isStart ? q0 : q1;
  const int other = isStart ? lineQ1 : lineQ0;
  const double t = ParamOnLine(q, cur_, next_);
  if (!(0.0 <= t && t < 1.0) || other == 0) return false;
  contact = {q, t, isStart ? 0.0 : 1.0, LeftIf(isStart ? other == 1 : other == -1)};
  return true;
}

}  // namespace zbr
