// Lines that bodies have in common, against sampling all lines.

#include "drawing/views/double_lines.h"

#include <zbr-drawing/removal.h>
#include <zbr-drawing/trigonometry.h>
#include <zbr-drawing/views.h>
#include <zbr/tolerance.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "drawing/views/drawn_segments.h"
#include "drawing/views/end_tree.h"
#include "models/models.h"

namespace zbr::drawing {
namespace {

constexpr double kNear = 3e-5;  // in the scene

bool CoversPlace(const DrawnSegment& line, const ZBR_PT& p, const ZBR_PT& along) {
  const ZBR_PT d = line.segment.segment.e() - line.segment.segment.s(), o = p - line.segment.segment.s();
  const double part = o.InnerProduct(d) / d.Length2();
  return part >= 0 && part <= 1 && std::fabs(d.OuterProduct(o)) <= kNear * d.Length() &&
         std::fabs(d.OuterProduct(along)) <= 1e-3 * d.Length() * along.Length();
}

std::size_t CountAt(const std::vector<DrawnSegment>& lines, const DrawnSegment& own, double part, bool& hasAny) {
  const ZBR_PT along = own.segment.segment.e() - own.segment.segment.s(), p = own.segment.segment.s() + along * part;
  std::size_t others = 0;
  hasAny = false;
  for (const DrawnSegment& line : lines) {
    if (line.triangle == own.triangle && line.side == own.side) hasAny = hasAny || CoversPlace(line, p, along);
    if (line.shell == own.shell || !CoversPlace(line, p, along)) continue;
    hasAny = true;
    ++others;
  }
  return others;
}

// Shells of all sizes, some around others, by ends on a coarse grid.
std::vector<EndTree::End> RandomEnds(std::mt19937& random, std::uint32_t shells) {
  std::vector<EndTree::End> ends;
  for (std::uint32_t shell = 0; shell < shells; ++shell) {
    const int size = random() % 8 == 0 ? 200 : 12, x = static_cast<int>(random() % 200), y = static_cast<int>(random() % 200);
    for (std::size_t k = 0; k < 2 + random() % 40; ++k) {
      const auto at = [&](int low) { return static_cast<float>(low + static_cast<int>(random()) % size) / 4.0F; };
      ends.push_back({at(x), at(y), shell, static_cast<std::uint32_t>(ends.size())});
    }
  }
  return ends;
}

TEST(EndTree, FindsWhatAllPairsFind) {
  constexpr double kReach = 0.1, kRounding = 1e-4;
  constexpr std::uint32_t kShells = 60;
  std::mt19937 random(3);
  for (int round = 0; round < 20; ++round) {
    const std::vector<EndTree::End> ends = RandomEnds(random, kShells);
    const EndTree tree(ends);
    const std::vector<std::uint32_t> crowded = tree.CrowdedShells(kReach, 2);
    for (std::uint32_t shell = 0; shell < kShells; ++shell) {
      Extent box;
      for (const EndTree::End& e : ends) {
        if (e.shell == shell) box.Add({e.x, e.y});
      }
      const bool hasOthers = std::any_of(ends.begin(), ends.end(), [&](const EndTree::End& e) {
        return e.shell != shell && e.x >= box.xmin && e.x <= box.xmax && e.y >= box.ymin && e.y <= box.ymax;
      });
      ASSERT_EQ(std::count(crowded.begin(), crowded.end(), shell), hasOthers ? 1 : 0) << round << " " << shell;
    }
    for (std::size_t k = 0; k + 1 < ends.size(); k += 7) {
      const ZBR_SEG g(ZBR_PT(ends[k].x, ends[k].y), ZBR_PT(ends[k + 1].x, ends[k + 1].y));
      const double length = g.s().Distance(g.e());
      if (!(length > 0)) continue;
      std::set<std::uint32_t> found;
      tree.ForEachNear(g, kReach, ends[k].shell, [&](std::uint32_t segment) { found.insert(segment); });
      for (const EndTree::End& e : ends) {
        const ZBR_PT u = (g.e() - g.s()) * (1.0 / length), d = ZBR_PT(e.x, e.y) - g.s();
        const double along = u.InnerProduct(d);
        const double beyond = std::max({std::fabs(u.OuterProduct(d)), -along, along - length}) - kReach;
        if (std::fabs(beyond) <= kRounding) continue;
        ASSERT_EQ(found.contains(e.segment), e.shell != ends[k].shell && beyond < 0) << round << " " << k;
      }
    }
  }
}

// Boxes on a coarse grid, turned or not, many in one place: where a line was there is one, and nowhere are there two bodies'.
TEST(DoubleLines, EachPlaceKeepsOne) {
  std::mt19937 random(5);
  const auto number = [&](int count) { return static_cast<double>(random() % static_cast<unsigned>(count)); };
  std::size_t doubled = 0;
  for (int round = 0; round < 12; ++round) {
    Mesh mesh;
    for (int k = 0; k < 16; ++k) {
      const ZBR_PT3 low(number(4), number(4), number(3));
      mesh.shells.insert(mesh.shells.end(), 12, static_cast<std::uint32_t>(k));
      example::Append(mesh, example::Box(low, low + ZBR_PT3(1 + number(2), 1 + number(2), 1 + number(2))));
    }
    if (round % 2 != 0) example::Turn(mesh, {1, 2, 3}, 0.3);
    const Model model = MakeModel(mesh, 30.0);
    Scene scene = MakeScene(model, round % 3 == 0 ? *NamedView("top") : LookAlong({1, 2, -3}, {0, 0, 1}));
    const ZBR_TmpEps hold(kSceneTolerance);
    RemoveHidden(scene, 1);
    const DrawnSegments drawn(model, scene, nullptr, 1);
    const std::vector<DrawnSegment> before = drawn.Visible();
    std::vector<DrawnSegment> after = before;
    LeaveOutVisibleDoubles(drawn, 1, after);
    bool hasAny = false;
    for (const DrawnSegment& line : before) {
      for (const double part : {0.03, 0.21, 0.48, 0.77, 0.96}) {
        doubled += CountAt(before, line, part, hasAny);
        CountAt(after, line, part, hasAny);
        EXPECT_TRUE(hasAny) << round;
      }
    }
    for (const DrawnSegment& line : after) {
      if (line.segment.segment.s().Distance(line.segment.segment.e()) < 0.01) continue;
      EXPECT_EQ(CountAt(after, line, 0.5, hasAny), 0U) << round;
    }
  }
  EXPECT_GT(doubled, 300U);
}

// Lines in rows, each another body's: at every place the first one of the heaviest class is left, and of classes that stand by
// themselves the first of each. Where and which way the rows run does not matter.
TEST(DoubleLines, RowsKeepTheHeaviestLineAtEachPlace) {
  constexpr int kLength = 20, kRows = 3;
  constexpr std::uint32_t kLines = 150;
  const std::vector<EdgeClass> classes = {EdgeClass::kCrease,     EdgeClass::kBorder,  EdgeClass::kJunction,
                                          EdgeClass::kSilhouette, EdgeClass::kTangent, EdgeClass::kCut};
  const Model model = MakeModel(example::BoxesOnPlate(13), 30.0);
  ASSERT_GT(model.ShellCount(), kLines);
  const Scene scene = MakeScene(model, *NamedView("top"));
  const DrawnSegments drawn(model, scene, nullptr, 1);
  std::mt19937 random(3);
  const auto number = [&](std::size_t count) { return static_cast<int>(random() % count); };
  for (int round = 0; round < 20; ++round) {
    const double angle = round;
    const ZBR_PT origin(number(2000) - 1000, number(2000) - 1000), along(std::cos(angle), std::sin(angle));
    const auto at = [&](double x, int row) { return origin + along * x + ZBR_PT(-along.y(), along.x()) * row; };
    std::vector<DrawnSegment> lines;
    // By row, place and weight: the body that is left; by body, what it stands for.
    std::map<std::tuple<int, int, std::size_t>, std::uint32_t> first;
    std::vector<std::pair<std::size_t, int>> of;
    for (std::uint32_t k = 0; k < kLines; ++k) {
      const int row = number(kRows), from = number(kLength), to = from + 1 + number(static_cast<std::size_t>(kLength - from));
      const std::size_t weight = random() % 3 == 0 ? random() % classes.size() : 3;
      const auto place = std::find(std::begin(kDrawnClasses), std::end(kDrawnClasses), classes[weight]);
      DrawnSegment line;
      line.edgeClass = static_cast<std::uint8_t>(place - std::begin(kDrawnClasses));
      line.shell = line.other = k;
      line.segment.segment = ZBR_SEG(at(from, row), at(to, row));
      if (random() % 2 == 0) line.segment.segment = ZBR_SEG(line.segment.segment.e(), line.segment.segment.s());
      lines.push_back(line);
      of.emplace_back(weight, row);
      for (int x = from; x < to; ++x) first.emplace(std::tuple(row, x, weight), k);
    }
    std::set<std::tuple<int, int, std::uint32_t>> expected, left;
    for (const auto& [place, body] : first) {
      const auto& [row, x, weight] = place;
      const auto heaviest = first.lower_bound(std::tuple(row, x, std::size_t{0}));
      if (weight + 1 == classes.size() || heaviest->second == body) expected.emplace(row, x, body);
    }
    LeaveOutVisibleDoubles(drawn, 1, lines);
    for (const DrawnSegment& line : lines) {
      const int row = of[line.shell].second;
      const ZBR_SEG& g = line.segment.segment;
      const double s = (g.s() - origin).InnerProduct(along), e = (g.e() - origin).InnerProduct(along);
      for (int x = 0; x < kLength; ++x) {
        const bool isThere = std::min(s, e) < x + 0.5 && x + 0.5 < std::max(s, e);
        EXPECT_TRUE(!isThere || left.emplace(row, x, line.shell).second);
      }
    }
    EXPECT_EQ(left, expected) << round;
  }
}

// Lines side by side, each another body's, many of them near enough to the next one but not to the one behind it: what goes has a
// line that stays in its place, however one goes for another that itself goes in part.
TEST(DoubleLines, NothingGoesWithoutALineInItsPlace) {
  constexpr int kLength = 20;
  constexpr std::uint32_t kLines = 30;
  const Model model = MakeModel(example::BoxesOnPlate(6), 30.0);
  ASSERT_GT(model.ShellCount(), kLines);
  const Scene scene = MakeScene(model, *NamedView("top"));
  const double contact = std::max(scene.contact, kSceneTolerance);
  const DrawnSegments drawn(model, scene, nullptr, 1);
  std::mt19937 random(4);
  std::size_t gone = 0;
  for (int round = 0; round < 50; ++round) {
    std::vector<DrawnSegment> lines;
    for (std::uint32_t k = 0; k < kLines; ++k) {
      const auto from = static_cast<int>(random() % kLength);
      const int to = from + 1 + static_cast<int>(random() % static_cast<unsigned>(kLength - from));
      const double aside = static_cast<double>(random() % 16) * 0.4 * contact;
      DrawnSegment line;
      line.shell = line.other = k;
      line.segment.segment = ZBR_SEG(ZBR_PT(from, aside), ZBR_PT(to, aside));
      lines.push_back(line);
    }
    std::vector<DrawnSegment> left = lines;
    LeaveOutVisibleDoubles(drawn, 1, left);
    for (const DrawnSegment& line : lines) {
      const ZBR_SEG& g = line.segment.segment;
      for (double x = g.s().x() + 0.5; x < g.e().x(); ++x) {
        const auto isAt = [&](const DrawnSegment& other, double reach) {
          const ZBR_SEG& h = other.segment.segment;
          return h.s().x() < x && x < h.e().x() && std::fabs(h.s().y() - g.s().y()) <= reach;
        };
        const auto isNear = [&](const DrawnSegment& other) { return isAt(other, 1.01 * contact); };
        const auto isItself = [&](const DrawnSegment& other) { return other.shell == line.shell && isAt(other, 0.0); };
        EXPECT_TRUE(std::any_of(left.begin(), left.end(), isNear)) << round << ' ' << line.shell << ' ' << x;
        gone += std::any_of(left.begin(), left.end(), isItself) ? 0 : 1;
      }
    }
  }
  EXPECT_GT(gone, 1000U);
}

// Discs on top of each other, divided differently: the corners of the farther one are seen between those of the nearer one, whose
// rim is whole. That one stays, whichever body is named first and from whichever side it is looked at.
TEST(DoubleLines, OfTwoRimsTheWholeOneStays) {
  for (const int sides : {20, 24, 36}) {
    for (std::size_t upper = 0; upper < 2; ++upper) {
      Mesh mesh;
      for (std::size_t k = 0; k < 2; ++k) {
        Mesh disc = example::Cylinder(k == upper ? sides : 24, 3.0, 1.0);
        if (k == upper) example::Turn(disc, {0, 0, 1}, 0.5 / sides);
        if (k == upper) example::Move(disc, {0, 0, 1});
        mesh.shells.insert(mesh.shells.end(), disc.triangles.size(), static_cast<std::uint32_t>(k));
        example::Append(mesh, disc);
      }
      const Model model = MakeModel(mesh, 30.0);
      for (const std::string view : {"top", "bottom"}) {
        DrawingOptions options;
        options.hidden = HiddenLines::kNone;
        const ViewLines drawn = DrawView(model, view, options);
        ASSERT_EQ(drawn.lines.size(), 1U) << sides << " " << upper << " " << view;
        EXPECT_EQ(drawn.lines[0].shell, view == "top" ? upper : 1 - upper);
        ASSERT_EQ(drawn.lines[0].chain.curves.size(), 1U);
        EXPECT_NEAR(std::fabs(drawn.lines[0].chain.curves[0].t1 - drawn.lines[0].chain.curves[0].t0), kFullTurn, 1e-9);
      }
    }
  }
}

}  // namespace
}  // namespace zbr::drawing
