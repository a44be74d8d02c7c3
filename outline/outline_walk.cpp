// The outline edge by edge: what of an edge has no triangle on its right.
//
// The edge of a projected triangle that runs counter-clockwise bounds the triangles' union just where nothing lies on its right.
// So each triangle near the edge takes away the stretch along which it covers the right side: within its area, and along an edge
// of its own if that runs the other way. The triangles are found by a walk over the quadtree like that of the hidden lines (or,
// where that is not built, in the driver's tree), but regardless of height.
#include <algorithm>
#include <limits>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "hiddenline/extents.h"
#include "hiddenline/occluders.h"
#include "hiddenline/occlusion.h"

namespace {

using Parts = std::vector<ZBR_HL_INTERVAL>;

// A range of parameters, empty unless from < to.
struct Range {
  double from;
  double to;
};

// Narrows `range` to where the projected line p->q has the left of a->b on its right side.
void ClipToLeftOf(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& p, const ZBR_PT& q, Range& range) {
  const ZBR_PT d = b - a;
  const double length = d.Length();
  const double offP = zbr::Cross(d, p - a) / length;
  const double offQ = zbr::Cross(d, q - a) / length;
  const double eps = zbr::t_tolerance.eps;
  if (zbr::WithinTol(offP, eps) && zbr::WithinTol(offQ, eps)) {
    if (d.InnerProduct(q - p) > 0.0) range.to = range.from;  // the same way: the left of one is the left of the other
  } else if (offP <= 0.0 && offQ <= 0.0) {
    range.to = range.from;
  } else if (offP < 0.0 || offQ < 0.0) {
    double& end = offP < 0.0 ? range.from : range.to;
    const double t = offP / (offP - offQ);
    end = offP < 0.0 ? std::max(end, t) : std::min(end, t);
  }
}

// Where u covers the right side of the projected edge p->q.
Range CoveredBy(const ZBR_HL_TRI& u, const ZBR_PT& p, const ZBR_PT& q) {
  Range range{0.0, 1.0};
  for (int k = 0; k < 3 && range.from < range.to; ++k) {
    const ZBR_PT& a = u.pt[k].xy();
    const ZBR_PT& b = u.pt[(k + 1) % 3].xy();
    ClipToLeftOf(u.clockwise ? b : a, u.clockwise ? a : b, p, q, range);
  }
  return range;
}

ZBR_HL_INTERVAL::PT_LIN PlaceAt(const ZBR_PT3& p, const ZBR_PT3& q, double t) {
  return {p + (q - p) * t, t};
}

// Takes the range, of parameters along p-q, from the parts.
void Subtract(const ZBR_PT3& p, const ZBR_PT3& q, const Range& range, Parts& parts) {
  Parts left;
  for (const ZBR_HL_INTERVAL& part : parts) {
    if (part.s.t < range.from) left.emplace_back(part.s, part.e.t <= range.from ? part.e : PlaceAt(p, q, range.from));
    if (part.e.t > range.to) left.emplace_back(part.s.t >= range.to ? part.s : PlaceAt(p, q, range.to), part.e);
  }
  parts.swap(left);
}

// Takes what u covers from the parts.
void Uncover(const ZBR_HL_TRI& t, int edge, const ZBR_HL_TRI& u, Parts& parts) {
  const ZBR_PT3& p = t.pt[edge];
  const ZBR_PT3& q = t.pt[(edge + 1) % 3];
  Range range = t.clockwise ? CoveredBy(u, q.xy(), p.xy()) : CoveredBy(u, p.xy(), q.xy());
  const double least = zbr::t_tolerance.eps / p.xy().Distance(q.xy());
  if (!(range.to - range.from > least)) return;
  if (t.clockwise) range = {1.0 - range.to, 1.0 - range.from};
  Subtract(p, q, range, parts);
  std::erase_if(parts, [least](const ZBR_HL_INTERVAL& part) { return !(part.e.t - part.s.t > least); });
}

zbr::Box SearchBox(const ZBR_HL_TRI& t, int edge) {
  return zbr::BoxOfSegment(t.pt[edge].xy(), t.pt[(edge + 1) % 3].xy()).Widened(zbr::kBoxMargin);
}

void TryUncover(const ZBR_HL_TRI& t, int edge, const ZBR_HL_TRI& u, Parts& parts) {
  if (&u == &t || u.tri_state != zbr::kGeneral || !zbr::Overlap(SearchBox(t, edge), zbr::BoxOf(u))) return;
  Uncover(t, edge, u, parts);
}

}  // namespace

bool ZBR_HiddenLine::OutLine_TriByQuad(const ZBR_HL_TRI& t, int edge, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node,
                                       Parts& parts) {
  if (!zbr::Overlap(SearchBox(t, edge), {node.min_x, node.min_y, node.max_x, node.max_y})) return parts.empty();
  for (const int position : node.tris) {
    const ZBR_HL_TRI& u = s.tris[position];
    if (parts.empty()) break;
    TryUncover(t, edge, u, parts);
  }
  return parts.empty();
}

bool ZBR_HiddenLine::OutLine_TriByChildQuad(const ZBR_HL_TRI& t, int edge, const ZBR_HL_SHELL& s, const ZBR_HL_QUAD& node,
                                            Parts& parts) {
  if (OutLine_TriByQuad(t, edge, s, node, parts)) return true;
  for (const ZBR_HL_QUAD* child : node.child) {
    if (child != nullptr && OutLine_TriByChildQuad(t, edge, s, *child, parts)) return true;
  }
  return false;
}

void ZBR_HiddenLine::OutLine_TriByShell(const ZBR_HL_TRI& t, int edge, const ZBR_HL_SHELL& s, Parts& parts) {
  if (t.tri_state != zbr::kGeneral) {
    parts.clear();
  } else if (s.quad_built) {
    OutLine_TriByChildQuad(t, edge, s, s.root, parts);
  } else if (s.occluders != nullptr) {
    constexpr double kAnyHeight = std::numeric_limits<double>::lowest();
    const zbr::OccluderTree& tree = s.occluders->tree;
    tree.Search(tree.MakeQuery(SearchBox(t, edge), kAnyHeight), [&](int position) {
      if (!parts.empty()) TryUncover(t, edge, s.tris[position], parts);
      return !parts.empty();
    });
  }
}
