// Hiding by a walk over a shell's quadtree, for callers who take the removal apart.
//
// The triangles whose boxes can meet that of a triangle t are filed in the deepest node that holds t's box, above it and below it.
// Each node's list is in decreasing height, so a list ends for t at the first triangle that lies wholly below t. Boxes are widened
// by kBoxMargin.
#include <algorithm>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "hiddenline/driver.h"
#include "hiddenline/extents.h"
#include "hiddenline/quadtree/quad.h"

namespace {

using zbr::kBoxMargin;

zbr::Box WidenedBoxOf(const ZBR_HL_TRI& t) {
  return zbr::BoxOf(t).Widened(kBoxMargin);
}

bool IsBeside(const ZBR_HL_QUAD& node, const zbr::Box& box) {
  return node.min_x > box.xmax || node.min_y > box.ymax || node.max_x < box.xmin || node.max_y < box.ymin;
}

// The part of t's box within the shell's.
zbr::Box ClippedBox(const ZBR_HL_TRI& t, const ZBR_HL_SHELL& s) {
  return {std::max(t.min_x, s.min_x), std::max(t.min_y, s.min_y), std::min(t.max_x, s.max_x), std::min(t.max_y, s.max_y)};
}

// Runs fn on the nodes that matter for t, until it returns true.
template <class OnNode, class OnSubtree>
void WalkFrom(const ZBR_HL_QUAD& start, OnNode onNode, OnSubtree onSubtree) {
  for (const ZBR_HL_QUAD* node = &start; node != nullptr; node = node->parent) {
    if (onNode(*node)) return;
  }
  for (const ZBR_HL_QUAD* child : start.child) {
    if (child != nullptr && onSubtree(*child)) return;
  }
}

// The neighbours of t, hidden by first and skipped afterwards.
class NeighboursFirst {
 public:
  NeighboursFirst() = default;
  void Take(ZBR_HL_TRI& t, ZBR_HL_SHELL& s) {
    for (const int idx : t.adj) {
      const int position = idx == -1 ? -1 : zbr::PositionOf(s, idx);
      if (position < 0 || s.tris[position].IsTriSkip()) continue;
      ZBR_HL_TRI& neighbour = s.tris[position];
      t.HiddenLine_TriByTri(neighbour);
      neighbour.skip = true;
      taken_[count_++] = &neighbour;
      if (!t.any_edge_visible) return;
    }
  }
  ~NeighboursFirst() {
    for (int i = 0; i < count_; ++i) taken_[i]->skip = false;
  }
  NeighboursFirst(const NeighboursFirst&) = delete;
  NeighboursFirst& operator=(const NeighboursFirst&) = delete;

 private:
  ZBR_HL_TRI* taken_[3] = {nullptr, nullptr, nullptr};
  int count_ = 0;
};

}  // namespace

bool ZBR_HiddenLine::HiddenLine_TriByQuad(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, bool y_major) {
  const zbr::Box box = WidenedBoxOf(t);
  if (IsBeside(node, box)) return false;
  for (const int position : node.tris) {
    const ZBR_HL_TRI& u = s.tris[position];
    if (u.max_z < t.min_z) break;
    const bool meetsX = u.min_x <= box.xmax && u.max_x >= box.xmin;
    if (y_major && !meetsX) continue;
    if (!(u.min_y <= box.ymax && u.max_y >= box.ymin) || !meetsX || u.IsTriSkip()) continue;
    t.HiddenLine_TriByTri(u);
    if (!t.any_edge_visible) return true;
  }
  return false;
}

bool ZBR_HiddenLine::HiddenLine_TriByQuadInSame(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, bool y_major) {
  return HiddenLine_TriByQuad(t, s, node, y_major);  // a triangle hides nothing of itself
}

bool ZBR_HiddenLine::HiddenLine_TriByChildQuad(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, bool y_major) {
  if (HiddenLine_TriByQuad(t, s, node, y_major)) return true;
  for (const ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr && HiddenLine_TriByChildQuad(t, s, *child, y_major)) return true;
  }
  return false;
}

void ZBR_HiddenLine::HiddenLine_TriByShell(ZBR_HL_TRI& t, const ZBR_HL_SHELL& s) {
  if (!s.quad_built) {  // the driver's tree gives the same
    zbr::HideWholeTriangle(t, s);
    t.ShrinkInterval();
    return;
  }
  const bool yMajor = t.max_x - t.min_x <= t.max_y - t.min_y;
  const bool own = t.shell == &s;
  if (own && t.quad == nullptr) return;
  const ZBR_HL_QUAD* start = own ? t.quad : zbr::FindQuad(s.root, ClippedBox(t, s));
  if (start == nullptr) start = &s.root;
  WalkFrom(
      *start,
      [&](const ZBR_HL_QUAD& node) {
        return own && &node == t.quad ? HiddenLine_TriByQuadInSame(t, s, node, yMajor) : HiddenLine_TriByQuad(t, s, node, yMajor);
      },
      [&](const ZBR_HL_QUAD& node) { return HiddenLine_TriByChildQuad(t, s, node, yMajor); });
  t.ShrinkInterval();
}

void ZBR_HiddenLine::HiddenLine_ShellByQuad(ZBR_HL_SHELL& a, const ZBR_HL_QUAD& node, bool neighbours_first) {
  for (const int position : node.tris) {
    ZBR_HL_TRI& t = a.tris[position];
    if (!t.any_edge_visible) continue;
    if (!neighbours_first) {
      HiddenLine_TriByShell(t, a);
      continue;
    }
    NeighboursFirst neighbours;
    neighbours.Take(t, a);
    if (t.any_edge_visible) HiddenLine_TriByShell(t, a);
  }
}

void ZBR_HiddenLine::HiddenLine_ShellByChildQuad(ZBR_HL_SHELL& a, const ZBR_HL_QUAD& node, bool neighbours_first) {
  HiddenLine_ShellByQuad(a, node, neighbours_first);
  for (const ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr) HiddenLine_ShellByChildQuad(a, *child, neighbours_first);
  }
}
