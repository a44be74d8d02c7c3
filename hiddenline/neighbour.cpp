// The rule for two triangles of a shell that share an edge.
//
// Sharing an edge settles most of the pair without comparing planes, where rounding would speak at random: the surface either goes
// on beyond the edge, and then the neighbour can hide nothing of this triangle, or folds back over it. The shared edge is drawn
// once, by the triangle that comes first, if it draws it.
//
// The cases, first match wins; self loses lines, o is the neighbour. Tests carry the same labels.
//
// - EndOn: seen end-on, by the records of one of the two: nothing to decide.
// - LongOverLong: two walls with the shared edge as long edge, self standing on it, o hanging from it: one draws it, that is all.
// - Flanks: two walls below their apexes, sharing flanks: one draws the flank.
// - WallByWall: other walls: like any two edges on one line.
// - WallByFace: the face draws the shared edge, and all of a wall that hangs from it.
// - FaceByWall: a wall that rises above the shared edge hides what lies below it on its line.
// - GoesOn: on opposite sides of the shared edge in projection: o hides nothing else.
// - FoldsFlat: folded back within the tolerance, on either side: as any two triangles in one plane.
// - FoldsInFront: folded back over o, on the viewer's side: o hides nothing else.
// - FoldsBehind: folded back under o, which hides what lies inside it.
#include "core/constants.h"
#include "core/spatial_inline.h"
#include "core/tolerance_state.h"
#include "hiddenline/occlusion.h"

namespace zbr {
namespace {

// The edge against a vertical neighbour, on whose line it lies.
void HideBesideVertical(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int i, const Scratch& lists) {
  if (!self.IsEdgeAvailable(i)) return;
  BesideVertical(self, self.pt[i], self.pt[(i + 1) % 3], o, lists.result, lists);
  NarrowEdge(self, i, lists.result, lists.work);
}

// Two walls on one line: of two that meet along their long edges, or both below their apexes, one draws the shared edge.
bool BothVertical(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int i, int k, const Scratch& lists) {
  const bool isLong = i == self.vert_edge;
  const bool isLongInO = k == o.vert_edge;
  const bool longEdges = self.vert_upper && !o.vert_upper && isLong && isLongInO;
  const bool flanks = self.vert_upper && o.vert_upper && !isLong && !isLongInO;
  if (longEdges || flanks) {  // LongOverLong, Flanks
    if (KeepsLine(o, k, self)) self.SetEdgeUnavailable(i);
  } else {  // WallByWall
    HideBesideVertical(self, o, i, lists);
  }
  return longEdges;
}

bool BothFaces(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int i, int k, bool& posSet) {
  if (KeepsLine(o, k, self)) self.SetEdgeUnavailable(i);
  if (ContinuesAt(self, i, o, k)) return true;  // GoesOn
  const int third = (i + 2) % 3;
  const double d = o.normal.distance(self.pt[third]);
  // FoldsFlat, where the sign of d means nothing: the planes are compared as of any two triangles, and lines in a common plane
  // stay.
  if (WithinTol(d, t_tolerance.eps)) return false;
  if (o.clockwise ? d < 0.0 : d > 0.0) return true;  // FoldsInFront
  // FoldsBehind
  const auto thirdBit = static_cast<unsigned char>(1U << static_cast<unsigned>(third));
  self.pos = {};
  self.pos.bits[1] = static_cast<unsigned char>(7U & ~thirdBit);
  self.pos.bits[o.clockwise ? 0 : 2] = thirdBit;
  posSet = true;
  return false;
}

}  // namespace

bool HideByNeighbour(ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int i, int k, bool& posSet, const Scratch& lists) {
  if (o.edge_state[k] == kVertical) return true;  // EndOn
  if (self.IsTriVertical()) {
    if (o.IsTriVertical()) return BothVertical(self, o, i, k, lists);
    for (int e = 0; e < 3; ++e) {  // WallByFace
      if ((LeavesToFace(self, i) >> static_cast<unsigned>(e) & 1U) != 0) self.SetEdgeUnavailable(e);
    }
    return true;
  }
  if (o.IsTriVertical()) {  // FaceByWall
    if (HidesFaceBeside(o, k)) HideBesideVertical(self, o, i, lists);
    return true;
  }
  return BothFaces(self, o, i, k, posSet);
}

}  // namespace zbr

bool ZBR_HL_TRI::HiddenLine_TriByTriAdjacent(const ZBR_HL_TRI& o, int i, bool& pos_set) {
  const int k = GetAdjEdge(i, o);
  return zbr::IsEdgeNumber(k) && zbr::HideByNeighbour(*this, o, i, k, pos_set, *zbr::ShellLists(shell));
}
