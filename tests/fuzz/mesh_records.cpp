// Mesh records beside a plain table of edges, whatever the triangles are.
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include <zbr/mesh.h>

#include "fuzz/bytes.h"

namespace {

// Numbered as they are met, with their triangles.
using Edges = std::map<std::pair<int, int>, std::pair<int, std::vector<int>>>;

void CheckTriangle(const ZBR_ZBREPS& shell, int t, const Edges& edges) {
  const ZBR_ZBREPT& record = *shell.GetTriangle(t);
  const int v[] = {record.GetVertex0()->GetIndex(), record.GetVertex1()->GetIndex(), record.GetVertex2()->GetIndex()};
  const ZBR_ZBREPE* const e[] = {record.GetEdge0(), record.GetEdge1(), record.GetEdge2()};
  const ZBR_ZBREPT* const adjacent[] = {record.GetAdjTriangle0(), record.GetAdjTriangle1(), record.GetAdjTriangle2()};
  for (std::size_t k = 0; k < 3; ++k) {
    const auto& [number, users] = edges.at(std::minmax(v[k], v[(k + 1) % 3]));
    const int second = users.size() > 1 ? users[1] : -1;
    const int across = users[0] == t ? second : second == t ? users[0] : -1;
    Require(e[k] == shell.GetEdge(number), "a triangle knows its edges");
    Require(adjacent[k] == (across < 0 ? nullptr : shell.GetTriangle(across)), "a triangle knows its neighbours");
  }
}

}  // namespace

void Fuzz(Bytes& bytes) {
  ZBR_ZBREPS shell;
  const int vertices = 1 + bytes.Below(40);
  const int triangles = bytes.Below(80);
  shell.SetVertexCnt(vertices);
  for (int i = 0; i < vertices; ++i) shell.SetVertex(i, i, 0, 0);
  shell.SetTriangleCnt(triangles);
  if (bytes.Flag()) shell.ReserveEdge();
  Edges edges;
  for (int t = 0; t < triangles; ++t) {
    const int v[] = {bytes.Below(vertices), bytes.Below(vertices), bytes.Below(vertices)};
    shell.SetTriangleWithEdge(t, v[0], v[1], v[2]);
    for (std::size_t k = 0; k < 3; ++k) {
      const auto number = static_cast<int>(edges.size());
      edges.try_emplace(std::minmax(v[k], v[(k + 1) % 3]), number, std::vector<int>()).first->second.second.push_back(t);
    }
  }
  Require(shell.GetEdgeCnt() == static_cast<int>(edges.size()), "as many edges as pairs");
  for (const auto& [pair, edge] : edges) {
    Require(shell.GetEdge(int{pair.second}, int{pair.first}) == shell.GetEdge(edge.first), "an edge is found by its vertices");
  }
  for (int t = 0; t < triangles; ++t) CheckTriangle(shell, t, edges);
}
