// The triangle record: extents, positions, equality, adjacency, visibility bookkeeping.
#include <algorithm>
#include <cmath>

#include <zbr/hidden_line.h>

#include "core/spatial_inline.h"
#include "core/tolerance_state.h"
#include "hiddenline/occlusion.h"

using zbr::t_tolerance;

namespace {

bool Near(double a, double b, double tol) {
  return std::fabs(a - b) < tol;
}

template <class Equal>
int MatchSegments(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol, Equal equal) {
  if (equal(a0, b0, tol) && equal(a1, b1, tol)) return 0;
  if (equal(a0, b1, tol) && equal(a1, b0, tol)) return 1;
  return -1;
}

}  // namespace

unsigned ZBR_HL_TRI::GetDispSegNum() const {
  return static_cast<unsigned>(intvl_v[0].size() + intvl_v[1].size() + intvl_v[2].size());
}

void ZBR_HL_TRI::SetEdgeUnavailable(int i) {
  intvl_v[i] = zbr::Intervals();  // and its storage: most edges of a large model end here
  if (!IsEdgeAvailableAtLeastOne((i + 1) % 3, (i + 2) % 3)) any_edge_visible = false;
}

void ZBR_HL_TRI::ClearEdgeAll() {
  for (auto& list : intvl_v) list.clear();
  any_edge_visible = false;
}

bool ZBR_HL_TRI::IsPriorTo(const ZBR_HL_TRI& o) const {
  return idx < o.idx || shell_idx < o.shell_idx;
}

bool ZBR_HL_TRI::ToHide(const ZBR_HL_TRI& o, int i) const {
  return o.edge_state[i] == zbr::kGeneral && idx >= o.idx && shell_idx >= o.shell_idx;
}

void ZBR_HL_TRI::GetMaxMin() {
  max_x = std::max({pt[0].x(), pt[1].x(), pt[2].x()});
  min_x = std::min({pt[0].x(), pt[1].x(), pt[2].x()});
  max_y = std::max({pt[0].y(), pt[1].y(), pt[2].y()});
  min_y = std::min({pt[0].y(), pt[1].y(), pt[2].y()});
  max_z = std::max({pt[0].z(), pt[1].z(), pt[2].z()});
  min_z = std::min({pt[0].z(), pt[1].z(), pt[2].z()});
}

int ZBR_HL_TRI::CheckPosZ(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b) {
  const bool alongX = std::fabs(a.x() - b.x()) > std::fabs(a.y() - b.y());
  const double t = alongX ? (p.x() - a.x()) / (b.x() - a.x()) : (p.y() - a.y()) / (b.y() - a.y());
  const double above = p.z() - (a.z() + (b.z() - a.z()) * t);
  if (above > t_tolerance.eps) return 1;
  return above < -t_tolerance.eps ? -1 : 0;
}

ZBR_HL_POS_BIT zbr::PositionsAgainst(const ZBR_HL_TRI& t, const ZBR_HL_TRI& o, double contact) {
  ZBR_HL_POS_BIT pos;
  for (unsigned k = 0; k < 3; ++k) {
    const double d = o.normal.distance(t.pt[k]);
    pos.bits[d > contact ? 0 : d < -contact ? 2 : 1] |= static_cast<unsigned char>(1U << k);
  }
  return pos;
}

void ZBR_HL_TRI::CheckPos_TriToTri(const ZBR_HL_TRI& o) {
  pos = zbr::PositionsAgainst(*this, o, t_tolerance.eps);
}

bool ZBR_HL_TRI::CheckPos_TriToLineXY(const ZBR_PT3& a, const ZBR_PT3& b, ZBR_HL_POS_BIT& r) const {
  r = {};
  const double eps2 = t_tolerance.eps2;
  if (zbr::SamePoint(a, b, eps2)) return false;
  for (unsigned k = 0; k < 3; ++k) r.bits[1 + zbr::SideOfLineXY(pt[k], a, b, eps2)] |= static_cast<unsigned char>(1U << k);
  return true;
}

bool ZBR_HL_TRI::CheckPos_EdgeToLineXY(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b, ZBR_HL_POS_BIT& r) {
  const double eps2 = t_tolerance.eps2;
  if (zbr::SamePoint(a, b, eps2)) return false;
  r = {};
  r.bits[1 + zbr::SideOfLineXY(p, a, b, eps2)] |= 1U;
  r.bits[1 + zbr::SideOfLineXY(q, a, b, eps2)] |= 2U;
  return true;
}

bool ZBR_HL_TRI::EqualPtPt(const ZBR_PT3& p, const ZBR_PT3& q, double tol) {
  return Near(p.x(), q.x(), tol) && Near(p.y(), q.y(), tol);
}

bool ZBR_HL_TRI::EqualPtPtX(const ZBR_PT3& p, const ZBR_PT3& q, double tol) {
  return Near(p.x(), q.x(), tol);
}

bool ZBR_HL_TRI::EqualPtPtY(const ZBR_PT3& p, const ZBR_PT3& q, double tol) {
  return Near(p.y(), q.y(), tol);
}

int ZBR_HL_TRI::EqualSegSeg(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol) {
  return MatchSegments(a0, a1, b0, b1, tol, EqualPtPt);
}

int ZBR_HL_TRI::EqualSegSegX(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol) {
  return MatchSegments(a0, a1, b0, b1, tol, EqualPtPtX);
}

int ZBR_HL_TRI::EqualSegSegY(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, double tol) {
  return MatchSegments(a0, a1, b0, b1, tol, EqualPtPtY);
}

int ZBR_HL_TRI::GetAdjEdge(int i, const ZBR_HL_TRI& o) const {
  if (adj_edge[i] != -1) return adj_edge[i];
  const double eps2 = t_tolerance.eps2;
  const ZBR_PT3& p = pt[i];
  const ZBR_PT3& q = pt[(i + 1) % 3];
  for (int k = 0; k < 3; ++k) {
    if (o.adj[k] != idx) continue;
    const ZBR_PT3& a = o.pt[k];
    const ZBR_PT3& b = o.pt[(k + 1) % 3];
    if (zbr::SamePoint(p, a, eps2) && zbr::SamePoint(q, b, eps2)) return k;
    if (zbr::SamePoint(p, b, eps2) && zbr::SamePoint(q, a, eps2)) return k;
  }
  return -1;
}

void ZBR_HL_TRI::Offset(const ZBR_PT3& d) {
  for (ZBR_PT3& p : pt) p += d;
  max_x += d.x();
  min_x += d.x();
  max_y += d.y();
  min_y += d.y();
  max_z += d.z();
  min_z += d.z();
  normal += d;
  for (auto& list : intvl_v) {
    for (ZBR_HL_INTERVAL& v : list) {
      v.s.pt += d;
      v.e.pt += d;
    }
  }
}

void ZBR_HL_TRI::ShrinkInterval() {
  for (auto& list : intvl_v) list.shrink_to_fit();
}

void ZBR_HL_TRI::SaveInfo(ZBR_HL_TRI_SAVE& r, int position) {
  r.position = position;
  r.any_edge_visible = any_edge_visible;
  for (int k = 0; k < 3; ++k) r.intvl[k] = intvl_v[k];
}

void ZBR_HL_TRI::RestoreInfo(ZBR_HL_TRI_SAVE& r) {
  any_edge_visible = r.any_edge_visible;
  for (int k = 0; k < 3; ++k) {
    intvl_v[k] = std::move(r.intvl[k]);
    r.intvl[k].clear();
  }
}
