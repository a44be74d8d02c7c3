// Views and scenes: axes, silhouettes, walls seen edge-on, and rounding.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/objects.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "models/models.h"

namespace zbr::drawing {
namespace {

std::size_t CountOf(const std::vector<std::array<EdgeClass, 3>>& classes, EdgeClass wanted) {
  std::size_t count = 0;
  for (const auto& row : classes) count += static_cast<std::size_t>(std::count(row.begin(), row.end(), wanted));
  return count;
}

TEST(View, NamedViewsAreRightHanded) {
  for (const bool yUp : {false, true}) {
    for (const std::string& name : ViewNames()) {
      const View v = NamedView(name, yUp).value();
      EXPECT_LT(v.right.OuterProduct(v.up).Distance(v.toViewer), 1e-15) << name;
    }
  }
  const ZBR_PT3 p(1, 2, 3);
  EXPECT_EQ(NamedView("front")->In(p), ZBR_PT3(1, 3, -2));
  EXPECT_EQ(NamedView("left")->In(p), ZBR_PT3(-2, 3, -1));
  EXPECT_EQ(NamedView("top")->In(p), p);
  EXPECT_EQ(NamedView("bottom")->In(p), ZBR_PT3(1, -2, -3));
  EXPECT_EQ(NamedView("front", true)->In(p), p);
  EXPECT_EQ(NamedView("top", true)->In(p), ZBR_PT3(1, -3, 2));
  EXPECT_EQ(NamedView("iso")->Out(NamedView("iso")->In(p)), p);
  EXPECT_FALSE(NamedView("Front").has_value());
  const ZBR_PT3 shortened = NamedView("dimetric")->In(ZBR_PT3(0, 1, 0));
  EXPECT_NEAR(shortened.LengthXY(), NamedView("dimetric")->In(ZBR_PT3(1, 0, 0)).LengthXY() / 2, 1e-12);
}

TEST(View, VectorsMayHaveAnyLength) {
  EXPECT_THROW(LookAlong(ZBR_PT3(1, 0, 0), ZBR_PT3(0, 0, 0)), Failure);
  EXPECT_THROW(LookAlong(ZBR_PT3(0, 0, 3), ZBR_PT3(0, 0, -1e200)), Failure);
  EXPECT_THROW(LookAlong(ZBR_PT3(0, 1, 0), ZBR_PT3(0, INFINITY, 1)), Failure);
  EXPECT_EQ(LookAlong(ZBR_PT3(0, 1e-300, 0), ZBR_PT3(0, 0, 1e300)).right, ZBR_PT3(1, 0, 0));
}

TEST(Scene, SilhouettesOfCylinders) {
  constexpr int kSides = 48;
  for (const std::size_t inverted : {0U, 1U, 2U}) {  // none of the triangles, all, every other one
    Mesh mesh = example::Cylinder(kSides, 1, 2);
    for (std::size_t t = 0; inverted > 0 && t < mesh.triangles.size(); t += inverted)
      std::swap(mesh.triangles[t][0], mesh.triangles[t][1]);
    const Model model = MakeModel(mesh, 30);
    const auto silhouettes = [&](const View& view) { return CountOf(MakeScene(model, view).classes, EdgeClass::kSilhouette) / 2; };
    EXPECT_EQ(silhouettes(LookAlong(ZBR_PT3(0.3, 1, -0.4), ZBR_PT3(0, 0, 1))), 2U);
    EXPECT_EQ(silhouettes(*NamedView("top")), 0U);
  }
}

// A wall seen edge-on under a dome and over a flared foot, all of it smooth: the upper edge of the wall is drawn.
TEST(Scene, UpperEdgesOfWallsSeenEdgeOn) {
  constexpr std::uint32_t kSides = 24;
  struct Row {
    double radius, z;
  };
  for (const bool hasFoot : {false, true}) {
    for (const bool isInverted : {false, true}) {
      Mesh mesh;
      mesh.points = {{0, 0, 3}, {0, 0, -3}};
      const Row rows[] = {{1, 2.8}, {1.5, 2.5}, {1.5, 1}, {hasFoot ? 1.8 : 1.2, 0.5}};
      for (const Row& row : rows) {
        for (std::uint32_t i = 0; i < kSides; ++i) {
          const double a = 6.283185307179586 * i / kSides;
          mesh.points.emplace_back(row.radius * std::cos(a), row.radius * std::sin(a), row.z);
        }
      }
      for (std::uint32_t i = 0; i < kSides; ++i) {
        const std::uint32_t a = 2 + i, b = 2 + (i + 1) % kSides;
        mesh.triangles.push_back({0, a, b});
        mesh.triangles.push_back({1, b + 3 * kSides, a + 3 * kSides});
        for (std::uint32_t k = 0; k < 3 * kSides; k += kSides) {
          mesh.triangles.push_back({a + k, a + k + kSides, b + k + kSides});
          mesh.triangles.push_back({a + k, b + k + kSides, b + k});
        }
      }
      for (auto& t : mesh.triangles) {
        if (isInverted) std::swap(t[0], t[1]);
      }
      const Model model = MakeModel(mesh, 120);
      ASSERT_EQ(model.facing[0], isInverted ? Facing::kInward : Facing::kOutward);
      const Scene scene = MakeScene(model, View());
      std::map<double, int> heights;  // of drawn edges, in the model's unit
      for (const ZBR_HL_TRI& t : scene.triangles) {
        for (std::size_t i = 0; i < 3; ++i) {
          const double z = scene.ToDrawing(t.pt[i]).z();
          if (t.dispj[i] && std::abs(z - scene.ToDrawing(t.pt[(i + 1) % 3]).z()) < 1e-9) ++heights[std::round(z * 1e6) / 1e6];
        }
      }
      const int both = 2 * static_cast<int>(kSides);  // each edge in two triangles
      const std::map<double, int> dome = {{2.5, both}}, domeAndFoot = {{2.5, both}, {1, both}, {0.5, both}};
      EXPECT_EQ(heights, hasFoot ? domeAndFoot : dome);
    }
  }
}

// A shell of several ranges, very many shells in one, fillets, an edge of four triangles, and one without area beside others.
Mesh OfEverything() {
  Mesh mesh = example::Torus(60000);
  for (const Mesh& other : {example::Cover(), example::BoxesOnPlate(40, true), example::Box({20, 20, 0}, {21, 21, 1}),
                            example::Box({21, 21, 0}, {22, 22, 1})})
    example::Append(mesh, other);
  const auto n = static_cast<std::uint32_t>(mesh.points.size());
  mesh.points.insert(mesh.points.end(), {{0, 0, 9}, {1, 0, 9}, {2, 0, 9}, {2, 2, 9}});
  mesh.triangles.insert(mesh.triangles.end(), {{n, n + 1, n + 2}, {n, n + 2, n + 3}});
  return mesh;
}

TEST(Scene, IsTheSameOnAnyNumberOfThreads) {
  const Mesh mesh = OfEverything();
  const Model one = MakeModel(mesh, 30), three = MakeModel(mesh, 30, 0.0, 3);
  EXPECT_EQ(one.normals, three.normals);
  EXPECT_EQ(one.shellBegin, three.shellBegin);
  EXPECT_EQ(one.facing, three.facing);
  EXPECT_EQ(one.flat, three.flat);
  EXPECT_GT(one.junctions * one.flat, 0U);
  ASSERT_EQ(one.edgeBegin, three.edgeBegin);
  std::size_t tangents = 0;
  for (std::size_t s = 0; s < one.ShellCount(); ++s) {
    for (int e = 0; e < one.Shell(s).GetEdgeCnt(); ++e) {
      const ZBR_ZBREPE &a = *one.Shell(s).GetEdge(e), &b = *three.Shell(s).GetEdge(e);
      ASSERT_EQ(one.Class(s, a), three.Class(s, b));
      ASSERT_EQ(one.Note(s, a).isSameWay, three.Note(s, b).isSameWay);
      ASSERT_EQ(a.GetV0(), b.GetV0());
      if (one.Note(s, a).isTangent) ++tangents;
    }
  }
  EXPECT_GT(tangents, 0U);
  const Scene expected = MakeScene(one, *NamedView("iso"), {}, true), scene = MakeScene(three, *NamedView("iso"), {}, true, 3);
  EXPECT_EQ(scene.classes, expected.classes);
  EXPECT_EQ(scene.drawable, expected.drawable);
  for (std::size_t t = 0; t < expected.triangles.size(); ++t) {
    for (std::size_t i = 0; i < 3; ++i) {
      ASSERT_EQ(scene.triangles[t].pt[i], expected.triangles[t].pt[i]);
      ASSERT_EQ(scene.triangles[t].adj[i], expected.triangles[t].adj[i]);
      ASSERT_EQ(scene.triangles[t].adj_edge[i], expected.triangles[t].adj_edge[i]);
    }
  }
}

TEST(Scene, IsTurnedScaledAndCanBeFilledAgain) {
  Mesh mesh = example::Box(ZBR_PT3(10, 20, 30), ZBR_PT3(11, 22, 33));
  example::Append(mesh, example::Torus(500));
  const Model model = MakeModel(mesh, 30);
  Scene scene = MakeScene(model, *NamedView("front"));
  const ZBR_HL_TRI* const storage = scene.triangles.data();
  MakeScene(model, *NamedView("iso"), scene);
  EXPECT_EQ(scene.triangles.data(), storage);
  const Scene fresh = MakeScene(model, *NamedView("iso"));
  ASSERT_EQ(scene.shells.size(), 2U);
  EXPECT_EQ(scene.drawable, fresh.drawable);
  EXPECT_EQ(scene.classes, fresh.classes);
  for (std::size_t t = 0; t < model.TriangleCount(); ++t) {
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(scene.triangles[t].pt[i], fresh.triangles[t].pt[i]);
      const ZBR_PT3 p = scene.ToDrawing(scene.triangles[t].pt[i]);
      EXPECT_LT(p.Distance(scene.view.In(mesh.points[mesh.triangles[t][i]])), 1e-12);
      EXPECT_LT(scene.FromDrawing(p).Length(), kSceneDiagonal / 2 + 1e-9);
    }
  }
}

// Boxes on a plate, turned, as files of single precision hold them: the lines at which they stand on it show as they do in full.
TEST(Views, SeamsOfRoundedBodiesShow) {
  Mesh exact = example::BoxesOnPlate(4);
  EXPECT_EQ(RoundingOf(exact.points), 0.0) << "whole numbers, halves";
  const View turned = LookAlong(ZBR_PT3(1, 2, -3), ZBR_PT3(0, 0, 1));
  for (ZBR_PT3& p : exact.points) p = turned.In(p);
  EXPECT_EQ(RoundingOf(exact.points), 0.0);
  Mesh rounded = exact;
  for (ZBR_PT3& p : rounded.points) p.Set(static_cast<float>(p.x()), static_cast<float>(p.y()), static_cast<float>(p.z()));
  const auto length = [](const Mesh& mesh, double contact) {
    DrawingOptions options;
    options.contact = contact;
    return DrawViews(MakeModel(mesh, 30), {{"iso", *NamedView("iso")}}, options)[0].VisibleLength();
  };
  const double whole = length(exact, -1);
  EXPECT_NEAR(length(rounded, -1), whole, 1e-4 * whole);
  EXPECT_LT(length(rounded, 0), 0.99 * whole) << "a tolerance is needed for it";
  Objects moved;
  AddObject(moved, rounded, {"rounded", "rounded", ZBR_PT3(0.1, 0, 0), 0});
  EXPECT_NEAR(length(moved.mesh, -1), whole, 1e-4 * whole) << "told by the points as they were read";
}

}  // namespace
}  // namespace zbr::drawing
