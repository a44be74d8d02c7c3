// Edges, triangles and bodies: what their getters find, and the comparison of bodies.
#include <zbr/mesh.h>

#include "core/spatial_inline.h"
#include "core/tolerance_state.h"

int ZBR_ZBREPE::SetAdjTriangle(int t) {
  if (tri0_ == -1) {
    tri0_ = t;
    return 0;
  }
  if (tri1_ != -1) return 2;
  tri1_ = t;
  return 1;
}

ZBR_ZBREPV* ZBR_ZBREPE::GetVertex0() const {
  return shell_->GetVertex(vertex0_);
}

ZBR_ZBREPV* ZBR_ZBREPE::GetVertex1() const {
  return shell_->GetVertex(vertex1_);
}

ZBR_ZBREPT* ZBR_ZBREPE::GetTriangle0() const {
  return tri0_ == -1 ? nullptr : shell_->GetTriangle(tri0_);
}

ZBR_ZBREPT* ZBR_ZBREPE::GetTriangle1() const {
  return tri1_ == -1 ? nullptr : shell_->GetTriangle(tri1_);
}

ZBR_ZBREPV* ZBR_ZBREPT::GetVertex0() const {
  return shell_->GetVertex(vtx_[0]);
}

ZBR_ZBREPV* ZBR_ZBREPT::GetVertex1() const {
  return shell_->GetVertex(vtx_[1]);
}

ZBR_ZBREPV* ZBR_ZBREPT::GetVertex2() const {
  return shell_->GetVertex(vtx_[2]);
}

ZBR_ZBREPE* ZBR_ZBREPT::GetEdge0() const {
  return shell_->GetEdge(edge_[0]);
}

ZBR_ZBREPE* ZBR_ZBREPT::GetEdge1() const {
  return shell_->GetEdge(edge_[1]);
}

ZBR_ZBREPE* ZBR_ZBREPT::GetEdge2() const {
  return shell_->GetEdge(edge_[2]);
}

ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle(ZBR_ZBREPE* edge) const {
  ZBR_ZBREPT* const first = edge->GetTriangle0();
  ZBR_ZBREPT* const second = edge->GetTriangle1();
  if (first == this) return second;
  return second == this ? first : nullptr;
}

ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle0() const {
  return GetAdjTriangle(GetEdge0());
}

ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle1() const {
  return GetAdjTriangle(GetEdge1());
}

ZBR_ZBREPT* ZBR_ZBREPT::GetAdjTriangle2() const {
  return GetAdjTriangle(GetEdge2());
}

ZBR_PT3 ZBR_ZBREPT::GetFaceNormal() {
  const ZBR_PT3& p0 = GetVertex0()->GetPt();
  const ZBR_PT3& p1 = GetVertex1()->GetPt();
  const ZBR_PT3& p2 = GetVertex2()->GetPt();
  return (p1 - p0).OuterProduct(p2 - p0).Unit();
}

void ZBR_ZBREPB::SetShellCnt(int n) {
  shells_.resize(static_cast<std::size_t>(n));
}

bool ZBR_ZBREPB::EraseIfEmptyShell(int i) {
  if (i == GetShellCnt() || !GetShell(i)->IsEmpty()) return false;
  shells_.erase(shells_.begin() + i);
  return true;
}

double ZBR_ZBREPB::GetHint() const {
  double hint = GetShellCnt();
  for (const ZBR_ZBREPS& shell : shells_) {
    hint += shell.GetVertexCnt();
    for (int i = 0; i < shell.GetVertexCnt(); ++i) {
      const ZBR_PT3& p = shell.GetVertex(i)->GetPt();
      hint += p.x();
      hint += p.y();
      hint += p.z();
    }
  }
  return hint;
}

bool ZBR_ZBREPB::IsEqual(const ZBR_ZBREPB& o) const {
  if (GetShellCnt() != o.GetShellCnt()) return false;
  const double eps2 = zbr::t_tolerance.eps2;
  for (int k = 0; k < GetShellCnt(); ++k) {
    const ZBR_ZBREPS& a = *GetShell(k);
    const ZBR_ZBREPS& b = *o.GetShell(k);
    if (a.GetVertexCnt() != b.GetVertexCnt()) return false;
    for (int i = 0; i < a.GetVertexCnt(); ++i) {
      if (!zbr::SamePoint(a.GetVertex(i)->GetPt(), b.GetVertex(i)->GetPt(), eps2)) return false;
    }
  }
  return true;
}
