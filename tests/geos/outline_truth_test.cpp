// Outlines of scenes against the union of the projected triangles that GEOS forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "geos/geos_region.h"
#include "hiddenline/scenes.h"

namespace {

class OutlineTruthOf : public testing::TestWithParam<SceneFamily> {};

// Triangles are joined on a grid of about 1e-11 of the extent: where a vertex lies on an edge but for rounding errors GEOS would
// see a gap; or not, where the grid joins what only comes close. Loops narrower than 1e-8 of the extent do not count.
TEST_P(OutlineTruthOf, RandomScenes) {
  const Geos geos;
  double worst = 0.0;
  std::size_t loopCount = 0;
  for (int seed = 0; seed < Scaled(40); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(3000 + static_cast<std::uint64_t>(seed));
    const std::vector<Mesh> bodies = GetParam().bodies(random);
    Drawing drawing = Draw(bodies, RandomView(random));
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    ZBR_HiddenLine::OutLineObj(shells.data(), static_cast<unsigned>(shells.size()));
    std::vector<Ring> triangles;
    double extent = 0.0;  // the largest coordinate
    for (const auto& body : drawing.bodies) {
      for (const ZBR_HL_TRI& t : body) {
        if (t.tri_state != 1) continue;
        triangles.push_back({t.pt[0].xy(), t.pt[1].xy(), t.pt[2].xy()});
        extent = std::max({extent, t.max_x, t.max_y, -t.min_x, -t.min_y});
      }
    }
    const LoopList& outline = shells[0].outline_all;
    const double grid = std::exp2(std::floor(std::log2(extent)) - 36.0);
    const Geos::Geometry expected = geos.Union(triangles, grid);
    ASSERT_TRUE(expected);
    const double slack = 1e-9 * extent * extent;
    const double difference = geos.Difference(geos.Region(outline), expected, slack);
    EXPECT_NEAR(NetArea(outline), geos.Area(expected), slack);
    EXPECT_LE(difference, slack);
    const std::size_t loops = RingsOf(outline).size();
    const std::array<int, 2> counts = {static_cast<int>(outline.size()), static_cast<int>(loops - outline.size())};
    const auto agrees = [&](const Geos::Geometry& joined) { return joined && geos.CountRings(joined, 1e-8 * extent) == counts; };
    EXPECT_TRUE(agrees(expected) || agrees(geos.Union(triangles, 0.0))) << ToText(outline);
    worst = std::max(worst, difference / (extent * extent));
    loopCount += loops;
  }
  std::printf("[ outline  ] %-9s %4zu loops, differs by at most %.1e of the extent's square\n", GetParam().name, loopCount, worst);
}

INSTANTIATE_TEST_SUITE_P(Families, OutlineTruthOf, testing::ValuesIn(SceneFamilies()), testing::PrintToStringParamName());

}  // namespace
