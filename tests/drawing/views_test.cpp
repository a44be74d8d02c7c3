// Doubled curves, intersections of coaxial bodies, arcs, and the creases of scans.

#include <zbr-drawing/survey.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include "models/models.h"
#include "models/solid.h"
#include "tests/drawing/drawn_lines.h"

namespace zbr::drawing {
namespace {

using example::Append;

double HiddenLength(const ViewLines& view) {
  double length = 0.0;
  for (const Line& line : view.lines) length += line.hidden ? LengthOf(line) : 0.0;
  return length;
}

// A pin in a bore of its radius, or one a line's width larger, under a lid: rims and silhouettes are polygons and lines side by
// side.
TEST(DoubledCurves, ArePartOfOneDashedLine) {
  const auto draw = [](int sides, double radius, const char* name) {
    example::Solid block;
    block.Extrude(example::Axis::kZ, example::RoundedRectangle(-20, -20, 20, 20, 4, 8), 0, 30);
    block.Drill(example::Axis::kZ, example::Circle(0, 0, 10, 36), 0, 30);
    Mesh mesh = block.Take();
    Mesh pin = example::Cylinder(sides, radius, 30);
    example::Turn(pin, {0, 0, 1}, 0.003);
    Append(mesh, pin);
    Append(mesh, example::Box({-25, -25, 36}, {25, 25, 40}));
    Append(mesh, example::Box({-25, -30, -5}, {25, -25, 40}));
    DrawingOptions options;
    options.intersections = false;
    return DrawViews(MakeModel(mesh, 30.0), {{name, *NamedView(name)}}, options).front();
  };
  const double rim = 2 * 10 * 3.14159265358979, block = 4 * 32 + 2 * 4 * 3.14159265358979;
  EXPECT_NEAR(HiddenLength(draw(50, 10, "top")), rim + block, 0.4);
  EXPECT_NEAR(HiddenLength(draw(50, 9.7, "top")), 1.97 * rim + block, 0.4);  // of a smaller pin there are both
  EXPECT_NEAR(HiddenLength(draw(16, 10, "front")) - HiddenLength(draw(36, 10, "front")), 0, 0.2);
}

// In the bore only facets cross; at its mouths the pin's facets cross the plate, where the rim is within the pin.
TEST(Intersections, FacetsOfCoaxialCylindersHaveNone) {
  const auto draw = [](double from, double beside, double radius) {
    Mesh mesh = example::Cylinder(16, radius, 30 - 2 * from);
    example::Turn(mesh, {0, 0, 1}, 0.0005);
    example::Move(mesh, {beside, 0, from});
    example::Solid ring;
    ring.Extrude(example::Axis::kZ, example::Minus(example::Circle(0, 0, 20, 60), example::Circle(0, 0, 10, 25)), 0, 30);
    Append(mesh, ring.Take());
    DrawingOptions options;
    options.hidden = HiddenLines::kInAllViews;
    options.curves = false;  // the lines at the mouths are parts of the rims else
    double alongAxis = 0.0, across = 0.0;
    const ViewLines view = DrawView(MakeModel(mesh, 30.0), "iso", options);
    for (const Line& line : view.lines) {
      for (std::size_t i = 1; line.edgeClass == EdgeClass::kIntersection && i < line.chain.points.size(); ++i) {
        const ZBR_PT way = line.chain.points[i] - line.chain.points[i - 1];
        (std::abs(way.y()) > 10 ? alongAxis : across) += way.Length();
      }
    }
    return std::pair(alongAxis, across);
  };
  for (const double radius : {9.95, 10.0, 10.05}) {
    EXPECT_EQ(draw(0, 0, radius).first, 0.0) << radius;
    EXPECT_EQ(draw(-10, 0, radius).first, 0.0) << radius;
  }
  EXPECT_GT(draw(-10, 0, 10.0).second, 5.0);
  EXPECT_GT(draw(0, 5, 10.0).first, 40.0);  // beside the axis they cross really
}

// Where the pin's facets stand out of the bore's they pass through the plate at the mouth: there the seam is drawn, else the rim.
TEST(Intersections, SeamsOfPinsInBoresAreWhole) {
  const double pi = 3.14159265358979, turn = 0.0005;
  const auto inner = [&](int sides, double turns) {  // distance of a polygon of radius 10 from its centre
    const double steps = turns * sides, half = pi / sides;
    return 10 * std::cos(half) / std::cos(2 * half * (steps - std::floor(steps)) - half);
  };
  for (const int sides : {16, 24, 40}) {
    Mesh mesh = example::Cylinder(sides, 10, 50);
    example::Turn(mesh, {0, 0, 1}, turn);
    example::Move(mesh, {0, 0, -10});
    example::Solid ring;
    ring.Extrude(example::Axis::kZ, example::Minus(example::Circle(0, 0, 20, 60), example::Circle(0, 0, 10, 25)), 0, 30);
    Append(mesh, ring.Take());
    const ViewLines view = DrawView(MakeModel(mesh, 30.0), "iso", {});
    std::size_t missing = 0;
    for (int k = 0; k < 1000; ++k) {  // the half in front of the pin
      const double turns = (k + 0.5) / 2000 - 0.375, radius = std::max(inner(sides, turns - turn), inner(25, turns));
      const ZBR_PT3 at(radius * std::cos(2 * pi * turns), radius * std::sin(2 * pi * turns), 30);
      missing += DistanceTo(view.lines, (view.view.In(at) - view.middle).xy()) < 1e-3 ? 0 : 1;
    }
    EXPECT_LE(missing, 5U) << sides;
  }
}

// What is seen of the rim is chords of the bore in part, and in part lines where the pin's facets pass through the plate.
TEST(Intersections, SeamsOfPinsInBoresAreArcsOfTheRim) {
  for (const int sides : {16, 24, 40, 61}) {
    SCOPED_TRACE(sides);
    Mesh mesh = example::Cylinder(sides, 10, 50);
    example::Turn(mesh, {0, 0, 1}, 0.0005);
    example::Move(mesh, {0, 0, -10});
    example::Solid ring;
    ring.Extrude(example::Axis::kZ, example::Minus(example::Circle(0, 0, 20, 60), example::Circle(0, 0, 10, 25)), 0, 30);
    Append(mesh, ring.Take());
    DrawingOptions options;
    options.hidden = HiddenLines::kInAllViews;
    const ViewLines view = DrawView(MakeModel(mesh, 30.0), "iso", options);
    const ZBR_PT centre = (view.view.In({0, 0, 30}) - view.middle).xy();
    std::vector<double> turns[2];
    for (const Line& line : view.lines) {
      EXPECT_NE(line.edgeClass, EdgeClass::kIntersection);
      for (const CircleRun& run : line.chain.curves) {
        const double turn = std::abs(run.t1 - run.t0);
        const bool isRim = run.centre.Distance(centre) < 1e-6 && run.u.Length() < 11;
        if (isRim && turn > 0.01) turns[line.hidden ? 1 : 0].push_back(turn);
      }
    }
    for (const std::vector<double>& half : turns) {
      ASSERT_EQ(half.size(), 1U);
      EXPECT_NEAR(half.front(), 3.14159265358979, 0.25);
    }
  }
}

// A plate with round corners and a fillet around its top, of which the lowest facets are higher at some of the corners, so that no
// tangent line is seen there: the silhouette has an arc at each.
TEST(Curves, EqualCornersHaveEqualArcs) {
  const double pi = 3.14159265358979;
  constexpr std::uint32_t kSteps = 6, kBands = 4, kRing = 4 * (kSteps + 1);
  for (unsigned higher = 0; higher < 16; ++higher) {
    Mesh mesh;
    for (std::uint32_t band = 0; band <= kBands + 1; ++band) {
      for (std::uint32_t k = 0; k < kRing; ++k) {
        const std::uint32_t corner = k / (kSteps + 1), step = k % (kSteps + 1);
        const bool isHigher = band == 2 && ((higher >> corner) & 1U) != 0 && step > 0 && step < kSteps;
        const double up = band == 0 ? 0.0 : (band - 1 + (isHigher ? 0.6 : 0.0)) * pi / 2 / kBands;
        const double a = (corner + static_cast<double>(step) / kSteps) * pi / 2, radius = 4.5 + 1.5 * std::cos(up);
        mesh.points.emplace_back((corner == 1 || corner == 2 ? -24 : 24) + radius * std::cos(a),
                                 (corner < 2 ? 14 : -14) + radius * std::sin(a), band == 0 ? 0.0 : 2.0 + 1.5 * std::sin(up));
      }
    }
    for (std::uint32_t k = 0; k < kRing * (kBands + 1); ++k) {
      const std::uint32_t next = k % kRing + 1 < kRing ? k + 1 : k + 1 - kRing;
      mesh.triangles.push_back({k, next, next + kRing});
      mesh.triangles.push_back({k, next + kRing, k + kRing});
    }
    for (std::uint32_t k = 1; k + 1 < kRing; ++k) {
      mesh.triangles.push_back({0, k + 1, k});
      mesh.triangles.push_back({kRing * (kBands + 1), kRing * (kBands + 1) + k, kRing * (kBands + 1) + k + 1});
    }
    for (ZBR_PT3& p : mesh.points) p.Set(static_cast<float>(p.x()), static_cast<float>(p.y()), static_cast<float>(p.z()));
    std::size_t arcs = 0, chords = 0;
    for (const Line& line : DrawView(MakeModel(mesh, 30.0), "top", {}).lines) {
      if (line.edgeClass != EdgeClass::kSilhouette) continue;
      for (const CircleRun& run : line.chain.curves) chords += run.last - run.at;
      arcs += line.chain.curves.size();
    }
    EXPECT_EQ(arcs, 4U) << higher;
    EXPECT_EQ(chords, 4 * kSteps) << higher;
  }
}

// A step under noise that bends as much as creases do: the step stays, the noise goes.
TEST(RoughCreases, TheStepStaysAndTheNoiseGoes) {
  constexpr std::uint32_t kCells = 90;
  Mesh mesh;
  std::mt19937 random(3);
  std::normal_distribution<double> noise(0, 0.11);
  for (std::uint32_t i = 0; i <= kCells; ++i) {
    for (std::uint32_t j = 0; j <= kCells; ++j) mesh.points.emplace_back(i, j, (i > kCells / 2 ? 4.0 : 0.0) + noise(random));
  }
  for (std::uint32_t i = 0; i < kCells; ++i) {
    for (std::uint32_t j = 0; j < kCells; ++j) {
      const std::uint32_t a = i * (kCells + 1) + j, b = a + kCells + 1;
      mesh.triangles.push_back({a, b, b + 1});
      mesh.triangles.push_back({a, b + 1, a + 1});
    }
  }
  const Model model = MakeModel(mesh, 30.0);
  EXPECT_TRUE(model.isRough);
  double step = 0.0, others = 0.0, bent = 0.0;
  for (int e = 0; e < model.Shell(0).GetEdgeCnt(); ++e) {
    const ZBR_ZBREPE& edge = *model.Shell(0).GetEdge(e);
    if (edge.GetTriangle1() == nullptr) continue;
    const ZBR_PT3 &a = edge.GetVertex0()->GetPt(), &b = edge.GetVertex1()->GetPt();
    const auto isOnStep = [](const ZBR_PT3& p) { return p.x() == kCells / 2 || p.x() == kCells / 2 + 1; };
    const ZBR_PT3 &n = model.normals[static_cast<std::size_t>(edge.GetTriangle0()->GetIndex())],
                  &o = model.normals[static_cast<std::size_t>(edge.GetTriangle1()->GetIndex())];
    const double length = std::abs(a.y() - b.y());
    if (!isOnStep(a) && n.InnerProduct(o) < std::cos(0.5236)) bent += length;
    if (model.Class(0, edge) == EdgeClass::kCrease) (isOnStep(a) && isOnStep(b) ? step : others) += length;
  }
  EXPECT_GT(step, 2 * 0.95 * kCells);  // above and below
  EXPECT_LT(others, 0.5 * bent);
  const ViewLines view = DrawViews(model, {{"iso", *NamedView("iso")}}, {}).front();
  std::size_t crumbs = 0;
  for (const Line& line : view.lines) crumbs += LengthOf(line) < 0.01 * view.extent.Size() ? 1 : 0;
  EXPECT_LE(10 * crumbs, view.lines.size());
  EXPECT_FALSE(MakeModel(example::Housing(), 30.0).isRough);
  // A larger angle leaves out creases: the surface is as rough as before, and its silhouettes are no more pieces for it.
  const Model fewer = MakeModel(mesh, 60.0);
  EXPECT_TRUE(HasRoughCreases(fewer));
  EXPECT_LT(DrawViews(fewer, {{"iso", *NamedView("iso")}}, {}).front().lines.size(), view.lines.size());
}

// Views for which the records are needed to the end, and views for which they are not, of circles above all.
TEST(Views, LastOnesAreLikeAnyOthers) {
  Mesh mesh = example::Housing();
  for (const int bodies : {1, 2}) {
    for (const char* const name : {"front", "iso"}) {
      for (const bool centreLines : {false, true}) {
        const std::vector<NamedDirection> views{{name, *NamedView(name)}};
        DrawingOptions options;
        options.centreLines = centreLines;
        const Model model = MakeModel(mesh, 30.0);
        Model spent = MakeModel(mesh, 30.0);
        const ViewLines kept = DrawViews(model, views, options).front(), last = DrawLastViews(spent, views, options).front();
        EXPECT_EQ(spent.body.GetShellCnt() == 0, !centreLines) << name << " of " << bodies;
        EXPECT_EQ(spent.TriangleCount(), model.TriangleCount());
        EXPECT_EQ(last.centres.marks.size(), kept.centres.marks.size());
        ASSERT_EQ(last.lines.size(), kept.lines.size());
        std::size_t runs = 0;
        for (std::size_t i = 0; i < kept.lines.size(); ++i) {
          const Chain &a = last.lines[i].chain, &b = kept.lines[i].chain;
          EXPECT_TRUE(std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(),
                                 [](const ZBR_PT& p, const ZBR_PT& q) { return p.x() == q.x() && p.y() == q.y(); }));
          EXPECT_EQ(a.curves.size(), b.curves.size());
          runs += a.curves.size();
        }
        EXPECT_GT(runs, 0U);
      }
    }
    Append(mesh, example::Box({-500, -500, -500}, {-400, -400, -400}));
  }
}

}  // namespace
}  // namespace zbr::drawing
