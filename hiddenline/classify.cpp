// Which triangles and edges take part, and what each triangle draws.
//
// A triangle is general, vertical (seen edge-on) or invalid; an edge general, vertical (seen end-on) or invalid. A vertical
// triangle projects to a line. It hides nothing by its area, and of its edges only those stay that form its upper outline, each
// place of the line drawn once:
//
//        apex                       one long edge L joins the extreme vertices; the other two, n after it and p before it, meet at
//       /    \    "vert_upper"      the apex, over or under it. With the apex below, L is the outline. With the apex above, n and p
//      p      n                     are; where one of them is not to be drawn (a line inside a smooth wall), L takes its stretch,
//     /   L    \                    cut at M below the apex.
//
// A triangle with an edge seen end-on has the other two edges on one line: the higher one is the outline.
#include <algorithm>
#include <cmath>

#include <zbr/hidden_line.h>

#include "core/small_sort.h"
#include "core/tolerance_state.h"
#include "hiddenline/extents.h"
#include "hiddenline/interval.h"
#include "hiddenline/occlusion.h"

using zbr::kGeneral;
using zbr::kInvalid;
using zbr::kVertical;

namespace {

bool IsUsable(const ZBR_PT3& p) {
  return zbr::IsUsable(p.x()) && zbr::IsUsable(p.y()) && zbr::IsUsable(p.z());
}

bool CanBeComputedWith(const ZBR_HL_TRI& t) {
  return IsUsable(t.pt[0]) && IsUsable(t.pt[1]) && IsUsable(t.pt[2]);
}

void Invalidate(ZBR_HL_TRI& t) {
  t.tri_state = kInvalid;
  std::fill(t.edge_state, t.edge_state + 3, kInvalid);
}

int EdgeState(const ZBR_PT3& p, const ZBR_PT3& q, const zbr::Tolerance& tol) {
  if (zbr::WithinTol((q - p).Length2(), tol.eps2)) return kInvalid;
  const bool endOn = zbr::WithinTol(p.x(), q.x(), tol.eps) && zbr::WithinTol(p.y(), q.y(), tol.eps);
  return endOn ? kVertical : kGeneral;
}

// A triangle one of whose edges is degenerate: the two others lie on each other, and one of them draws for both.
void KeepOneOfTwo(ZBR_HL_TRI& t) {
  const int degenerate = static_cast<int>(std::find(t.edge_state, t.edge_state + 3, kInvalid) - t.edge_state);
  const int first = degenerate == 0 ? 1 : 0;
  const int second = degenerate == 2 ? 1 : 2;
  const bool endOn = t.edge_state[first] == kVertical || t.edge_state[second] == kVertical;
  t.tri_state = kInvalid;
  if (endOn || !t.dispj[first]) t.edge_state[first] = kInvalid;
  if (endOn || t.dispj[first]) t.edge_state[second] = kInvalid;
}

// The single interval of the long edge L on one side of the place below the apex, where only one of the edges at the apex is drawn.
void GiveStretch(ZBR_HL_TRI& t) {
  const int edge = static_cast<unsigned char>(t.vert_edge);
  const bool fromStart = t.dispj[(edge + 1) % 3];
  if (!t.dispj[edge]) return;
  const ZBR_PT3& p = t.pt[edge];
  const ZBR_PT3& q = t.pt[(edge + 1) % 3];
  const bool rising = t.vert_axis == 1 ? p.x() < q.x() : p.y() < q.y();
  const double r = rising ? t.vert_ratio : 1.0 - t.vert_ratio;
  const ZBR_PT3 below = zbr::PointAt(p, q, r);
  if (fromStart) {
    t.intvl_v[edge].emplace_back(p, below, 0.0, r);
  } else {
    t.intvl_v[edge].emplace_back(below, q, r, 1.0);
  }
}

// Makes the edges that are not part of the upper outline invalid.
void KeepOutline(ZBR_HL_TRI& t, int longEdge, bool hasEndOnEdge) {
  const int next = (longEdge + 1) % 3;  // the end-on edge, if there is one
  const int prev = (longEdge + 2) % 3;
  if (hasEndOnEdge) {
    t.edge_state[t.vert_upper && t.dispj[prev] ? longEdge : prev] = kInvalid;
  } else if (t.vert_upper && t.dispj[next] && t.dispj[prev]) {
    t.edge_state[longEdge] = kInvalid;
  } else if (t.vert_upper && t.dispj[next]) {
    t.edge_state[prev] = kInvalid;
  } else if (t.vert_upper && t.dispj[prev]) {
    t.edge_state[next] = kInvalid;
  } else {
    t.edge_state[next] = kInvalid;
    t.edge_state[prev] = kInvalid;
  }
}

void CheckThreeEdges(ZBR_HL_TRI& t, double eps) {
  const auto endOn = std::count(t.edge_state, t.edge_state + 3, kVertical);
  if (endOn >= 2 || !t.normal.IsValid()) {
    Invalidate(t);
  } else if (endOn == 1 || std::fabs(t.normal.normal().z()) <= eps) {
    t.tri_state = kVertical;
    const int endOnEdge = endOn == 0 ? -1 : static_cast<int>(std::find(t.edge_state, t.edge_state + 3, kVertical) - t.edge_state);
    KeepOutline(t, t.SetVerticalInfo(endOnEdge), endOn == 1);
  }
}

// Whether L and one of the other two share the outline of a wall.
bool IsOutlineShared(const ZBR_HL_TRI& t) {
  if (!t.IsTriVertical() || !t.vert_upper || std::count(t.edge_state, t.edge_state + 3, kVertical) != 0) return false;
  return t.dispj[(t.vert_edge + 1) % 3] != t.dispj[(t.vert_edge + 2) % 3];
}

}  // namespace

void zbr::Classify(ZBR_HL_TRI& t) {
  t.ClearEdgeAll();
  if (!CanBeComputedWith(t)) return Invalidate(t);
  const Tolerance& tol = t_tolerance;
  for (int i = 0; i < 3; ++i) t.edge_state[i] = EdgeState(t.pt[i], t.pt[(i + 1) % 3], tol);
  t.tri_state = kGeneral;
  switch (std::count(t.edge_state, t.edge_state + 3, kInvalid)) {
    case 0:
      CheckThreeEdges(t, tol.eps);
      break;
    case 1:
      KeepOneOfTwo(t);
      break;
    default:
      Invalidate(t);
  }
}

void zbr::GiveIntervals(ZBR_HL_TRI& t, unsigned except) {
  const auto isExcepted = [except](int i) { return (except >> static_cast<unsigned>(i) & 1U) != 0; };
  if (IsOutlineShared(t) && !isExcepted(t.vert_edge)) GiveStretch(t);
  for (int i = 0; i < 3; ++i) {
    if (t.edge_state[i] != kGeneral || !t.dispj[i] || isExcepted(i)) continue;
    if (t.intvl_v[i].empty()) t.intvl_v[i].emplace_back(t.pt[i], t.pt[(i + 1) % 3], 0.0, 1.0);
    t.any_edge_visible = true;
  }
}

void ZBR_HL_TRI::CheckTriangle() {
  zbr::Classify(*this);
  zbr::GiveIntervals(*this);
}

int ZBR_HL_TRI::SetVerticalInfo(int e) {
  vert_axis = max_x - min_x >= max_y - min_y ? 1 : 2;
  const auto along = [this](int k) { return vert_axis == 1 ? pt[k].x() : pt[k].y(); };
  int order[3] = {0, 1, 2};
  zbr::SmallSort(order, order + 3, [&](int i, int j) { return along(i) > along(j); });
  std::copy(order, order + 3, vert_order);
  const double lowest = along(order[2]);
  vert_ratio = std::clamp((along(order[1]) - lowest) / (along(order[0]) - lowest), 0.0, 1.0);
  if (e < 0) {
    const int high = order[0];
    const int low = order[2];
    const int edge = low == (high + 1) % 3 ? high : low;
    vert_edge = static_cast<signed char>(edge);
    vert_upper = CheckPosZ(pt[(edge + 2) % 3], pt[edge], pt[(edge + 1) % 3]) > 0;
  } else {
    vert_edge = static_cast<signed char>((e + 2) % 3);
    vert_upper = pt[(e + 1) % 3].z() > pt[e].z();
  }
  return vert_edge;
}
