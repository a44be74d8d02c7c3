// Silhouettes: smooth ones, those of rough bodies and of slender rods.

#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "models/models.h"
#include "models/solid.h"
#include "tests/drawing/drawn_lines.h"

namespace zbr::drawing {
namespace {

using example::Append;

ViewLines DrawSmooth(const Mesh& mesh, const View& view) {
  DrawingOptions options;
  options.smoothSilhouettes = true;
  options.hidden = HiddenLines::kInAllViews;
  return DrawViews(MakeModel(mesh, 30.0), {{"iso", view}}, options).front();
}

// Seen at a slant the torus shows its outline, and of its hole the near and the far side up to where they meet.
TEST(SmoothSilhouettes, AsManyAsTheSurfaceHasHoweverFineTheMesh) {
  for (const std::size_t triangles : {2000U, 9000U, 40000U}) {
    for (const ZBR_PT3& look : {ZBR_PT3(1, -1, 1), ZBR_PT3(0.3, 1, -0.4), ZBR_PT3(1, 0.2, 0.3)}) {
      const ViewLines view = DrawSmooth(example::Torus(triangles), LookAlong(look, {0, 0, 1}));
      const std::vector<Line> lines = Visible(view, EdgeClass::kSilhouette);
      EXPECT_LE(lines.size(), 4U) << triangles;
      double longest = 0.0;
      for (const Line& line : lines) {
        EXPECT_GT(LengthOf(line), 0.01 * view.extent.Size());
        longest = std::max(longest, line.chain.closed ? LengthOf(line) : 0.0);
      }
      EXPECT_GT(longest, 5.0) << triangles;  // the outline is whole
    }
  }
}

// Points of the silhouette lie where the torus turns away: at the tube's radius from a circle that is seen as an ellipse.
TEST(SmoothSilhouettes, LieOnTheOutlineOfTheSurface) {
  const View view = LookAlong({1, 0.4, -0.8}, {0, 0, 1});
  const ViewLines drawn = DrawSmooth(example::Torus(20000), view);
  for (const Line& line : drawn.lines) {
    for (const ZBR_PT& p : line.chain.points) {
      double least = HUGE_VAL;
      for (int i = 0; i < 3000; ++i) {
        const double a = i * 2 * 3.14159265358979 / 3000;
        const ZBR_PT3 axis(std::cos(a), std::sin(a), 0), along(-std::sin(a), std::cos(a), 0);
        const ZBR_PT3 aside = along.OuterProduct(view.toViewer);  // the normals there are at a right angle to both
        for (const double side : {0.4, -0.4})
          least = std::min(least, p.Distance(view.In(axis + aside * (side / aside.Length())).xy()));
      }
      ASSERT_LT(least, 3e-3);
    }
  }
  EXPECT_GE(drawn.lines.size(), 2U);
}

TEST(SmoothSilhouettes, LeaveSharpBodiesAlone) {
  for (const Mesh& mesh : {example::Box({0, 0, 0}, {1, 2, 3}), example::LSolid(2)}) {
    const View iso = *NamedView("iso");
    const ViewLines smooth = DrawSmooth(mesh, iso);
    DrawingOptions options;
    options.hidden = HiddenLines::kInAllViews;
    EXPECT_EQ(smooth.lines.size(), DrawViews(MakeModel(mesh, 30.0), {{"iso", iso}}, options).front().lines.size());
  }
}

// Lines through the middle of wide facets would miss the ends of the rims, and the edges beside them be drawn as well.
TEST(SmoothSilhouettes, OfCoarseFacetsThatEndInCreasesAreTheirEdges) {
  Mesh mesh = example::Cylinder(16, 10, 30);
  example::Turn(mesh, {0, 0, 1}, 0.3 / 16);
  const ViewLines view = DrawSmooth(mesh, *NamedView("front"));
  const std::vector<Line> lines = Visible(view, EdgeClass::kSilhouette), rims = Visible(view, EdgeClass::kCrease);
  ASSERT_EQ(lines.size(), 2U);
  ASSERT_EQ(rims.size(), 2U);
  for (const Line& rim : rims) {
    for (const ZBR_PT& end : {rim.chain.points.front(), rim.chain.points.back()}) EXPECT_LT(DistanceTo(lines, end), 1e-6);
  }
}

// The outline of wide facets lies farther from the curve than a line is wide: it is the same outline, and no gap in it. Slivers at
// the poles reach farther beside the curve than they are wide.
TEST(SmoothSilhouettes, OfASphereAreOneLine) {
  const double pi = std::acos(-1.0);
  for (const std::uint32_t sides : {16U, 32U, 48U, 100U}) {
    Mesh mesh;
    for (std::uint32_t i = 0; i <= sides / 2; ++i) {
      const double radius = i % (sides / 2) == 0 ? 0.0 : std::sin(i * 2 * pi / sides);
      for (std::uint32_t k = 0; k < sides; ++k)
        mesh.points.emplace_back(radius * std::cos(k * 2 * pi / sides), radius * std::sin(k * 2 * pi / sides),
                                 -std::cos(i * 2 * pi / sides));
    }
    for (std::uint32_t k = 0; k < sides * sides / 2; ++k) {
      const std::uint32_t next = (k + 1) % sides == 0 ? k + 1 - sides : k + 1;
      mesh.triangles.push_back({k, next, next + sides});
      mesh.triangles.push_back({k, next + sides, k + sides});
    }
    for (const ZBR_PT3& look : {ZBR_PT3(-1, -1, -1), ZBR_PT3(0, 1, 0), ZBR_PT3(0, 0, -1), ZBR_PT3(-0.2, 1, -0.1),
                                ZBR_PT3(-0.4455, 0.7033, -0.04944), ZBR_PT3(0.01914, 0.3036, -0.01731)}) {
      const std::vector<Line> lines = Visible(DrawSmooth(mesh, LookAlong(look, {0, 0.1, 1})), EdgeClass::kSilhouette);
      ASSERT_EQ(lines.size(), 1U) << sides << ' ' << look.x();
      EXPECT_TRUE(lines[0].chain.closed) << sides << ' ' << look.x();
    }
  }
}

// Whether a corner is exactly at the side or not.
TEST(SmoothSilhouettes, OfCylindersAreStraight) {
  for (const int sides : {32, 96}) {
    for (const double turn : {0.0, 0.2, 0.5}) {
      Mesh mesh = example::Cylinder(sides, 10, 40);
      example::Turn(mesh, {0, 0, 1}, turn * 2 * 3.14159265358979 / sides);
      const std::vector<Line> lines = Visible(DrawSmooth(mesh, *NamedView("front")), EdgeClass::kSilhouette);
      ASSERT_EQ(lines.size(), 2U);
      for (const Line& line : lines) {
        EXPECT_NEAR(LengthOf(line), 40, 1e-6) << sides << ' ' << turn;
        EXPECT_NEAR(std::abs(line.chain.points.front().x()), 10, turn == 0 ? 1e-9 : 0.05);
        for (const ZBR_PT& p : line.chain.points) EXPECT_NEAR(p.x(), line.chain.points.front().x(), 1e-6) << sides << ' ' << turn;
      }
    }
  }
}

// A pin in a block, near its end as well: facets of its own may not hide a curve, the block may.
TEST(SmoothSilhouettes, EndWhereOtherBodiesBegin) {
  const View iso = *NamedView("iso");
  for (const double top : {3.0, 0.05}) {
    Mesh mesh = example::Cylinder(32, 1, 6);
    example::Turn(mesh, {0, 0, 1}, 0.03);
    Append(mesh, example::Box({-3, -3, -5}, {3, 3, top}));
    double length = 0.0;
    for (const Line& line : Visible(DrawSmooth(mesh, iso), EdgeClass::kSilhouette)) length += LengthOf(line);
    EXPECT_NEAR(length, 2 * (6 - top) * std::hypot(iso.toViewer.x(), iso.toViewer.y()), 0.02) << top;
  }
}

// Walls seen edge-on that a vault goes on from smoothly, and that end below in a crease, are drawn like any outline.
TEST(SmoothSilhouettes, OfWallsSeenEdgeOn) {
  std::vector<ZBR_PT> profile = {{-2, 0}, {2, 0}};
  for (int i = 0; i <= 24; ++i)
    profile.emplace_back(2 * std::cos(i * 3.14159265358979 / 24), 3 + 2 * std::sin(i * 3.14159265358979 / 24));
  example::Solid vault;
  vault.Extrude(example::Axis::kY, example::Polygon(profile), 0, 10);
  const Mesh mesh = vault.Take();
  const ZBR_PT3 middle = MakeModel(mesh, 30.0).Centre();
  for (const ZBR_PT3& look : {ZBR_PT3(0, 0, -1), ZBR_PT3(0, 1, -0.5), ZBR_PT3(0, -1, -2)}) {
    const View view = LookAlong(look, {0, 1, 1});
    std::vector<Line> lines = DrawSmooth(mesh, view).lines;
    std::erase_if(lines, [](const Line& line) { return line.hidden; });
    for (const double x : {-2.0, 2.0}) {
      for (const double y : {-1.7, -5.3, -8.9})
        EXPECT_LT(DistanceTo(lines, view.In(ZBR_PT3(x, y, 3) - middle).xy()), 1e-3) << x << ' ' << y;
    }
  }
}

// Silhouettes that leave another one for a little and come back to it.
std::size_t CountOfBumps(const ViewLines& view) {
  std::vector<Line> lines = Visible(view, EdgeClass::kSilhouette);
  std::size_t bumps = 0;
  for (const Line& line : lines) {
    if (line.chain.closed || LengthOf(line) > 0.01 * view.extent.Size()) continue;
    bumps += static_cast<std::size_t>(std::any_of(lines.begin(), lines.end(), [&](const Line& other) {
      const auto isOn = [&](const ZBR_PT& p) { return DistanceTo({other}, p) < 1e-9; };
      return &other != &line && LengthOf(other) > 0.05 * view.extent.Size() && isOn(line.chain.points.front()) &&
             isOn(line.chain.points.back());
    }));
  }
  return bumps;
}

// Around all that a rough body covers there is a line, though creases cut its silhouettes to pieces, and no second one beside it.
TEST(RoughSilhouettes, LeaveNoContourOpen) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> noise(-0.035, 0.035);
  Mesh mesh = example::Torus(3000);
  for (ZBR_PT3& p : mesh.points) p += ZBR_PT3(noise(random), noise(random), noise(random));
  const Model model = MakeModel(mesh, 30.0);
  ASSERT_TRUE(model.isRough);
  DrawingOptions options;
  options.outlines = true;
  options.hidden = HiddenLines::kNone;
  for (const bool smooth : {true, false}) {
    options.smoothSilhouettes = smooth;
    for (const char* const name : {"top", "front", "iso", "dimetric"}) {
      const ViewLines view = DrawViews(model, {{name, *NamedView(name)}}, options).front();
      EXPECT_EQ(CountOfBumps(view), 0U) << name << smooth;
      for (const auto& loop : view.outlines.front()) {
        for (const ZBR_PT& p : loop->pt()) EXPECT_LT(DistanceTo(view.lines, p), 0.005 * view.extent.Size()) << name << smooth;
      }
    }
  }
}

// Facets of a rod so narrow that several of them are one line in a view: none may hide its silhouettes, and rims made of edges
// that are each too short to be drawn are drawn.
TEST(SlenderRods, KeepContourAndRims) {
  for (const int facets : {1000, 4000}) {
    std::vector<ZBR_PT> circle;
    for (int i = 0; i < facets; ++i)
      circle.emplace_back(std::cos(i * 2 * 3.14159265358979 / facets), std::sin(i * 2 * 3.14159265358979 / facets));
    example::Solid rod;
    rod.Extrude(example::Axis::kX, example::Polygon(circle), -600, 600);
    const Mesh along = rod.Take();
    Mesh inMetres = along, crossing = along;
    for (ZBR_PT3& p : inMetres.points) p = p * 1e-3;
    for (ZBR_PT3& p : crossing.points) p.Set(-p.y(), p.x(), p.z() + 6);
    Append(crossing, along);
    const Model one = MakeModel(inMetres, 30.0), both = MakeModel(crossing, 30.0);
    for (const char* const name : {"iso", "dimetric"}) {
      const View view = *NamedView(name);
      const double x = 2400 * std::sqrt(1 - view.toViewer.x() * view.toViewer.x());
      const double y = 2400 * std::sqrt(1 - view.toViewer.y() * view.toViewer.y());
      const auto length = [](const ViewLines& drawn, EdgeClass edgeClass) {
        double sum = 0.0;
        for (const Line& line : Visible(drawn, edgeClass)) sum += LengthOf(line);
        return sum;
      };
      const ViewLines drawn = DrawViews(one, {{name, view}}, {}).front();
      EXPECT_NEAR(length(drawn, EdgeClass::kSilhouette), 1e-3 * x, 1e-8 * x) << facets << name;
      EXPECT_GT(length(drawn, EdgeClass::kCrease), 4e-3) << facets << name;
      EXPECT_NEAR(length(DrawViews(both, {{name, view}}, {}).front(), EdgeClass::kSilhouette), x + y, 0.01 * x) << facets << name;
    }
  }
}

}  // namespace
}  // namespace zbr::drawing
