// Walls along circles: seen along their axis all of their rims are one circle.
#include <zbr-drawing/trigonometry.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "drawing/curves/angle_ranges.h"
#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

constexpr double kRadius = 10.0;

// A plug with a level top of `upper` sides, and a bottom of `lower` sides that waves and is `wider` than the top.
Mesh Plug(std::uint32_t upper, std::uint32_t lower, double wider) {
  Mesh mesh;
  for (std::uint32_t k = 0; k < upper; ++k) {
    const double a = kFullTurn * k / upper;
    mesh.points.emplace_back(kRadius * Cos(a), kRadius * Sin(a), 20.0);
  }
  for (std::uint32_t k = 0; k < lower; ++k) {
    const double a = kFullTurn * (k + 0.3) / lower, radius = kRadius + wider;
    mesh.points.emplace_back(radius * Cos(a), radius * Sin(a), 3.0 * Cos(2 * a));
  }
  mesh.points.emplace_back(0, 0, 20);
  mesh.points.emplace_back(0, 0, 0);
  const std::uint32_t top = upper + lower;
  for (std::uint32_t k = 0; k < upper; ++k) mesh.triangles.push_back({top, k, (k + 1) % upper});
  for (std::uint32_t k = 0; k < lower; ++k) mesh.triangles.push_back({top + 1, upper + (k + 1) % lower, upper + k});
  for (std::uint32_t i = 0, j = 0; i < upper || j < lower;) {
    const std::uint32_t u = i % upper, l = upper + j % lower;
    if (j == lower || (i < upper && (i + 1.0) / upper <= (j + 1.3) / lower)) {
      mesh.triangles.push_back({u, l, (i + 1) % upper});
      ++i;
    } else {
      mesh.triangles.push_back({u, l, upper + (j + 1) % lower});
      ++j;
    }
  }
  return mesh;
}

TEST(RoundWalls, HaveOneRimAlongTheirAxis) {
  for (const auto& [upper, lower] : {std::pair(40U, 56U), {56U, 40U}, {24U, 23U}, {97U, 31U}}) {
    const Model model = MakeModel(Plug(upper, lower, 0.0), 30.0);
    ASSERT_EQ(model.ShellCount(), 1U);
    DrawingOptions options;
    options.hidden = HiddenLines::kInAllViews;
    for (const char* const direction : {"top", "bottom"}) {
      SCOPED_TRACE(std::string(direction) + " " + std::to_string(upper));
      const ViewLines view = DrawView(model, direction, options);
      ASSERT_EQ(view.lines.size(), 1U);
      ASSERT_EQ(view.lines[0].chain.curves.size(), 1U);
      const CircleRun& rim = view.lines[0].chain.curves[0];
      EXPECT_NEAR(std::abs(rim.t1 - rim.t0), kFullTurn, 1e-9);
      EXPECT_NEAR(rim.u.Length(), kRadius, 1e-9);
      EXPECT_FALSE(view.lines[0].hidden);
    }
    EXPECT_GT(DrawView(model, "iso", options).lines.size(), 2U);
  }
}

TEST(RoundWalls, ThatTaperHaveTheirRims) {
  const Model model = MakeModel(Plug(40, 56, 0.02), 30.0);
  double length = 0.0;
  for (const Line& line : DrawView(model, "top", {}).lines) {
    for (std::size_t i = 1; i < line.chain.points.size(); ++i) length += line.chain.points[i].Distance(line.chain.points[i - 1]);
  }
  EXPECT_GT(length, 1.5 * kFullTurn * kRadius);
}

double VisibleLength(const Mesh& mesh, const View& view) {
  double length = 0.0;
  const std::vector<ViewLines> views = DrawViews(MakeModel(mesh, 30.0), {{"view", view}}, {});
  for (const Line& line : views.front().lines) {
    const std::vector<ZBR_PT>& points = line.chain.points;
    if (line.hidden) continue;
    for (std::size_t i = 1; i < points.size(); ++i) length += points[i].Distance(points[i - 1]);
    if (line.chain.closed) length += points.front().Distance(points.back());
  }
  return length;
}

// Of sides of length 1, one of which ends in (0, -1/2) and (0, 1/2).
example::Region PolygonAtTheOrigin(std::uint32_t sides) {
  const double half = kFullTurn / 2 / sides, radius = 0.5 / Sin(half);
  std::vector<ZBR_PT> points{{0.0, 0.5}, {0.0, -0.5}};
  for (std::uint32_t k = 2; k < sides; ++k) {
    const double a = kFullTurn / 2 - half + kFullTurn * k / sides;
    points.emplace_back(radius * (Cos(half) + Cos(a)), radius * Sin(a));
  }
  return example::Polygon(points);
}

TEST(RoundWalls, OfCirclesThatShareAChordKeepBothRims) {
  for (const auto& [thin, thick] : {std::pair(12U, 24U), {16U, 24U}, {24U, 48U}}) {
    example::Solid shaft;
    shaft.Stack(example::Axis::kZ, {-3.0, 0.0, 3.0}, {PolygonAtTheOrigin(thick), PolygonAtTheOrigin(thin)});
    EXPECT_NEAR(VisibleLength(shaft.Take(), *NamedView("top")), thin + thick - 1.0, 1e-4);
  }
}

// The lower rim comes out from under the upper one.
TEST(RoundWalls, SeenASlantHaveBothRims) {
  const Mesh rod = example::Cylinder(24, 1, 2000);
  const double around = VisibleLength(rod, *NamedView("top"));
  EXPECT_GT(VisibleLength(rod, LookAlong({0.00009, 0, -1}, {0, 1, 0})), 1.49 * around);
}

TEST(RoundWalls, RangesOfAnglesLeaveTheRest) {
  AngleRanges ranges;
  ranges.Add(-1.0, 0.5);
  ranges.Add(0.5, 1.0);
  ranges.Add(3.0, 3.5);
  ranges.Join(1e-9);
  for (const double angle : {-3.0, -1.0, 0.5, 3.1}) EXPECT_TRUE(ranges.Has(angle)) << angle;
  for (const double angle : {-2.0, 1.5}) EXPECT_FALSE(ranges.Has(angle)) << angle;
  EXPECT_TRUE(ranges.Rest(0.0, 0.9, 1e-6).empty());
  EXPECT_TRUE(ranges.Rest(3.05, 3.4, 1e-6).empty());
  const auto rest = ranges.Rest(2.5, 5.5, 1e-6);
  ASSERT_EQ(rest.size(), 2U);
  EXPECT_EQ(rest[0], std::pair(2.5, 3.0));
  EXPECT_NEAR(rest[1].first, 3.5, 1e-12);
  EXPECT_NEAR(rest[1].second, kFullTurn - 1.0, 1e-12);
}

}  // namespace
}  // namespace zbr::drawing
