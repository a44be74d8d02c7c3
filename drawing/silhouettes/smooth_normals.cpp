#include "drawing/silhouettes/smooth_normals.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "drawing/model/disjoint_sets.h"

namespace zbr::drawing {
namespace {

// Cosine of the angle up to which a rough surface may be a smooth one all the same, whatever of it is drawn as creases.
constexpr double kSharp = 0.5;

double AngleAt(const ZBR_ZBREPT& t, std::size_t i) {
  const ZBR_PT3 &p = VertexOf(t, i).GetPt(), a = VertexOf(t, (i + 1) % 3).GetPt() - p, b = VertexOf(t, (i + 2) % 3).GetPt() - p;
  const double size = a.Length() * b.Length();
  return size > 0 ? Acos(std::clamp(a.InnerProduct(b) / size, -1.0, 1.0)) : 0.0;
}

// The corner of a triangle at a vertex.
std::uint32_t CornerAt(const ZBR_ZBREPT& t, const ZBR_ZBREPV& vertex) {
  std::uint32_t i = 0;
  while (i < 2 && VertexOf(t, i).GetIndex() != vertex.GetIndex()) ++i;
  return 3 * static_cast<std::uint32_t>(t.GetIndex()) + i;
}

}  // namespace

bool IsSmoothAcross(const Model& model, std::size_t shell, const ZBR_ZBREPE& edge) {
  const EdgeNote note = model.Note(shell, edge);
  if (note.isJunction || note.isSameWay || edge.GetTriangle1() == nullptr) return false;
  if (!edge.GetShow() || !model.isRough) return !edge.GetShow();
  const ZBR_PT3* const normals = model.normals.data() + model.shellBegin[shell];
  return normals[edge.GetTriangle0()->GetIndex()].InnerProduct(normals[edge.GetTriangle1()->GetIndex()]) > kSharp;
}

SmoothNormals SmoothNormalsOf(const Model& model, std::size_t shell) {
  const ZBR_ZBREPS& records = model.Shell(shell);
  const auto count = static_cast<std::size_t>(records.GetTriangleCnt());
  DisjointSets sets(3 * count);
  for (int e = 0; e < records.GetEdgeCnt(); ++e) {
    const ZBR_ZBREPE& edge = *records.GetEdge(e);
    if (!IsSmoothAcross(model, shell, edge)) continue;
    for (const ZBR_ZBREPV* const vertex : {edge.GetVertex0(), edge.GetVertex1()})
      sets.Unite(CornerAt(*edge.GetTriangle0(), *vertex), CornerAt(*edge.GetTriangle1(), *vertex));
  }
  SmoothNormals normals;
  normals.ofCorner.resize(count);
  std::vector<std::uint32_t> place(3 * count);
  for (std::uint32_t c = 0; c < 3 * count; ++c) {
    const std::uint32_t first = sets.Find(c);  // nowhere larger
    if (first == c) {
      place[c] = static_cast<std::uint32_t>(normals.all.size());
      normals.all.emplace_back();
    }
    normals.ofCorner[c / 3][c % 3] = place[first];
    normals.all[place[first]] +=
        model.normals[model.shellBegin[shell] + c / 3] * AngleAt(*records.GetTriangle(static_cast<int>(c / 3)), c % 3);
  }
  return normals;
}

}  // namespace zbr::drawing
