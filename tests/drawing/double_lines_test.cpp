// Lines that bodies have in common, against sampling all lines.

#include "drawing/views/double_lines.h"

#include <zbr-drawing/removal.h>
#include <zbr-drawing/views.h>
#include <zbr/tolerance.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "drawing/views/drawn_segments.h"
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
      example::Append(mesh, example::Box(low, low + ZBR_PT3(1 + number(4), 1 + number(4), 1 + number(2))));
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

}  // namespace
}  // namespace zbr::drawing
