// The driver's inner calls: preparing shells, and shells or parts of them against many others.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/hidden_line.h>

#include "hiddenline/extents.h"
#include "hiddenline/occlusion.h"
#include "hiddenline/shell_search.h"

namespace zbr {

// The position of the triangle with the given idx; -1 when there is none.
int PositionOf(const ZBR_HL_SHELL& shell, int idx);

// Gives the shells indices that ascend with their places; those that are neither prepared nor done get new ones.
void NumberInOrder(ZBR_HL_SHELL* shells, unsigned count);
// Prepares a shell that has its index (preparation.h) and gives its edges their intervals.
void PrepareWhole(ZBR_HL_SHELL& shell);
// The shell's own pass, with all that it still lacks (but the index) made before. The quadtree is built as well.
void HideInItself(ZBR_HL_SHELL& shell);

// Some of a shell's triangles: places in its array or, if there is one, in an order of them.
struct TriangleRange {
  unsigned begin, end;
  const std::vector<unsigned>* order = nullptr;

  unsigned At(unsigned place) const { return order == nullptr ? place : (*order)[place]; }
};

// What hides something: a shell itself, and others, each of them prepared; with a search, those others that it finds for each edge.
struct Occluding {
  bool own = false;
  ShellList others;
  const ShellSearch* search = nullptr;  // not beside a list
  bool isBare = false;                  // the edges have no intervals before the shell's own pass

  bool areOthers() const { return search != nullptr || !others.empty(); }
};

// What the edges of a lie within of which anything is visible; empty when there are none. A box seen from above has only its upper
// edges left when it has been hidden by itself, which are out of reach of whatever it stands on.
Extents VisibleExtents(const ZBR_HL_SHELL& a);
// Replaces `by` by what may hide something of a, the visible edges of which lie within `visible`, of the shells in `search` but a
// itself.
void FindOthersNear(const ZBR_HL_SHELL& a, const Extents& visible, const ShellSearch& search, Occluding& by);

// Removes from the triangles of a in the range what is hidden. a is not among the others of a list.
// Only these triangles are written, so different ranges may be processed at once. Returns the number of pairs that went through the
// full rule. Under the tolerance kOcclusionEps.
std::uint64_t HideTriangles(ZBR_HL_SHELL& a, TriangleRange range, const Occluding& by, const Scratch& lists);
// All of a, with the lists of a; sets the tolerance itself.
void HideShell(ZBR_HL_SHELL& a, const Occluding& by);
// Removes from t what any triangle of s hides, as wholes.
void HideWholeTriangle(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s);

}  // namespace zbr
