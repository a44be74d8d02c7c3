// Sheets: where views stand, marks of sections, centre lines and hatching on paper.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "drawing/sheets/lettering.h"
#include "models/models.h"

namespace zbr::drawing {
namespace {

using example::Box;

std::vector<ViewLines> ViewsOf(const Mesh& mesh, const std::vector<std::string>& views,
                               HiddenLines hidden = HiddenLines::kInPrincipalViews) {
  std::vector<NamedDirection> directions;
  for (const std::string& name : views) {
    if (const auto view = NamedView(name)) {
      directions.push_back({name, *view});
    } else {
      const SectionPlane plane = ParseSection(name);
      directions.push_back({SectionName(directions.size()), SectionView(plane), plane});
    }
  }
  DrawingOptions drawing;
  drawing.centreLines = true;
  drawing.hidden = hidden;
  return DrawViews(MakeModel(mesh, 30.0), directions, drawing);
}

Sheet SheetOf(const Mesh& mesh, const std::vector<std::string>& views, Projection projection = Projection::kNone) {
  SheetOptions options;
  options.projection = projection;
  options.scale = 1.0;
  return LayOut(ViewsOf(mesh, views), options);
}

TEST(Sheets, SidesStandWhereTheProjectionPutsThem) {
  for (const Projection projection : {Projection::kFirst, Projection::kThird}) {
    std::map<std::string, ZBR_PT> from;  // the front view
    const Sheet sheet = SheetOf(Box({0, 0, 0}, {40, 30, 20}), {"front", "top", "bottom", "left", "right", "back"}, projection);
    for (const PlacedView& view : sheet.views) from[view.lines.name] = view.origin - sheet.views[0].origin;
    const double side = projection == Projection::kThird ? 1.0 : -1.0;
    EXPECT_TRUE(from["top"].x() == 0 && from["top"].y() * side >= 25 && from["bottom"].y() == -from["top"].y());
    EXPECT_TRUE(from["right"].y() == 0 && from["right"].x() * side >= 35 && from["left"].x() == -from["right"].x());
    EXPECT_TRUE(from["back"].y() == 0 && from["back"].x() >= 35 + std::abs(from["right"].x()));
  }
}

// Of an arrow: its tip, which is on the plane's line, and the way it points.
struct Arrow {
  ZBR_PT tip, along;
};

std::vector<Arrow> ArrowsOf(const Sheet& sheet) {
  std::vector<Arrow> arrows;
  for (const SheetPath& path : sheet.paths) {
    if (path.wide && path.points.size() == 5 && path.points[0] == path.points[3])
      arrows.push_back({path.points[0], path.points[0] - path.points[4]});
  }
  return arrows;
}

// Arrows point away from the viewer and come from the letters. Of planes close to each other the foremost stays innermost.
TEST(Sheets, MarksOfSections) {
  const Mesh box = Box({0, 0, 0}, {40, 50, 60});
  for (const auto& [plane, way] : {std::pair("X=20", ZBR_PT(-1, 0)), {"-1,0,0=-20", ZBR_PT(1, 0)}, {"Z=20", ZBR_PT(0, -1)}}) {
    const ZBR_PT along = way;
    const Sheet sheet = SheetOf(box, {"front", plane}, Projection::kFirst);
    const std::vector<Arrow> arrows = ArrowsOf(sheet);
    ASSERT_EQ(arrows.size(), 2U);
    for (const Arrow& arrow : arrows) {
      EXPECT_GT(arrow.along.InnerProduct(along), 2.0) << plane;
      const auto isBehind = [&](const SheetText& text) {
        const ZBR_PT from = arrow.tip - (text.at + ZBR_PT(1.75, 2.5));  // the middle of a letter
        return text.text == "B" && std::abs(from.InnerProduct(along) - 12) < 3 && std::abs(from.OuterProduct(along)) < 1;
      };
      EXPECT_EQ(std::count_if(sheet.texts.begin(), sheet.texts.end(), isBehind), 1) << plane;
    }
  }
  for (const auto& planes : {std::vector<std::string>{"front", "X=20", "X=21"}, {"front", "X=21", "X=20"}}) {
    std::map<double, double> reach;  // upwards, by the place of the plane
    for (const Arrow& arrow : ArrowsOf(SheetOf(box, planes, Projection::kFirst)))
      reach[std::round(arrow.tip.x())] = std::max(reach[std::round(arrow.tip.x())], arrow.tip.y());
    ASSERT_EQ(reach.size(), 2U);
    EXPECT_GT(reach.begin()->second, reach.rbegin()->second + 5);
  }
  // Beside the model, in their order.
  std::map<double, int> places;
  for (const Arrow& arrow :
       ArrowsOf(SheetOf(box, {"front", "X=90", "X=42", "X=55..60", "-1,0,0=-60", "X=-30"}, Projection::kFirst)))
    ++places[std::round(arrow.tip.x())];
  std::vector<double> steps;
  for (auto place = std::next(places.begin()); place != places.end(); ++place)
    steps.push_back(place->first - std::prev(place)->first);
  EXPECT_EQ(steps, (std::vector<double>{45, 3, 3}));
}

TEST(Sheets, CentreLinesReachBeyondCircles) {
  for (const auto& [radius, arm] : {std::pair(1.0, 2.0), {5.0, 8.0}}) {
    const Sheet sheet = SheetOf(example::Cylinder(48, radius, 9), {"top", "front"});
    for (const PlacedView& view : sheet.views) {
      std::vector<double> lengths;
      for (const Line& line : view.lines.lines) {
        if (line.edgeClass == EdgeClass::kCentre) lengths.push_back(line.chain.points[0].Distance(line.chain.points[1]));
      }
      const bool isTop = view.lines.name == "top";
      ASSERT_EQ(lengths.size(), isTop ? 2U : 1U);
      for (const double length : lengths) EXPECT_NEAR(length, isTop ? 2 * arm : 9 + 2 * (arm - radius), 1e-5);
    }
  }
}

// The plane's line stands for the centre line on which it lies.
TEST(Sheets, CentreLinesAlongSections) {
  for (const auto& [plane, count] : {std::pair("Y=0", 1), {"Y=0.3", 1}, {"Y=1", 2}, {"1,1,0=0", 2}}) {
    const Sheet sheet = SheetOf(example::Cylinder(48, 5, 9), {"top", plane}, Projection::kFirst);
    const std::vector<Line>& lines = sheet.views[0].lines.lines;
    const auto isCentre = [](const Line& line) { return line.edgeClass == EdgeClass::kCentre; };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isCentre), count) << plane;
  }
}

// Those of hidden circles only where hidden lines are shown; else those that views without hidden lines have.
TEST(Sheets, CentreLinesOfWhatIsShown) {
  const auto shown = [](HiddenLines drawn, HiddenStyle style) {
    SheetOptions options;
    options.projection = Projection::kFirst;
    options.hidden = style;
    const auto views = ViewsOf(example::Housing(), {"front", "back", "left", "right", "top", "bottom", "Y=20"}, drawn);
    std::vector<std::vector<ZBR_PT>> lines;
    for (const PlacedView& view : LayOut(views, options).views) {
      for (const Line& line : view.lines.lines) {
        EXPECT_FALSE(line.hidden && style == HiddenStyle::kNone);
        if (line.edgeClass == EdgeClass::kCentre) lines.push_back(line.chain.points);
      }
    }
    return lines;
  };
  const auto seen = shown(HiddenLines::kNone, HiddenStyle::kDashed);
  EXPECT_EQ(shown(HiddenLines::kInAllViews, HiddenStyle::kLayer), seen);
  EXPECT_EQ(shown(HiddenLines::kInAllViews, HiddenStyle::kNone), seen);
  EXPECT_NE(shown(HiddenLines::kInAllViews, HiddenStyle::kDashed), seen);
}

// Slabs that leave less than half of a cylinder, or more.
TEST(Sheets, AxesThatSectionsTakeAway) {
  for (const auto& [plane, count] : {std::pair("Y=-3..-1", 0), {"Y=-3..1", 1}, {"Y=1..3", 0}}) {
    const Sheet sheet = SheetOf(example::Cylinder(48, 5, 9), {plane});
    const std::vector<Line>& lines = sheet.views[0].lines.lines;
    const auto isAxis = [](const Line& line) { return line.edgeClass == EdgeClass::kCentre; };
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isAxis), count) << plane;
  }
}

// Lines stand closer in narrow bodies, and do not run along most of an outline.
TEST(Sheets, HatchingSuitsItsBody) {
  const struct {
    double width, turns, degrees, spacing;
  } cases[] = {{40, 0, 45, 4}, {8, 0, 45, 0.35 * 2 * 480 / 136}, {2, 0, 45, 1}, {8, 0.125, 135, 0.35 * 2 * 480 / 136}};
  for (const auto& c : cases) {
    Mesh bar = Box({-30, -c.width / 2, 0}, {30, c.width / 2, 10});
    example::Turn(bar, {0, 0, 1}, c.turns);
    std::vector<double> places;  // across the lines
    const Sheet sheet = SheetOf(bar, {"Z=5"});
    for (const Line& line : sheet.views[0].lines.lines) {
      if (line.edgeClass != EdgeClass::kHatching) continue;
      const double angle = c.degrees * std::numbers::pi / 180;
      const ZBR_PT along(std::cos(angle), std::sin(angle)), d = line.chain.points[1] - line.chain.points[0];
      EXPECT_NEAR(along.OuterProduct(d), 0.0, 1e-9);
      places.push_back(along.OuterProduct(line.chain.points[0]));
    }
    std::sort(places.begin(), places.end());
    ASSERT_GT(places.size(), 5U);
    for (std::size_t i = 1; i < places.size(); ++i) EXPECT_NEAR(places[i] - places[i - 1], c.spacing, 1e-9);
  }
}

// Everything is within the frame; no text lies on another one, or is struck by marks, centre lines or the title block.
void ExpectInOrder(const Sheet& sheet) {
  const PaperBox bounds = PaperBox{ZBR_PT(20, 10), ZBR_PT(sheet.paper.width - 10, sheet.paper.height - 10)}.Wider(1e-6);
  std::vector<std::vector<ZBR_PT>> strokes;
  for (const SheetPath& path : sheet.paths) {
    strokes.push_back(path.points);
    if (path.closed) strokes.back().push_back(path.points.front());
  }
  for (const PlacedView& view : sheet.views) {
    for (const Line& line : view.lines.lines) {
      std::vector<ZBR_PT> points;
      for (const ZBR_PT& p : line.chain.points) points.push_back(sheet.OnPaper(view, p));
      for (const ZBR_PT& p : points) ASSERT_TRUE((PaperBox{p, p}.IsWithin(bounds))) << view.lines.name;
      if (IsChainLine(line.edgeClass)) strokes.push_back(points);
    }
  }
  for (std::size_t i = 0; i < sheet.texts.size(); ++i) {
    const PaperBox box = BoxOf(sheet.texts[i]);
    EXPECT_TRUE(box.IsWithin(bounds)) << sheet.texts[i].text;
    for (std::size_t j = 0; j < i; ++j) EXPECT_TRUE(box.IsClearOf(BoxOf(sheet.texts[j]))) << sheet.texts[j].text;
    for (const std::vector<ZBR_PT>& stroke : strokes) {
      for (std::size_t k = 1; k < stroke.size(); ++k) {
        const double steps = std::ceil(stroke[k - 1].Distance(stroke[k]) * 2);
        for (double t = 0; t <= steps; ++t) {
          const ZBR_PT p = stroke[k - 1] + (stroke[k] - stroke[k - 1]) * (t / steps);
          ASSERT_FALSE((PaperBox{p, p}.IsWithin(box))) << sheet.texts[i].text << " at " << p.x() << " " << p.y();
          ASSERT_TRUE((PaperBox{p, p}.IsWithin(bounds)));
        }
      }
    }
  }
}

// Its widths in thousandths of the size, of which capitals have 716 as their height.
TEST(Sheets, TextFitsInArial) {
  for (const auto& [width, letters] : {std::pair(191, "'"),
                                       {222, "ijl"},
                                       {260, "|"},
                                       {278, " !,./:;I[\\]ft"},
                                       {333, "()-`r"},
                                       {334, "{}"},
                                       {355, "\""},
                                       {389, "*"},
                                       {469, "^"},
                                       {500, "Jckszvxy"},
                                       {556, "0123456789?Labdeghnopqu_$#"},
                                       {584, "+<=>~"},
                                       {611, "FTZ"},
                                       {667, "&ABEKPSVXY"},
                                       {722, "CDHNRUw"},
                                       {778, "GOQ"},
                                       {833, "Mm"},
                                       {889, "%"},
                                       {944, "W"},
                                       {1015, "@"}}) {
    for (const char letter : std::string(letters))
      EXPECT_GE(TextWidth(std::string(1, letter), 1.0) + 0.005, width / 716.0) << letter;
  }
}

// Planes through the middle, far beside the model, at its faces, close to each other, and at a slant; fields long and short.
TEST(Sheets, NothingLeavesTheFrameOrStrikesText) {
  std::size_t count = 0;
  for (const Mesh& mesh : {example::Housing(), example::Cylinder(48, 5, 9)}) {
    const Model model = MakeModel(mesh, 30.0);
    const ZBR_PT3 middle = model.Centre(), half = (model.high - model.low) * 0.5;
    const auto plane = [](const char* axis, double at) { return std::string(axis) + "=" + std::to_string(at); };
    const std::string x = plane("X", middle.x()), y = plane("Y", middle.y()), beside = plane("X", middle.x() + 9 * half.x());
    const std::string slanted = plane("1,0,1", (middle.x() + middle.z()) / std::numbers::sqrt2);
    for (const std::vector<std::string>& names :
         std::vector<std::vector<std::string>>{{"top", x},
                                               {"front", "top", "left", "iso", "dimetric"},
                                               {"bottom", x, y},
                                               {"front", x, plane("X", middle.x() + half.x() / 20), beside},
                                               {"top", plane("Y", middle.y() - 9 * half.y()), plane("X", model.high.x())},
                                               {"front", slanted, plane("1,0,1", 9 * model.Diagonal())},
                                               {"front", x, x, x, x, x, x}}) {
      const std::vector<ViewLines> views = ViewsOf(mesh, names);
      for (const char* paper : {"A3", "A4", "150x150", "60x300"}) {
        for (const std::string& field : {std::string("Bearing housing"), std::string(200, 'W')}) {
          SCOPED_TRACE(names.back() + " of " + std::to_string(names.size()) + " on " + paper + ": " + field);
          SheetOptions options;
          options.projection = Projection::kFirst;
          options.paper = ParsePaper(paper);
          options.title = options.number = options.author = options.date = field;
          try {
            const Sheet sheet = LayOut(views, options);
            ExpectInOrder(sheet);
            EXPECT_EQ(sheet.shortened.size(), field.front() == 'W' ? 4U : paper[0] == '6' ? 2U : 0U);
            ++count;
          } catch (const Failure& failure) {
            EXPECT_NE(std::string(failure.what()).find("do not fit"), std::string::npos) << failure.what();
          }
        }
      }
    }
  }
  EXPECT_GT(count, 70U);
}

}  // namespace
}  // namespace zbr::drawing
