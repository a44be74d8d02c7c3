// The neighbours of a triangle that may hide something of it, and what is known of them at a glance.
#pragma once

#include <zbr/hidden_line.h>

#include "hiddenline/driver.h"
#include "hiddenline/occlusion.h"

namespace zbr {

class NextDoor {
 public:
  NextDoor(const ZBR_HL_TRI& t, const ZBR_HL_SHELL& shell) {
    const int* adj = t.adj;
    const bool mayBePlain = !t.IsTriInvalid() && adj[0] != adj[1] && adj[1] != adj[2] && adj[2] != adj[0];
    for (int i = 0; i < 3; ++i) {
      if (adj[i] == -1) continue;
      const int position = PositionOf(shell, adj[i]);
      if (position < 0 || shell.tris[position].IsTriSkip()) continue;
      positions_[i] = position;
      if (mayBePlain) Compare(t, i, shell.tris[position]);
    }
  }

  int position(int i) const { return positions_[i]; }  // -1: nobody there
  // The edges that t leaves to neighbours, which draw them.
  unsigned LeavesTo() const { return leavesTo_; }
  // Whether nothing but what t leaves is to be decided there.
  bool IsDone(int i) const { return (done_ >> static_cast<unsigned>(i) & 1U) != 0; }

 private:
  // Of two that share but one edge: what the rule for neighbours (neighbour.cpp) says without looking at anything else. Of a box
  // seen from above that is all but the walls' other edges.
  void Compare(const ZBR_HL_TRI& t, int i, const ZBR_HL_TRI& o) {
    if (o.IsTriInvalid() || &o == &t || o.idx != t.adj[i] || o.shell_idx != t.shell_idx) return;
    if (t.edge_state[i] != kGeneral) return;
    const int k = t.adj_edge[i] != -1 ? t.adj_edge[i] : t.GetAdjEdge(i, o);
    if (!IsEdgeNumber(k)) return;
    const unsigned bit = 1U << static_cast<unsigned>(i);
    bool isDone = false;
    if (o.edge_state[k] == kVertical) {  // EndOn
      isDone = true;
    } else if (t.IsTriVertical()) {
      isDone = !o.IsTriVertical();  // WallByFace
      if (isDone) leavesTo_ |= LeavesToFace(t, i);
    } else if (o.IsTriVertical()) {
      isDone = !HidesFaceBeside(o, k);  // FaceByWall
    } else {
      if (KeepsLine(o, k, t)) leavesTo_ |= bit;
      isDone = ContinuesAt(t, i, o, k);  // GoesOn
    }
    if (isDone) done_ |= bit;
  }

  int positions_[3] = {-1, -1, -1};
  unsigned leavesTo_ = 0;
  unsigned done_ = 0;
};

}  // namespace zbr
