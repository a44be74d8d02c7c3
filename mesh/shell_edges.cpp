// The edges of a shell, made while its triangles are set.
//
// An edge is known by its two vertices in ascending order, whichever way a triangle runs along it. Edges are numbered in the order
// in which triangles first need them.
#include <algorithm>
#include <utility>

#include <zbr/mesh.h>

void ZBR_ZBREPS::SetVertexCnt(int n) {
  vertices_.resize(static_cast<std::size_t>(n));
  edgeMap_.SetVertexCnt(vertices_.size());
}

void ZBR_ZBREPS::SetVertex(int i, double x, double y, double z) {
  ZBR_ZBREPV& v = *GetVertex(i);
  v.SetIndex(i);
  v.SetPt(x, y, z);
}

void ZBR_ZBREPS::SetTriangleCnt(int n) {
  triangles_.resize(static_cast<std::size_t>(n));
}

// A surface with one handle has two edges more than expected; without some room the whole array would grow to twice its size. Room
// that is not used is not touched.
void ZBR_ZBREPS::ReserveEdge() {
  const std::size_t corners = vertices_.size() + triangles_.size();
  if (corners <= 2) return;
  const std::size_t edges = corners - 2 + corners / 16;
  edges_.reserve(edges);
  edgeMap_.Reserve(edges);
}

void ZBR_ZBREPS::SetTriangleWithEdge(int i, int a, int b, int c) {
  const int ab = FindOrAddEdge(a, b, i);
  const int bc = FindOrAddEdge(b, c, i);
  const int ca = FindOrAddEdge(c, a, i);
  ZBR_ZBREPT& t = *GetTriangle(i);
  t.SetShell(this);
  t.SetIndex(i);
  t.SetV(a, b, c);
  t.SetE(ab, bc, ca);
}

int ZBR_ZBREPS::FindOrAddEdge(int a, int b, int triangle) {
  if (a > b) std::swap(a, b);
  const int next = GetEdgeCnt();
  const int found = edgeMap_.FindOrAdd(a, b);
  if (found == next) {
    ZBR_ZBREPE& added = edges_.emplace_back();
    added.SetIndex(next);
    added.SetV(a, b);
    added.SetShell(this);
  }
  edges_[static_cast<std::size_t>(found)].SetAdjTriangle(triangle);
  return found;
}

ZBR_ZBREPE* ZBR_ZBREPS::GetEdge(int& a, int& b) {
  if (a > b) std::swap(a, b);
  const int found = edgeMap_.Find(a, b);
  return found < 0 ? nullptr : GetEdge(found);
}

ZBR_ZBREPE* ZBR_ZBREPS::GetEdge(int&& a, int&& b) {
  return GetEdge(a, b);
}

const ZBR_ZBREPE* ZBR_ZBREPS::GetEdge(int a, int b) const {
  const int found = edgeMap_.Find(std::min(a, b), std::max(a, b));
  return found < 0 ? nullptr : GetEdge(found);
}

void ZBR_ZBREPS::ResetParentShell() {
  for (ZBR_ZBREPT& t : triangles_) t.SetShell(this);
  for (ZBR_ZBREPE& e : edges_) e.SetShell(this);
}
