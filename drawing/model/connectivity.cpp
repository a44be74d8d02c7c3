#include "drawing/model/connectivity.h"

#include <cstddef>

namespace zbr::drawing {

Connectivity ConnectivityOf(const Model& model) {
  Connectivity all;
  all.points.reserve(model.pointCount);
  all.corners.reserve(model.TriangleCount());
  all.edges.reserve(model.TriangleCount());
  all.sides.reserve(model.edgeBegin.back());
  all.shows.reserve(model.edgeBegin.back());
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    const auto firstPoint = static_cast<std::uint32_t>(all.points.size());
    const std::uint32_t firstTriangle = model.shellBegin[s], firstEdge = model.edgeBegin[s];
    for (int v = 0; v < shell.GetVertexCnt(); ++v) all.points.push_back(shell.GetVertex(v)->GetPt());
    for (int t = 0; t < shell.GetTriangleCnt(); ++t) {
      const ZBR_ZBREPT& record = *shell.GetTriangle(t);
      auto& corners = all.corners.emplace_back();
      auto& edges = all.edges.emplace_back();
      for (std::size_t i = 0; i < 3; ++i) {
        corners[i] = firstPoint + static_cast<std::uint32_t>(VertexOf(record, i).GetIndex());
        edges[i] = firstEdge + static_cast<std::uint32_t>(EdgeOf(record, i).GetIndex());
      }
    }
    const auto number = [&](const ZBR_ZBREPT* t) {
      return t == nullptr ? Connectivity::kNone : firstTriangle + static_cast<std::uint32_t>(t->GetIndex());
    };
    for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
      const ZBR_ZBREPE& edge = *shell.GetEdge(e);
      const bool isJunction = model.Note(s, edge).isJunction;
      all.sides.push_back({number(edge.GetTriangle0()), isJunction ? Connectivity::kNone : number(edge.GetTriangle1())});
      all.shows.push_back(edge.GetShow());
    }
  }
  return all;
}

}  // namespace zbr::drawing
