// What one triangle hides of another's edges.
//
// A stretch of an edge is hidden by a triangle when its projection lies inside the triangle's and it lies behind the triangle's
// plane. So the edge is cut at the plane; the part in front stays; of the part behind (or in the plane) stays what projects
// outside.
//
// Outside is found without clipping against three sides: the line of the edge separates one vertex, the apex, from the other two
// (or misses the triangle), so it enters and leaves through the two sides at the apex, and the parts right of either side (of a
// counter-clockwise triangle) are the two parts outside. A vertex exactly on the line makes no third case: vertex 0 serves as the
// apex unless it is itself the one on the line, in which case vertex 1 does; both of the apex's sides are then crossed, one of them
// at the vertex.
//
// The cases; tests carry the same labels.
//
//   of the edge and the plane                       of the stretch in projection
//   OutOfReach  boxes apart, or o wholly below      Beside      no vertex of o on one side: all of it is outside
//   InFront     no end behind, one in front         AlongEdge   two vertices on its line: coplanar.cpp
//   OnWall      both on a vertical plane            InPlane     both ends on o's plane: it stays
//   Across      cut; the part behind goes on        Touch       one vertex on its line, the others on one side
//   Behind      all goes on, as if both are on      Apex        it enters and leaves at the apex's sides
//
// Results are lists over the whole edge, so that the order in which triangles are taken does not matter: lists are intersected.
// Parameters of a cut stretch are mapped back to the edge at its cut end only; the other end then reaches into the part in front,
// which is visible anyway, and the clean-up joins the two.
#include "hiddenline/occlusion.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/constants.h"
#include "core/small_sort.h"
#include "core/spatial_inline.h"
#include "core/tolerance_state.h"

namespace zbr {
namespace {

using PtLin = ZBR_HL_INTERVAL::PT_LIN;

// A stretch of an edge to be tested in projection.
struct Stretch {
  const PtLin& s;
  const PtLin& e;
  bool fromStart;  // s is the start of the edge, so that e may be cut; else s is cut and e is the edge's end
  bool coplanar;   // the edge lies in the occluder's plane

  // Appends r, given with parameters along the stretch.
  void Append(ZBR_HL_INTERVAL r, Intervals& out) const {
    double& t = r.s.t != 0.0 ? r.s.t : r.e.t;
    t = fromStart ? t * e.t : (1.0 - s.t) * t + s.t;
    out.push_back(r);
  }
  void AppendWhole(Intervals& out) const { out.emplace_back(s, e); }
};

// The part of p-q right of the projected line a->b.
bool RightOfLine(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b, ZBR_HL_INTERVAL& r) {
  const Tolerance& tol = t_tolerance;
  r.Set(p, q, 0.0, 1.0);
  if (SamePoint(a, b, tol.eps2)) return true;
  const int sideP = SideOfLineXY(p, a, b, tol.eps2);
  const int sideQ = SideOfLineXY(q, a, b, tol.eps2);
  if ((sideP == 0 && sideQ == 1) || (sideP == 1 && sideQ != -1)) return false;
  if (sideP * sideQ != -1) return true;
  const ZBR_PT along = q.xy() - p.xy();
  const ZBR_PT line = b.xy() - a.xy();
  const double den = Cross(along, line);
  if (!(std::fabs(den) > tol.eps2)) return true;
  const ZBR_PT from = p.xy() - a.xy();
  const double t = (from.y() * line.x() - from.x() * line.y()) / den;
  if (sideP == 1) {
    r.Set(PointAt(p, q, t), q, t, 1.0);
  } else if (t + tol.eps < 1.0) {
    r.Set(p, PointAt(p, q, t), 0.0, t);
  }
  return true;
}

// The number of bits of a mask over three vertices; without an instruction for it, which not all processors have, a call otherwise.
unsigned CountOf(unsigned mask) {
  return (mask & 1U) + (mask >> 1U & 1U) + (mask >> 2U & 1U);
}

// The number of the only bit of a mask over three vertices.
int OnlyVertex(unsigned mask) {
  return mask == 1 ? 0 : mask == 2 ? 1 : 2;
}

// The apex of a triangle of which no edge lies on the line of a stretch; -1 when no part of the triangle is on both sides.
int ApexOf(unsigned right, unsigned on, unsigned left) {
  if (on == 0) return OnlyVertex(CountOf(left) == 1 ? left : right);
  if (right == 0 || left == 0) return -1;
  return on == 1 ? 1 : 0;
}

void OutsideSidesAtApex(const Stretch& stretch, int apex, const ZBR_HL_TRI& o, Intervals& out) {
  const ZBR_PT3& a = o.pt[apex];
  const ZBR_PT3* after = &o.pt[(apex + 1) % 3];
  const ZBR_PT3* before = &o.pt[(apex + 2) % 3];
  if (o.clockwise) std::swap(after, before);
  ZBR_HL_INTERVAL r;
  if (RightOfLine(stretch.s.pt, stretch.e.pt, a, *after, r)) stretch.Append(r, out);
  if (RightOfLine(stretch.s.pt, stretch.e.pt, *before, a, r)) stretch.Append(r, out);
}

// A stretch on the line of o's edge k, or of all of o when it is vertical.
void OutsideOnLine(const ZBR_HL_TRI& self, const Stretch& stretch, int k, const ZBR_HL_TRI& o, Intervals& out,
                   const Scratch& lists) {
  if (o.IsTriVertical()) {
    BesideVertical(self, stretch.s.pt, stretch.e.pt, o, lists.xy, lists);
  } else if (k >= 0 && o.edge_state[k] == kGeneral) {
    BesideEdge(self, stretch.s.pt, stretch.e.pt, k, o, lists.xy);
  } else {
    return stretch.AppendWhole(out);
  }
  for (const ZBR_HL_INTERVAL& r : lists.xy) stretch.Append(r, out);
}

// Appends the parts of the stretch that project outside o.
void Outside(const ZBR_HL_TRI& self, const Stretch& stretch, const ZBR_HL_TRI& o, Intervals& out, const Scratch& lists) {
  ZBR_HL_POS_BIT sides;
  if (!o.CheckPos_TriToLineXY(stretch.s.pt, stretch.e.pt, sides)) return;
  const unsigned right = sides.bits[0];
  const unsigned on = sides.bits[1];
  const unsigned left = sides.bits[2];
  if (right == 7 || left == 7) return stretch.AppendWhole(out);  // Beside
  if (CountOf(on) >= 2) {                                        // AlongEdge
    const int k = on == 7 ? -1 : on == 6 ? 1 : on == 5 ? 2 : 0;
    return OutsideOnLine(self, stretch, k, o, out, lists);
  }
  const int apex = stretch.coplanar ? -1 : ApexOf(right, on, left);
  if (apex < 0) return stretch.AppendWhole(out);  // InPlane, Touch
  OutsideSidesAtApex(stretch, apex, o, out);
}

// The place where an edge with one end in front of o and the other behind passes through o's plane; false when it does not, because
// it is parallel. Beyond 1e8 the rounding of coordinates moves places by more than the tolerance, and past the ends of short edges.
bool CutAtPlane(const ZBR_HL_INTERVAL& whole, const ZBR_HL_TRI& o, PtLin& cut) {
  if (!o.normal.GetIntersection(whole.s.pt, whole.e.pt, &cut.pt, &cut.t)) return false;
  if (cut.t < 0.0) cut = whole.s;
  if (cut.t > 1.0) cut = whole.e;
  return true;
}

// An edge with one end in front of o and the other behind.
void VisiblePartsAcross(const ZBR_HL_TRI& self, const ZBR_HL_INTERVAL& whole, bool startInFront, const ZBR_HL_TRI& o,
                        Intervals& out, const Scratch& lists) {
  PtLin cut;
  if (!CutAtPlane(whole, o, cut)) {
    out.push_back(whole);
  } else if (startInFront) {
    out.emplace_back(whole.s, cut);
    Outside(self, {cut, whole.e, false, false}, o, out, lists);
  } else {
    out.emplace_back(cut, whole.e);
    Outside(self, {whole.s, cut, true, false}, o, out, lists);
  }
}

// Sides of o's plane on which the vertices of self lie: in front, on it, behind, with front on the viewer's side.
bool CanBeHidden(ZBR_HL_TRI& self, const ZBR_HL_TRI& o) {
  const unsigned on = self.pos.bits[1];
  if (o.IsTriVertical() && CountOf(on) < 2) return false;
  if (o.clockwise) std::swap(self.pos.bits[0], self.pos.bits[2]);
  const bool touchesFromFront = self.pos.bits[2] == 0 && CountOf(on) == 1;
  return self.pos.bits[0] != 7 && !touchesFromFront;
}

// The rule for each edge that the two triangles share. False when the pair is done with.
bool HideSharedEdges(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, const Scratch& lists, bool& posSet, bool (&edgeDone)[3]) {
  if (self.shell_idx != o.shell_idx) return true;
  for (int i = 0; i < 3; ++i) {
    if (self.edge_state[i] != kGeneral || self.adj[i] != o.idx) continue;
    const int k = self.GetAdjEdge(i, o);
    if (!IsEdgeNumber(k)) continue;  // the records disagree: not neighbours
    if (HideByNeighbour(self, o, i, k, posSet, lists)) return false;
    if (!self.IsEdgeAvailableAtLeastOne((i + 1) % 3, (i + 2) % 3)) return false;
    edgeDone[i] = true;
  }
  return true;
}

}  // namespace

void VisibleParts(const ZBR_HL_TRI& self, int i, unsigned front, unsigned on, const ZBR_HL_TRI& o, Intervals& out,
                  const Scratch& lists) {
  const ZBR_PT3& p = self.pt[i];
  const ZBR_PT3& q = self.pt[(i + 1) % 3];
  const ZBR_HL_INTERVAL whole(p, q, 0.0, 1.0);
  out.clear();
  const bool outOfReach = o.IsTriInvalid() || IsOutOfReach(p, q, o, t_tolerance.eps);
  const bool inFront = o.IsTriVertical() ? on != 3 : front == 3 || (front != 0 && on != 0);
  if (outOfReach || inFront) {
    out.push_back(whole);
    return;
  }
  if (on == 3 && o.IsTriVertical()) {  // OnWall
    BesideVertical(self, p, q, o, out, lists);
  } else if (on == 3 || front == 0) {  // Behind
    Outside(self, {whole.s, whole.e, true, on == 3}, o, out, lists);
  } else {  // Across
    VisiblePartsAcross(self, whole, front == 1, o, out, lists);
  }
  SmallSort(out.begin(), out.end(), [](const ZBR_HL_INTERVAL& a, const ZBR_HL_INTERVAL& b) { return a.s.t < b.s.t; });
  zbrIntervalOptimize(out);
}

bool NarrowEdge(ZBR_HL_TRI& self, int i, std::span<ZBR_HL_INTERVAL> left, Intervals& work) {
  Intervals& list = self.intvl_v[i];
  if (list.empty()) return false;
  if (IsWholeEdge(left)) return true;
  Intersect(list, left, work);
  if (!list.empty()) return true;
  self.SetEdgeUnavailable(i);
  return false;
}

void HideByTriangle(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, const Scratch& lists) {
  if (&o == &self) return;
  bool posSet = false;
  bool edgeDone[3] = {false, false, false};
  if (!HideSharedEdges(self, o, lists, posSet, edgeDone)) return;
  if (!posSet) self.pos = PositionsAgainst(self, o, lists.contact);
  if (!CanBeHidden(self, o)) return;
  for (int i = 0; i < 3; ++i) {
    if (edgeDone[i] || !self.IsEdgeAvailable(i)) continue;
    VisibleParts(self, i, EdgeMask(self.pos.bits[0], i), EdgeMask(self.pos.bits[1], i), o, lists.result, lists);
    NarrowEdge(self, i, lists.result, lists.work);
  }
}

}  // namespace zbr

void ZBR_HL_TRI::HiddenLine_TriByTri(const ZBR_HL_TRI& o) {
  const zbr::ShellLists lists(shell);
  (*lists).result.clear();
  if (&o == this) return;
  const zbr::ToleranceScope scope(zbr::kOcclusionEps);
  zbr::HideByTriangle(*this, o, *lists);
}

void ZBR_HL_TRI::HiddenLine_EdgeByTri(int i, const ZBR_HL_TRI& o, std::vector<ZBR_HL_INTERVAL>& out) {
  zbr::VisibleParts(*this, i, zbr::EdgeMask(pos.bits[0], i), zbr::EdgeMask(pos.bits[1], i), o, out, *zbr::ShellLists(shell));
}

void ZBR_HL_TRI::HiddenLine_EdgeByTriInnerXY(const ZBR_HL_INTERVAL::PT_LIN& s, const ZBR_HL_INTERVAL::PT_LIN& e,
                                             const ZBR_HL_TRI& o, bool from_start, bool coplanar,
                                             std::vector<ZBR_HL_INTERVAL>& out) {
  const ZBR_HL_INTERVAL stretch(s, e);  // a copy: the ends may be those of a record of `out`
  zbr::Outside(*this, {stretch.s, stretch.e, from_start, coplanar}, o, out, *zbr::ShellLists(shell));
}

bool ZBR_HL_TRI::HiddenLine_EdgeByLineXY(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b,
                                         ZBR_HL_INTERVAL& r) {
  ZBR_HL_INTERVAL part;
  if (!zbr::RightOfLine(p, q, a, b, part)) return false;
  r = part;
  return true;
}
