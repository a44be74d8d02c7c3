// Picking: the highest triangle over a place.
//
// The driver's tree gives the triangles near the place. All of them are tried, even those that lie lower than the height found so
// far: where a place is on the border of a steep triangle, within the tolerance, the plane may be higher there than any vertex. The
// height only rises, so that several shells can be picked with one running value. Of triangles that meet at the place, the one that
// comes first in its array is named.
#include <limits>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/spatial_inline.h"
#include "hiddenline/occluders.h"
#include "hiddenline/occlusion.h"

namespace {

// Whether t lies over p, and how high there.
bool HeightAt(const ZBR_HL_TRI& t, const ZBR_PT3& p, double& height) {
  if (t.tri_state == zbr::kVertical || t.tri_state == zbr::kInvalid) return false;
  for (int i = 0; i < 3; ++i) {
    const ZBR_PT3& a = t.pt[i];
    const ZBR_PT3& b = t.pt[(i + 1) % 3];
    if ((t.clockwise ? p.CheckPos(b, a) : p.CheckPos(a, b)) < 0) return false;
  }
  const ZBR_PT3& n = t.normal.normal();
  height = -(n.x() * p.x() + n.y() * p.y() + t.normal.distance()) / n.z();
  return true;
}

bool IsStrictlyInside(const zbr::Box& box, double x, double y) {
  return box.xmax > x && x > box.xmin && box.ymax > y && y > box.ymin;
}

// Raises z to the height of the highest triangle of s over (x, y) and returns its position; -1 when none is above z.
int PickTriangle(double x, double y, const ZBR_HL_SHELL& s, double& z) {
  const zbr::Box near = zbr::Box{s.min_x, s.min_y, s.max_x, s.max_y}.Widened(zbr::kBoxMargin);
  if (!IsStrictlyInside(near, x, y) || s.occluders == nullptr || !IsStrictlyInside(s.occluders->pickable, x, y)) return -1;
  const ZBR_PT3 p(x, y, 0.0);
  const zbr::OccluderTree& tree = s.occluders->tree;
  const auto query = tree.MakeQuery(zbr::Box{x, y, x, y}.Widened(zbr::kBoxMargin), std::numeric_limits<double>::lowest());
  int picked = -1;
  tree.Search(query, [&](int position) {
    double height = 0.0;
    if (!HeightAt(s.tris[position], p, height)) return true;
    if (height > z) {
      z = height;
      picked = position;
    } else if (height == z && position < picked) {
      picked = position;
    }
    return true;
  });
  return picked;
}

}  // namespace

bool ZBR_HL_TRI::Pick(const ZBR_PT3& p, double& z) const {
  double height = 0.0;
  if (!HeightAt(*this, p, height) || !(height > z)) return false;
  z = height;
  return true;
}

bool ZBR_HiddenLine::PickShell(double x, double y, const ZBR_HL_SHELL& s, double& z) {
  return PickTriangle(x, y, s, z) >= 0;
}

bool ZBR_HiddenLine::PickShells(double x, double y, const ZBR_HL_SHELL* shells, unsigned count, double& z) {
  bool picked = false;
  for (unsigned i = 0; i < count; ++i) {
    if (PickShell(x, y, shells[i], z)) picked = true;
  }
  return picked;
}

bool ZBR_HiddenLine::PickShells(double x, double y, const ZBR_HL_SHELL* shells, unsigned count, double& z, ZBR_HL_SOURCE& hit) {
  hit = {};
  for (unsigned i = 0; i < count; ++i) {
    const int triangle = PickTriangle(x, y, shells[i], z);
    if (triangle >= 0) hit = {static_cast<int>(i), triangle, -1};
  }
  return hit.shell >= 0;
}

bool ZBR_HiddenLine::PickShells(const std::vector<ZBR_CROSS>& crosses, const ZBR_HL_SHELL* shells, unsigned count, double& z) {
  bool picked = false;
  for (const ZBR_CROSS& cross : crosses) {
    if (PickShells(cross.pt.x(), cross.pt.y(), shells, count, z)) picked = true;
  }
  return picked;
}
