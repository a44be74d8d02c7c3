// Picking by a walk over a shell's quadtree, for callers who take it apart: the triangles over a place are filed in the deepest
// node that holds it, above that node and below it. All are tried, since a later one may be higher.
#include <zbr/hidden_line.h>

#include "core/constants.h"

using zbr::kBoxMargin;

bool ZBR_HiddenLine::PickdQuad(const ZBR_PT3& p, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, double& z) {
  const double left = p.x() - kBoxMargin;
  const double right = p.x() + kBoxMargin;
  const double below = p.y() - kBoxMargin;
  const double above = p.y() + kBoxMargin;
  if (node.min_x > right || node.min_y > above || left > node.max_x || below > node.max_y) return false;
  bool picked = false;
  for (const int position : node.tris) {
    const ZBR_HL_TRI& t = s.tris[position];
    if (t.min_x <= right && t.min_y <= above && t.max_x >= left && t.max_y >= below && t.Pick(p, z)) picked = true;
  }
  return picked;
}

bool ZBR_HiddenLine::PickChildQuad(const ZBR_PT3& p, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node, double& z) {
  bool picked = PickdQuad(p, s, node, z);
  for (const ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr && PickChildQuad(p, s, *child, z)) picked = true;
  }
  return picked;
}
