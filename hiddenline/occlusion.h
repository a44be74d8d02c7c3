// What one triangle hides of another's edges: the rules, with the tolerance of the calling thread (kOcclusionEps within a pass).
#pragma once

#include <algorithm>

#include <zbr/hidden_line.h>

#include "core/constants.h"
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
void GiveIntervals(ZBR_HL_TRI& t);

// The two ends of edge i as a mask, from a mask over the vertices.
inline unsigned EdgeMask(unsigned vertices, int i) {
  return i == 2 ? (vertices >> 2U & 1U) | (vertices & 1U) << 1U : vertices >> static_cast<unsigned>(i) & 3U;
}

// Whether o, which has the coincident edge k, draws it and comes first, so that self leaves the line to it.
inline bool KeepsLine(const ZBR_HL_TRI& o, int k, const ZBR_HL_TRI& self) {
  return o.dispj[k] && self.ToHide(o, k);
}

// The vertices of t in front of, on and behind o's plane (as its normal points), where on it means within `contact`.
ZBR_HL_POS_BIT PositionsAgainst(const ZBR_HL_TRI& t, const ZBR_HL_TRI& o, double contact);

// The parts of edge i of `self` that o does not hide, replacing `out`. front and on are the edge's ends in front of and on o's
// plane.
void VisibleParts(const ZBR_HL_TRI& self, int i, unsigned front, unsigned on, const ZBR_HL_TRI& o, Intervals& out,
                  const Scratch& lists);

// Intersects the list of edge i with `result`, which is consumed. False when nothing is left of the edge.
bool NarrowEdge(ZBR_HL_TRI& self, int i, Intervals& result, Intervals& work);

// The rules for stretches on the projected line of an edge of o (coplanar.cpp). Each returns the size of out.
int BesideVertical(const ZBR_HL_TRI& self, const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& o, Intervals& out,
                   const Scratch& lists);
int BesideEdge(const ZBR_HL_TRI& self, const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o, Intervals& out);

// The rule for a neighbour, which has the shared edge i as its edge k (neighbour.cpp).
bool HideByNeighbour(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int i, int k, bool& posSet, const Scratch& lists);

// Everything that o hides of self.
void HideByTriangle(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, const Scratch& lists);

}  // namespace zbr
