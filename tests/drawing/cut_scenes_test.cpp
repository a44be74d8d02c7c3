// Scenes that were cut: what is left of triangles, of intersection lines, and what covers the cut.

#include <zbr-drawing/intersections.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/section.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "drawing/sections/caps.h"
#include "drawing/sections/cut_scene.h"
#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

class CutScenes : public testing::Test {
 protected:
  double Unit() { return std::uniform_real_distribution<double>(-1, 1)(random_); }
  SectionPlane Plane(const ZBR_PT3& through, double depth) {
    SectionPlane plane;
    plane.normal = ZBR_PT3(Unit(), Unit(), Unit());
    plane.normal = plane.normal * (1.0 / plane.normal.Length());
    plane.offset = plane.normal.InnerProduct(through);
    if (depth > 0) plane.depth = depth;
    return plane;
  }
  std::size_t Below(std::size_t n) { return random_() % n; }

 private:
  std::mt19937 random_{11};
};

double AreaOf(const std::vector<std::array<ZBR_PT, 3>>& triangles) {
  double area = 0.0;
  for (const auto& [a, b, c] : triangles) area += (b - a).OuterProduct(c - a) / 2;
  return area;
}

TEST_F(CutScenes, NeighboursMeetToTheBitAndCoversFillTheCut) {
  for (const Mesh& mesh : {example::Housing(), example::Torus(3000), example::Gear(4000)}) {
    const Model model = MakeModel(mesh, 30.0);
    for (int k = 0; k < 6; ++k) {
      const SectionPlane plane = Plane(model.Centre(), k % 2 == 0 ? 0.1 * model.Diagonal() : 0.0);
      const View view = SectionView(plane);
      const SectionCut cut = FindSection(model, view, plane);
      for (const ZBR_REGION& cover : cut.covers) EXPECT_NEAR(AreaOf(CoverOf(cover)), cover.area(), 1e-9 * cover.area());
      Scene scene = MakeScene(model, view);
      CutScene(model, {}, PlanesOf(plane), cut, scene);
      std::size_t met = 0;
      for (const ZBR_HL_SHELL& shell : scene.shells) {
        for (unsigned t = 0; t < shell.count; ++t) {
          for (int i = 0; i < 3; ++i) {
            const ZBR_HL_TRI& self = shell.tris[t];
            if (self.adj[i] < 0) continue;
            const ZBR_HL_TRI& other = shell.tris[self.adj[i]];
            const int j = self.adj_edge[i];
            ASSERT_EQ(self.pt[i].Distance(other.pt[(j + 1) % 3]) + self.pt[(i + 1) % 3].Distance(other.pt[j]), 0.0) << k;
            ++met;
          }
        }
      }
      EXPECT_GT(met, scene.triangles.size());
    }
  }
}

// Of a convex body all is visible that belongs to a side that faces the viewer, and the cut.
TEST_F(CutScenes, BoxesThatStandAskew) {
  for (int k = 0; k < 200; ++k) {
    Mesh box = example::Box({-3, -2, -4}, {3, 2, 4}), corners;  // by bits: one for each axis
    for (int i = 0; i < 8; ++i) corners.points.emplace_back(i % 2 != 0 ? 3 : -3, i % 4 > 1 ? 2 : -2, i > 3 ? 4 : -4);
    const ZBR_PT3 axis(Unit(), Unit(), Unit());
    const double angle = 3 * Unit();
    for (Mesh* const mesh : {&box, &corners}) example::Turn(*mesh, axis, angle);
    for (auto& t : box.triangles) std::rotate(t.begin(), t.begin() + static_cast<std::ptrdiff_t>(Below(3)), t.end());
    const SectionPlane plane = Plane({Unit(), Unit(), Unit()}, k % 2 == 0 ? 0.0 : 2.0);
    const View view = SectionView(plane);
    const auto seen = [&](const ZBR_PT3& a, const ZBR_PT3& b) { return view.In(a).xy().Distance(view.In(b).xy()); };
    const auto isFacing = [&](std::size_t bit, std::size_t corner) {
      return (plane.HeightOf(corners.points[corner | bit]) > plane.HeightOf(corners.points[corner & ~bit])) ==
             ((corner & bit) != 0);
    };
    double expected = 0.0;
    std::array<std::array<std::array<std::vector<ZBR_PT3>, 2>, 2>, 3> ends;  // of cuts: by axis and side, and the plane
    for (std::size_t i = 0; i < 8; ++i) {
      for (std::size_t along = 0; along < 3; ++along) {
        if ((i & std::size_t{1} << along) != 0) continue;
        const std::size_t first = (along + 1) % 3, second = (along + 2) % 3;
        const ZBR_PT3 a = corners.points[i], b = corners.points[i | std::size_t{1} << along];
        const double from = plane.HeightOf(a), to = plane.HeightOf(b);
        const auto at = [&](double height) { return a + (b - a) * std::clamp((height - from) / (to - from), 0.0, 1.0); };
        const double back = std::isfinite(plane.depth) ? -plane.depth : -100.0;
        if (isFacing(std::size_t{1} << first, i) || isFacing(std::size_t{1} << second, i)) expected += seen(at(0), at(back));
        for (std::size_t p = 0; p < 2; ++p) {
          const double height = p == 0 ? 0.0 : back;
          if ((from < height) == (to < height)) continue;
          for (const std::size_t side : {first, second}) ends[side][i >> side & 1U][p].push_back(at(height));
        }
      }
    }
    for (std::size_t side = 0; side < 3; ++side) {
      for (const std::size_t high : {0U, 1U}) {
        for (std::size_t p = 0; p < 2; ++p) {
          const std::vector<ZBR_PT3>& cut = ends[side][high][p];
          if (!cut.empty() && (p == 0 || isFacing(std::size_t{1} << side, high << side))) expected += seen(cut[0], cut[1]);
        }
      }
    }
    const ViewLines lines = DrawViews(MakeModel(box, 30.0), {{"A-A", view, plane}}).front();
    ASSERT_NEAR(lines.VisibleLength(), expected, 1e-4) << k;
  }
}

// A side of a wedge runs through the sloping top of a block.
TEST_F(CutScenes, IntersectionLinesEndAtThePlane) {
  example::Solid block, wedge;
  block.Extrude(example::Axis::kZ, example::Rectangle(-3, 0, 5, 6), 0, {3, -0.25, 0.5});
  wedge.Extrude(example::Axis::kZ, example::Polygon({{-2, 1.5}, {4, 1}, {-2, 4}}), 0.3, 9);
  Mesh mesh = block.Take();
  example::Append(mesh, wedge.Take());
  for (const char* const plane : {"X=1", "-1,0,0=-1"}) {
    const SectionPlane section = ParseSection(plane);
    const ViewLines lines = DrawViews(MakeModel(mesh, 30.0), {{"A-A", SectionView(section), section}}, {}).front();
    double length = 0.0;
    for (const Line& line : lines.lines) {
      for (std::size_t i = 1; line.edgeClass == EdgeClass::kIntersection && i < line.chain.points.size(); ++i)
        length += line.chain.points[i].Distance(line.chain.points[i - 1]);
    }
    EXPECT_NEAR(length, plane[0] == 'X' ? 1.5 * std::sqrt(2.0) : 0.0, 1e-5) << plane;
  }
}

}  // namespace
}  // namespace zbr::drawing
