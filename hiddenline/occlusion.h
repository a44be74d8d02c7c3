// What one triangle hides of another's edges: the rules, with the tolerance of the calling thread (kOcclusionEps within a pass).
#pragma once

#include <algorithm>
#include <span>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/spatial_inline.h"
#include "core/tolerance_state.h"
#include "hiddenline/interval.h"

namespace zbr {

// Values of tri_state and edge_state.
inline constexpr int kGeneral = 1;
inline constexpr int kVertical = 2;
inline constexpr int kInvalid = 3;

inline bool IsEdgeNumber(int k) {
  return 0 <= k && k < 3;
}

// Lists lent to the rules for the length of a pass, so that none is allocated per pair; and what the pass compares with.
struct Scratch {
  Intervals& result;     // of one edge against one triangle
  Intervals& xy;         // of a stretch on the line of an occluder's edge
  Intervals (&edge)[3];  // of a stretch against each edge of a vertical occluder
  Intervals& work;       // of zbrIntervalIntersection
  double contact;        // distance up to which a point counts as lying on a plane
};

// The contact tolerance of a shell, which is never less than what points of one place may differ by.
inline double ContactOf(const ZBR_HL_SHELL& shell) {
  return std::max(kOcclusionEps, shell.contact_tolerance);
}

// A set of lists that belongs to no shell.
class OwnLists {
 public:
  Scratch Lend(double contact) { return {result_, xy_, edge_, work_, contact}; }

 private:
  Intervals result_, xy_, edge_[3], work_;
};

// Lends the lists of a triangle's shell; a triangle without a shell gets a set for the length of one call.
class ShellLists {
 public:
  explicit ShellLists(ZBR_HL_SHELL* shell)
      : lists_(shell == nullptr
                   ? own_.Lend(kOcclusionEps)
                   : Scratch{shell->tri_result, shell->xy_result, shell->edge_result, shell->work, ContactOf(*shell)}) {}
  ShellLists(const ShellLists&) = delete;
  ShellLists& operator=(const ShellLists&) = delete;
  const Scratch& operator*() const { return lists_; }

 private:
  OwnLists own_;
  Scratch lists_;
};

// The two halves of CheckTriangle: states, with empty lists of intervals; then the intervals of the edges that are to be drawn.
void Classify(ZBR_HL_TRI& t);
// But those of the edges in the mask.
void GiveIntervals(ZBR_HL_TRI& t, unsigned except = 0);

// Whether a classified triangle has an edge that gets intervals.
inline bool Draws(const ZBR_HL_TRI& t) {
  bool draws = false;
  for (int i = 0; i < 3; ++i) draws = draws || (t.edge_state[i] == kGeneral && t.dispj[i]);
  return draws;
}

// The two ends of edge i as a mask, from a mask over the vertices.
inline unsigned EdgeMask(unsigned vertices, int i) {
  return i == 2 ? (vertices >> 2U & 1U) | (vertices & 1U) << 1U : vertices >> static_cast<unsigned>(i) & 3U;
}

// Whether o, which has the coincident edge k, draws it and comes first, so that self leaves the line to it.
inline bool KeepsLine(const ZBR_HL_TRI& o, int k, const ZBR_HL_TRI& self) {
  return o.dispj[k] && o.edge_state[k] == kGeneral && self.idx >= o.idx && self.shell_idx >= o.shell_idx;  // as ToHide has it
}

// Whether two faces that share an edge, i of self and k of o, lie on opposite sides of it in projection: both then run the same way
// round.
inline bool ContinuesAt(const ZBR_HL_TRI& self, int i, const ZBR_HL_TRI& o, int k) {
  return SamePoint(self.pt[i], o.pt[k], t_tolerance.eps2) == (self.clockwise != o.clockwise);
}

// The edges, as a mask, that a wall leaves to a face across its edge i: the face draws the shared edge, and all of a wall that
// hangs from it.
inline unsigned LeavesToFace(const ZBR_HL_TRI& wall, int i) {
  return !wall.vert_upper && i == wall.vert_edge ? 7U : 1U << static_cast<unsigned>(i);
}

// Whether a wall rises above its edge k, and so hides what lies below it on its line of a face across that edge.
inline bool HidesFaceBeside(const ZBR_HL_TRI& wall, int k) {
  return (k == wall.vert_edge) == wall.vert_upper;
}

// The vertices of t in front of, on and behind o's plane (as its normal points), where on it means within `contact`.
ZBR_HL_POS_BIT PositionsAgainst(const ZBR_HL_TRI& t, const ZBR_HL_TRI& o, double contact);

// The parts of edge i of `self` that o does not hide, replacing `out`. front and on are the edge's ends in front of and on o's
// plane.
void VisibleParts(const ZBR_HL_TRI& self, int i, unsigned front, unsigned on, const ZBR_HL_TRI& o, Intervals& out,
                  const Scratch& lists);

// Intersects the list of edge i with what is left of the edge, which is consumed. False when nothing of it stays.
bool NarrowEdge(ZBR_HL_TRI& self, int i, std::span<ZBR_HL_INTERVAL> left, Intervals& work);

// Whether the edge p-q lies above o, or its box and that of o are farther apart than eps in x or in y.
inline bool IsOutOfReach(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& o, double eps) {
  return std::min(p.z(), q.z()) > o.max_z || std::min(p.x(), q.x()) > o.max_x + eps || o.min_x > std::max(p.x(), q.x()) + eps ||
         std::min(p.y(), q.y()) > o.max_y + eps || o.min_y > std::max(p.y(), q.y()) + eps;
}

// The rules for stretches on the projected line of an edge of o (coplanar.cpp). Each returns the size of out.
int BesideVertical(const ZBR_HL_TRI& self, const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& o, Intervals& out,
                   const Scratch& lists);
int BesideEdge(const ZBR_HL_TRI& self, const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o, Intervals& out);
// Cases of these in which p-q certainly stays: o's edge k is wholly lower, or has no stretch in common; a wall nowhere rises above
// a level p-q, and reaches it in one corner at most.
bool IsApart(const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o);
bool IsLowerWall(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& wall);

// The rule for a neighbour, which has the shared edge i as its edge k (neighbour.cpp).
bool HideByNeighbour(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int i, int k, bool& posSet, const Scratch& lists);

// Everything that o hides of self.
void HideByTriangle(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, const Scratch& lists);

}  // namespace zbr
