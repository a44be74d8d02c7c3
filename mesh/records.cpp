// Edges, triangles and bodies beyond plain access: adjacency noted, normals, the comparison of bodies.
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
