// Mesh records: edges by Euler's formula and beside a plain map, lifetimes, comparison of bodies.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include <zbr/mesh.h>
#include <zbr/tolerance.h>

#include "models/models.h"

namespace {

using Triangle = std::array<int, 3>;
using Triangles = std::vector<Triangle>;
using Pair = std::pair<int, int>;

Triangles TrianglesOf(const example::Mesh& mesh) {
  Triangles triangles;
  for (const auto& [a, b, c] : mesh.triangles) triangles.push_back({static_cast<int>(a), static_cast<int>(b), static_cast<int>(c)});
  return triangles;
}

void SetPoints(ZBR_ZBREPS& shell, const std::vector<ZBR_PT3>& points) {
  shell.SetVertexCnt(static_cast<int>(points.size()));
  int next = 0;
  for (const ZBR_PT3& p : points) shell.SetVertex(next++, p.x(), p.y(), p.z());
}

void SetTriangles(ZBR_ZBREPS& shell, const Triangles& triangles) {
  int next = 0;
  shell.SetTriangleCnt(static_cast<int>(triangles.size()));
  for (const auto& [a, b, c] : triangles) shell.SetTriangleWithEdge(next++, a, b, c);
}

TEST(MeshEdges, ClosedBody) {
  const example::Mesh mesh = example::Torus(2000);
  ZBR_ZBREPS shell;
  SetPoints(shell, mesh.points);
  shell.SetTriangleCnt(static_cast<int>(mesh.triangles.size()));
  shell.ReserveEdge();
  const ZBR_ZBREPE* const first = shell.GetEdge(0);
  SetTriangles(shell, TrianglesOf(mesh));
  EXPECT_EQ(shell.GetEdge(0), first);  // what was reserved was enough
  EXPECT_EQ(shell.GetVertexCnt() - shell.GetEdgeCnt() + shell.GetTriangleCnt(), 0);
  for (int e = 0; e < shell.GetEdgeCnt(); ++e) EXPECT_NE(shell.GetEdge(e)->GetTriangle1(), nullptr);
}

TEST(MeshEdges, TwoTriangles) {
  ZBR_ZBREPS shell;
  shell.ReserveEdge();  // for -2 edges
  shell.SetVertexCnt(4);
  SetTriangles(shell, {{0, 1, 2}, {2, 1, 3}});
  std::vector<Pair> edges;
  for (int e = 0; e < shell.GetEdgeCnt(); ++e) edges.emplace_back(shell.GetEdge(e)->GetV0(), shell.GetEdge(e)->GetV1());
  EXPECT_EQ(edges, (std::vector<Pair>{{0, 1}, {1, 2}, {0, 2}, {1, 3}, {2, 3}}));
  EXPECT_EQ(shell.GetTriangle(0)->GetAdjTriangle1(), shell.GetTriangle(1));
  EXPECT_EQ(shell.GetTriangle(1)->GetAdjTriangle0(), shell.GetTriangle(0));
  EXPECT_EQ(shell.GetTriangle(0)->GetAdjTriangle0(), nullptr);                 // a border
  EXPECT_EQ(shell.GetTriangle(0)->GetAdjTriangle(shell.GetEdge(4)), nullptr);  // not its edge
  int a = 3;
  int b = 1;
  EXPECT_EQ(shell.GetEdge(a, b), shell.GetEdge(3));
  EXPECT_EQ(Pair(a, b), Pair(1, 3));  // swapped
  EXPECT_EQ(shell.GetEdge(3, 0), nullptr);
  EXPECT_EQ(shell.GetEdge(-1, 2147483647), nullptr);
  ZBR_ZBREPE fresh;
  for (const int answer : {0, 1, 2, 2}) EXPECT_EQ(fresh.SetAdjTriangle(7), answer);
}

TEST(MeshEdges, MapTakesAnyPair) {
  std::mt19937 random(1);
  std::map<Pair, int> plain;
  ZBR_ZBREP_EDGE_MAP map;
  const auto vertex = [&] {
    const int small = static_cast<int>(random() % 50);
    const int kinds[] = {small, 2147483647 - small, static_cast<int>(random() % 3000)};
    return kinds[random() % 3];
  };
  for (int i = 0; i < 100'000; ++i) {
    if (i % 10'000 == 5'000) map.SetVertexCnt(random() % 4000);  // also fewer, and edges of some are in the table
    const auto [a, b] = std::minmax({vertex(), vertex()});
    const auto at = plain.find({a, b});
    ASSERT_EQ(map.Find(a, b), at == plain.end() ? -1 : at->second);
    ASSERT_EQ(map.FindOrAdd(a, b), plain.emplace(Pair(a, b), static_cast<int>(plain.size())).first->second);
  }
}

TEST(MeshBody, CopiedAndMovedShellsPointToWhereTheyWere) {
  const example::Mesh box = example::Box({0, 0, 0}, {1, 1, 1});
  ZBR_ZBREPB body;
  body.SetShellCnt(3);
  SetPoints(*body.GetShell(1), box.points);
  SetTriangles(*body.GetShell(1), TrianglesOf(box));
  *body.GetShell(2) = *body.GetShell(1);
  EXPECT_EQ(body.GetShell(2)->GetTriangle(0)->GetVertex0(), body.GetShell(1)->GetTriangle(0)->GetVertex0());
  EXPECT_EQ(body.GetShell(2)->GetEdge(0)->GetTriangle0(), body.GetShell(1)->GetEdge(0)->GetTriangle0());
  body.GetShell(1)->SetVertex(0, 7, 7, 7);
  body.GetShell(0)->SetVertexCnt(3);  // a shell with vertices alone is empty
  EXPECT_FALSE(body.EraseIfEmptyShell(1));
  EXPECT_FALSE(body.EraseIfEmptyShell(3));
  EXPECT_TRUE(body.EraseIfEmptyShell(0));
  ASSERT_EQ(body.GetShellCnt(), 2);
  EXPECT_EQ(body.GetShell(0)->GetVertex(0)->GetPt().x(), 7);
  for (int s = 0; s < 2; ++s) {
    ZBR_ZBREPS& shell = *body.GetShell(s);
    shell.ResetParentShell();
    EXPECT_EQ(shell.GetTriangle(3)->GetVertex1(), shell.GetVertex(TrianglesOf(box)[3][1]));
    EXPECT_EQ(shell.GetEdge(5)->GetTriangle0(), shell.GetTriangle(shell.GetEdge(5)->GetTriangle0()->GetIndex()));
    EXPECT_EQ(shell.GetEdge(5)->GetTriangle0()->GetAdjTriangle(shell.GetEdge(5)), shell.GetEdge(5)->GetTriangle1());
  }
}

ZBR_ZBREPB BodyOf(const std::vector<ZBR_PT3>& points) {
  ZBR_ZBREPB body;
  body.SetShellCnt(1);
  SetPoints(*body.GetShell(0), points);
  return body;
}

TEST(MeshBody, HintIsSummedInOrder) {
  EXPECT_EQ(ZBR_ZBREPB().GetHint(), 0.0);
  EXPECT_EQ(BodyOf({{1, 2, 3}}).GetHint(), 8.0);
  EXPECT_EQ(BodyOf({{0x1p53, 0.75, -0x1p53}, {1, 1, 0.5}}).GetHint(), 6.5);  // exactly it is 6.25
  EXPECT_EQ(BodyOf({{1, 1, 0.5}, {0x1p53, 0.75, -0x1p53}}).GetHint(), 6.0);
}

TEST(MeshBody, EqualityIsOfPlaces) {
  const double eps = 1e-3;
  const ZBR_TmpEps scope(eps);
  const ZBR_ZBREPB body = BodyOf({{0, 0, 0}, {1, 0, 0}});
  EXPECT_TRUE(body.IsEqual(BodyOf({{0, 0, 0.5 * eps}, {1, 0, 0}})));
  EXPECT_FALSE(body.IsEqual(BodyOf({{0, 0, 0}, {1, 0, 2 * eps}})));
  EXPECT_FALSE(body.IsEqual(BodyOf({{1, 0, 0}, {0, 0, 0}})));
  EXPECT_FALSE(body.IsEqual(BodyOf({{0, 0, 0}})));
  EXPECT_FALSE(body.IsEqual(ZBR_ZBREPB()));
  EXPECT_TRUE(ZBR_ZBREPB().IsEqual(ZBR_ZBREPB()));
  ZBR_ZBREPB withTriangle = body;
  SetTriangles(*withTriangle.GetShell(0), {{0, 1, 0}});
  EXPECT_TRUE(body.IsEqual(withTriangle));
}

TEST(MeshTriangle, NormalFollowsTheVertices) {
  ZBR_ZBREPS shell;
  SetPoints(shell, {{0, 0, 5}, {2, 0, 5}, {0, 3, 5}, {4, 0, 5}});
  SetTriangles(shell, {{0, 1, 2}, {0, 2, 1}, {0, 1, 3}});
  for (const int i : {0, 1, 2}) EXPECT_EQ(shell.GetTriangle(i)->GetFaceNormal().z(), i == 0 ? 1.0 : i == 1 ? -1.0 : 0.0);
}

}  // namespace
