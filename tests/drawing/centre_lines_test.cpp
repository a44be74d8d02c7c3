// Centre marks and axes, of whole bodies and of cut ones.

#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "models/models.h"
#include "models/solid.h"
#include "tests/drawing/drawn_lines.h"

namespace zbr::drawing {
namespace {

using example::Append;

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

}  // namespace
}  // namespace zbr::drawing
