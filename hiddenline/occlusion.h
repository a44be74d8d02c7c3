// What one triangle hides of another's edges: the rules, with the tolerance of the calling thread (kOcclusionEps within a pass).
#pragma once

#include <zbr/hidden_line.h>

#include "hiddenline/interval.h"

namespace zbr {

// Values of tri_state and edge_state.
inline constexpr int kGeneral = 1;
inline constexpr int kVertical = 2;
inline constexpr int kInvalid = 3;

inline bool IsEdgeNumber(int k) {
  return 0 <= k && k < 3;
}

// Lists lent by a shell to the rules, so that none is allocated per pair.
struct Scratch {
  Intervals& result;     // of one edge against one triangle
  Intervals& xy;         // of a stretch on the line of an occluder's edge
  Intervals (&edge)[3];  // of a stretch against each edge of a vertical occluder
  Intervals& work;       // of zbrIntervalIntersection
};

// The lists of `shell`; without one, a set of the calling thread.
Scratch ScratchOf(ZBR_HL_SHELL* shell);

// The two ends of edge i as a mask, from a mask over the vertices.
inline unsigned EdgeMask(unsigned vertices, int i) {
  return i == 2 ? (vertices >> 2U & 1U) | (vertices & 1U) << 1U : vertices >> static_cast<unsigned>(i) & 3U;
}

// Whether o, which has the coincident edge k, draws it and comes first, so that self leaves the line to it.
inline bool KeepsLine(const ZBR_HL_TRI& o, int k, const ZBR_HL_TRI& self) {
  return o.dispj[k] && self.ToHide(o, k);
}

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
