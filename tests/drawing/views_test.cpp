// Views from an eye, against rays; centre lines; curves and seams that bodies have in common.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

using example::Append;

// The least distance, as a part of the way, from where a triangle is met on the way from p to q to either end of it; 1 where none
// is. Grazing counts, as a negative distance: it is no one's business what is seen there.
double Clearance(const Mesh& mesh, const ZBR_PT3& p, const ZBR_PT3& q, bool& hidden) {
  constexpr double kGraze = 1e-4;
  double least = 1.0;
  const ZBR_PT3 way = q - p;
  for (const auto& t : mesh.triangles) {
    const ZBR_PT3 &a = mesh.points[t[0]], ab = mesh.points[t[1]] - a, ac = mesh.points[t[2]] - a;
    const ZBR_PT3 n = ab.OuterProduct(ac);
    const double along = n.InnerProduct(way);
    const double s = along == 0 ? HUGE_VAL : n.InnerProduct(a - p) / along;
    if (!(std::abs(s) < 2)) continue;
    const ZBR_PT3 at = p + way * s - a;
    const double v = ab.OuterProduct(at).InnerProduct(n) / n.Length2(), u = at.OuterProduct(ac).InnerProduct(n) / n.Length2();
    const double inside = std::min({u, v, 1 - u - v});
    if (inside < -kGraze || s > 1 || s < -kGraze) continue;
    if (std::abs(s) < kGraze) continue;  // the faces of the edge itself
    if (inside < kGraze) return -1.0;
    hidden = true;
    least = std::min(least, s);
  }
  return least;
}

double DistanceTo(const std::vector<Line>& lines, const ZBR_PT& p) {
  double least = HUGE_VAL;
  for (const Line& line : lines) {
    for (std::size_t i = 1; i < line.chain.points.size(); ++i) {
      const ZBR_PT &a = line.chain.points[i - 1], ab = line.chain.points[i] - a;
      const double t = std::clamp((p - a).InnerProduct(ab) / std::max(ab.Length2(), 1e-300), 0.0, 1.0);
      least = std::min(least, p.Distance(a + ab * t));
    }
  }
  return least;
}

// Points of creases are on lines where the way to the eye is free, and only there.
TEST(Perspective, RaysToTheEyeAgree) {
  Mesh mesh = example::BoxesOnPlate(4);
  const Model model = MakeModel(mesh, 30.0);
  const ZBR_PT3 middle = model.Centre(), size = model.high - model.low;
  int seen = 0, unseen = 0, wrong = 0;
  for (const auto& [from, field] : {std::pair{ZBR_PT3(0.9, -1.1, 2.5), 0.0},
                                    {ZBR_PT3(-0.7, 0.4, 1.2), 0.0},
                                    {ZBR_PT3(0.2, 0.1, 0.55), 80.0},
                                    {ZBR_PT3(0.3, -0.45, 0.4), 60.0}}) {
    const ZBR_PT3 eye(middle.x() + from.x() * size.x(), middle.y() + from.y() * size.y(), middle.z() + from.z() * size.z() * 1.7);
    const View view = LookFrom(eye, middle + ZBR_PT3(0.01, 0.02, 0) * size.x(), {0, 0, 1}, field);
    const ViewLines drawn = DrawViews(model, {{"eye", view}}, {}).front();
    const double tiny = 1e-5 * drawn.extent.Size(), distance = view.perspective->distance;
    const double reach = field > 0 ? distance * std::tan(field / 2 * 0.017453292519943295) : drawn.extent.Size();
    for (std::size_t s = 0; s < model.ShellCount(); ++s) {
      for (int e = 0; e < model.Shell(s).GetEdgeCnt(); ++e) {
        const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(e);
        if (!edge.GetShow()) continue;
        for (const double t : {0.137, 0.519, 0.871}) {
          const ZBR_PT3 p = edge.GetVertex0()->GetPt() * (1 - t) + edge.GetVertex1()->GetPt() * t;
          const ZBR_PT3 q = view.In(p - eye);
          const ZBR_PT at(q.x() * distance / -q.z(), q.y() * distance / -q.z());
          if (-q.z() < 2 * view.perspective->Nearest() || std::max(std::abs(at.x()), std::abs(at.y())) > 0.99 * reach) continue;
          bool hidden = false;
          if (Clearance(mesh, p, eye, hidden) < 0.01) continue;
          ++(hidden ? unseen : seen);
          const double off = DistanceTo(drawn.lines, at);
          wrong += (hidden ? off < tiny : off > tiny) ? 1 : 0;
        }
      }
    }
  }
  EXPECT_GT(seen, 200);
  EXPECT_GT(unseen, 100);
  EXPECT_LE(wrong, unseen / 100);  // what is hidden may lie under a line that is not
}

// The rims of a drum, from aside, from above, and from so near that one reaches behind the eye; that one stays a chain.
TEST(Perspective, CirclesBeforeTheEyeAreEllipses) {
  constexpr double kRadius = 5.0, kHeight = 3.0;
  const Model model = MakeModel(example::Cylinder(64, kRadius, kHeight), 30.0);
  for (const auto& [from, at, rims] : {std::tuple{ZBR_PT3(12, -9, 8), ZBR_PT3(1, 0, 0), 2U},
                                       {ZBR_PT3(0, 0, 9), ZBR_PT3(0, 0, 0), 1U},
                                       {ZBR_PT3(0.3, 1, 30), ZBR_PT3(2, 3, 0), 1U},
                                       {ZBR_PT3(2, 0, 5), ZBR_PT3(9, 0, 2), 0U}}) {
    const ZBR_PT3 eye = from;  // a name that lambdas may use with clang before 16
    const View view = LookFrom(eye, at, {0.1, 1, 0.2});
    const ViewLines drawn = DrawViews(model, {{"eye", view}}, {}).front();
    std::size_t found = 0;
    for (const double z : {0.0, kHeight}) {
      const auto isSeenAs = [&](const CircleRun& run) {
        double off = 0.0;
        for (int k = 0; k < 100; ++k) {
          const ZBR_PT3 q = view.In(ZBR_PT3(kRadius * std::cos(k * 0.0628), kRadius * std::sin(k * 0.0628), z) - eye);
          const ZBR_PT p = q.xy() * (view.perspective->distance / -q.z()) - run.centre;
          off = std::max(
              off, std::abs(std::hypot(p.InnerProduct(run.u) / run.u.Length2(), p.InnerProduct(run.v) / run.v.Length2()) - 1));
        }
        return off < 1e-6;
      };
      const auto isOne = [&](const Line& line) {
        return std::any_of(line.chain.curves.begin(), line.chain.curves.end(), isSeenAs);
      };
      found += std::any_of(drawn.lines.begin(), drawn.lines.end(), isOne) ? 1 : 0;
    }
    EXPECT_EQ(found, rims);
    for (const Line& line : drawn.lines) {
      for (const CircleRun& run : line.chain.curves) {
        EXPECT_NEAR(run.At(run.t0).Distance(line.chain.points[run.at]), 0, 1e-6);
        EXPECT_NEAR(run.At(run.t1).Distance(line.chain.points[run.last]), 0, 1e-6);
      }
    }
  }
}

TEST(Perspective, EyesThatSeeNothing) {
  const Model model = MakeModel(example::Box({0, 0, 0}, {1, 1, 1}), 30.0);
  EXPECT_THROW(LookFrom({1, 1, 1}, {1, 1, 1}, {0, 0, 1}), Failure);
  EXPECT_THROW(LookFrom({1, 1, 1}, {0, 0, 0}, {0, 0, 1}, 171), Failure);
  EXPECT_THROW(DrawViews(model, {{"eye", LookFrom({5, 5, 5}, {9, 9, 8}, {0, 0, 1})}}, {}), Failure);  // away from it
  EXPECT_THROW(DrawView(model, "fron"), Failure);
  const ViewLines inside = DrawViews(model, {{"eye", LookFrom({0.5, 0.05, 0.5}, {0.5, 1, 0.5}, {0, 0, 1})}}, {}).front();
  EXPECT_FALSE(inside.lines.empty());
}

// A plate with a bore, four holes of which one is blind, and rounded corners.
TEST(CentreLines, OfHolesAndBores) {
  example::Solid plate;
  plate.Extrude(example::Axis::kZ, example::RoundedRectangle(-30, -20, 30, 20, 5, 8), 0, 6);
  plate.Drill(example::Axis::kZ, example::Circle(0, 0, 9, 60), 0, 6);
  for (const double x : {-24.0, 24.0}) plate.Drill(example::Axis::kZ, example::Circle(x, 14, 3, 32), 0, 6);
  plate.Drill(example::Axis::kZ, example::Circle(24, -14, 3, 32), 2, 6);
  const Model model = MakeModel(plate.Take(), 30.0);
  DrawingOptions options;
  options.centreLines = true;
  std::vector<ViewLines> views =
      DrawViews(model, {{"top", *NamedView("top")}, {"front", *NamedView("front")}, {"iso", *NamedView("iso")}}, options);
  EXPECT_EQ(views[0].centres.marks.size(), 4U);
  EXPECT_TRUE(views[0].centres.axes.empty());
  const auto bore = std::max_element(views[0].centres.marks.begin(), views[0].centres.marks.end(),
                                     [](const CentreMark& a, const CentreMark& b) { return a.radius < b.radius; });
  EXPECT_NEAR(bore->radius, 9, 1e-5);
  EXPECT_NEAR(bore->centre.Distance(ZBR_PT(0, 0)), 0, 1e-5);
  ASSERT_EQ(views[1].centres.axes.size(), 3U);
  for (const CentreAxis& axis : views[1].centres.axes) EXPECT_NEAR(axis.from.Distance(axis.to), 6, 1e-5);
  EXPECT_TRUE(views[2].centres.marks.empty());
  const auto inIso = [&](const ZBR_PT3& p) { return views[2].view.In(p - model.Centre()).xy(); };
  for (const auto& [centre, radius] : {std::pair{ZBR_PT3(0, 0, 6), 9.0}, {ZBR_PT3(24, 14, 6), 3.0}, {ZBR_PT3(24, -14, 6), 3.0}}) {
    const ZBR_PT at = inIso(centre), along = inIso(centre + ZBR_PT3(0, 0, 1)) - at;
    int arms = 0, axes = 0;  // each line once: two chain lines over each other are none
    for (const CentreAxis& line : views[2].centres.axes) {
      const ZBR_PT way = line.to - line.from, middle = (line.from + line.to) * 0.5;
      if (middle.Distance(at) < 1e-5 && std::abs(way.InnerProduct(along)) < 1e-5)
        arms += std::abs(way.Length() - 2 * radius) < 1e-4;
      if (DistanceTo({{EdgeClass::kCentre, false, 0, 0, {{line.from, line.to}, {}, {}, false}}}, at) < 1e-5)
        axes += std::abs(way.OuterProduct(along)) < 1e-5 * way.Length();
    }
    EXPECT_EQ(arms, 1);
    EXPECT_EQ(axes, 1);
  }
  options.hidden = HiddenLines::kNone;  // then what is not seen has no axis
  EXPECT_TRUE(DrawViews(model, {{"front", *NamedView("front")}}, options).front().centres.axes.empty());
  options.hidden = HiddenLines::kInPrincipalViews;  // curves in the place of the holes' facets tell of them as well
  options.smoothSilhouettes = true;
  EXPECT_EQ(DrawViews(model, {{"front", *NamedView("front")}}, options).front().centres.axes.size(), 3U);
  const std::size_t slanted = views[2].centres.axes.size();
  const Sheet sheet = LayOut(std::move(views), {});
  std::size_t lines = 0;
  for (const PlacedView& view : sheet.views)
    lines += static_cast<std::size_t>(std::count_if(view.lines.lines.begin(), view.lines.lines.end(),
                                                    [](const Line& line) { return line.edgeClass == EdgeClass::kCentre; }));
  EXPECT_EQ(lines, 4U * 2 + 3 + slanted);
}

// A bored hub on a flange, and a pin that ends in a block: one axis each, crossed at the nearest rim, and none of rims not drawn.
TEST(CentreLines, OnceForAnAxisSeenAtASlant) {
  using example::Circle;
  using example::Minus;
  example::Solid flange;
  flange.Stack(example::Axis::kZ, {0, 8, 30},
               {Minus(Circle(0, 0, 30, 72), Circle(0, 0, 6, 32)), Minus(Circle(0, 0, 12, 48), Circle(0, 0, 6, 32))});
  Mesh pin = example::Cylinder(32, 5, 30);
  for (ZBR_PT3& p : pin.points) p += ZBR_PT3(0, 0, 10);
  Append(pin, example::Box({-20, -20, 0}, {20, 20, 20}));
  DrawingOptions options;
  options.centreLines = true;
  const View iso = *NamedView("iso");
  const double ratio = std::abs(iso.toViewer.z());
  struct Case {
    Mesh mesh;
    double top, radius, lowest;  // of the rim that is crossed; where the axis begins on paper, along the axis
  };
  for (const auto& [mesh, top, radius, lowest] :
       {Case{flange.Take(), 30, 12, -30}, Case{pin, 40, 5, 40 * std::sqrt(1 - ratio * ratio) / ratio - 5}}) {
    const Model model = MakeModel(mesh, 30.0);
    const ViewLines view = DrawViews(model, {{"iso", iso}}, options).front();
    ASSERT_EQ(view.centres.axes.size(), 2U);
    const CentreAxis &axis = view.centres.axes[0], &arm = view.centres.axes[1];
    const ZBR_PT at = view.view.In(ZBR_PT3(0, 0, top) - model.Centre()).xy(), foot = view.view.In(-model.Centre()).xy();
    EXPECT_NEAR(((arm.from + arm.to) * 0.5).Distance(at), 0, 1e-4);
    EXPECT_NEAR(arm.from.Distance(arm.to), 2 * radius, 1e-3);
    EXPECT_NEAR(std::min(axis.from.y(), axis.to.y()), foot.y() + lowest * ratio, 1e-3);
  }
}

// A pin in the blind hole of a block, cut through the axis, in front of it, behind it, and across.
TEST(CentreLines, OfWhatASectionCuts) {
  example::Solid block;
  block.Extrude(example::Axis::kZ, example::Rectangle(-20, -20, 20, 20), 0, 20);
  block.Drill(example::Axis::kZ, example::Circle(0, 0, 6, 36), 8, 20);
  Mesh mesh = block.Take();
  Mesh pin = example::Cylinder(32, 5, 40);
  for (ZBR_PT3& p : pin.points) p += ZBR_PT3(0, 0, 9);
  Append(mesh, pin);
  const Model model = MakeModel(mesh, 30.0);
  DrawingOptions options;
  options.centreLines = true;
  const auto centres = [&](const char* text) {
    const SectionPlane plane = ParseSection(text);
    return DrawViews(model, {{"A-A", SectionView(plane), plane}}, options).front().centres;
  };
  for (const char* const text : {"Y=0", "X=0", "X=2", "X=-10..0"}) {
    const Centres found = centres(text);
    ASSERT_EQ(found.axes.size(), 1U) << text;
    EXPECT_NEAR(found.axes[0].from.Distance(found.axes[0].to), 49 - 8, 1e-4) << text;
  }
  EXPECT_TRUE(centres("X=-2").axes.empty());
  EXPECT_EQ(centres("Z=30").marks.size(), 1U);
  EXPECT_TRUE(centres("Z=4").marks.empty());
}

// However the facets of the bore are divided, and from whichever side it is seen.
TEST(CentreLines, OfABoreWithAnyDiagonals) {
  DrawingOptions options;
  options.centreLines = true;
  for (unsigned ways = 0; ways < 8; ++ways) {
    constexpr std::uint32_t kSides = 48;
    Mesh tube;
    for (std::uint32_t i = 0; i < kSides; ++i) {
      const double a = i * 2 * 3.14159265358979 / kSides;
      for (const double radius : {3.0, 5.0}) {
        for (const double z : {0.0, 4.0}) tube.points.emplace_back(radius * std::cos(a), radius * std::sin(a), z);
      }
    }
    for (std::uint32_t i = 0; i < kSides; ++i) {
      const std::uint32_t p = 4 * i, q = 4 * ((i + 1) % kSides);
      const bool turned = ((ways >> i % 3) & 1U) != 0;
      const auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
        tube.triangles.push_back({a, b, turned ? d : c});
        tube.triangles.push_back({turned ? b : a, c, d});
      };
      add(p, p + 1, q + 1, q);
      add(p + 3, p + 2, q + 2, q + 3);
      add(p + 2, p, q, q + 2);
      add(p + 1, p + 3, q + 3, q + 1);
    }
    const Model model = MakeModel(tube, 30.0);
    for (const char* const name : {"front", "left", "right"}) {
      const Centres centres = DrawViews(model, {{name, *NamedView(name)}}, options).front().centres;
      ASSERT_EQ(centres.axes.size(), 1U) << name << ways;
      EXPECT_NEAR(centres.axes[0].from.Distance(centres.axes[0].to), 4, 1e-5) << name << ways;
    }
  }
}

double LengthOf(const Line& line) {
  double length = 0.0;
  for (std::size_t i = 1; i < line.chain.points.size(); ++i) length += line.chain.points[i].Distance(line.chain.points[i - 1]);
  return length;
}

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

}  // namespace
}  // namespace zbr::drawing
