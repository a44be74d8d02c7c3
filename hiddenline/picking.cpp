// Picking: the highest triangle over a place.
//
// The triangles over a place are filed in the deepest node that holds it, above that node and below it. All of them are tried,
// since a later one may be higher; the height found so far only rises, so that several shells can be picked with one running value.
#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/spatial_inline.h"
#include "hiddenline/occlusion.h"
#include "hiddenline/quad.h"

using zbr::kBoxMargin;

bool ZBR_HL_TRI::Pick(const ZBR_PT3& p, double& z) const {
  if (tri_state == zbr::kVertical || tri_state == zbr::kInvalid) return false;
  for (int i = 0; i < 3; ++i) {
    const ZBR_PT3& a = pt[i];
    const ZBR_PT3& b = pt[(i + 1) % 3];
    if ((clockwise ? p.CheckPos(b, a) : p.CheckPos(a, b)) < 0) return false;
  }
  const ZBR_PT3& n = normal.normal();
  const double height = -(n.x() * p.x() + n.y() * p.y() + normal.distance()) / n.z();
  if (!(height > z)) return false;
  z = height;
  return true;
}

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

bool ZBR_HiddenLine::PickShell(double x, double y, const ZBR_HL_SHELL& s, double& z) {
  const ZBR_HL_QUAD* start = zbr::FindQuad(s.root, {x, y, x, y});
  if (start == nullptr) return false;
  const ZBR_PT3 p(x, y, 0.0);
  bool picked = false;
  for (const ZBR_HL_QUAD* node = start; node != nullptr; node = node->parent) {
    if (PickdQuad(p, s, *node, z)) picked = true;
  }
  for (const ZBR_HL_QUAD* child : start->child) {
    if (child != nullptr && PickChildQuad(p, s, *child, z)) picked = true;
  }
  return picked;
}

bool ZBR_HiddenLine::PickShells(double x, double y, const ZBR_HL_SHELL* shells, unsigned count, double& z) {
  bool picked = false;
  for (unsigned i = 0; i < count; ++i) {
    if (PickShell(x, y, shells[i], z)) picked = true;
  }
  return picked;
}

bool ZBR_HiddenLine::PickShells(const std::vector<ZBR_CROSS>& crosses, const ZBR_HL_SHELL* shells, unsigned count, double& z) {
  bool picked = false;
  for (const ZBR_CROSS& cross : crosses) {
    if (PickShells(cross.pt.x(), cross.pt.y(), shells, count, z)) picked = true;
  }
  return picked;
}
