// Outlines of scenes by name from all sides against the union of the projected triangles that GEOS forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "hiddenline/scenes.h"
#include "outline/outline_geos.h"

namespace {

struct Tally {
  double worst = 0.0;  // difference, relative to the area
  int loops = 0;
  int rounded = 0;
};

// What GEOS forms without a grid may have slivers of its own about the size of rounding errors, along the whole outline.
void Compare(const Geos& geos, const std::vector<Mesh>& bodies, const View& view, Tally& tally) {
  Drawing drawing = Draw(bodies, view);
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  ZBR_HiddenLine::OutLineObj(shells.data(), static_cast<unsigned>(shells.size()));
  const OutlineComparison c = CompareOutline(geos, shells, shells[0].outline_all);
  const double slack = 1e-9 * std::max(c.area, c.extent * c.extent * 1e-3);
  EXPECT_LE(c.error, slack);
  EXPECT_LE(c.difference, slack);
  EXPECT_EQ(c.loops, c.expected);
  if (c.area > 0.0) tally.worst = std::max({tally.worst, c.error / c.area, c.difference / c.area});
  tally.loops += c.loops[0] + c.loops[1];
  tally.rounded += c.rounded ? 1 : 0;
}

void Report(const char* scene, const Tally& tally) {
  std::printf("[ outline  ] %-24s %4d loops, differs by at most %.1e, on a grid %d times\n", scene, tally.loops, tally.worst,
              tally.rounded);
}

TEST(OutlineTruth, NamedScenesFromAllSides) {
  const Geos geos;
  for (const NamedScene& scene : NamedScenes()) {
    Tally tally;
    for (const auto& [name, view] : ViewsAround()) {
      SCOPED_TRACE(std::string(scene.name) + " seen " + name);
      Compare(geos, scene.bodies, view, tally);
    }
    Report(scene.name, tally);
  }
}

class OutlineTruthOf : public testing::TestWithParam<SceneFamily> {};

TEST_P(OutlineTruthOf, RandomScenes) {
  const Geos geos;
  Tally tally;
  for (int seed = 0; seed < Scaled(40); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(3000 + static_cast<std::uint64_t>(seed));
    const std::vector<Mesh> bodies = GetParam().bodies(random);
    Compare(geos, bodies, RandomView(random), tally);
  }
  Report(GetParam().name, tally);
}

INSTANTIATE_TEST_SUITE_P(Families, OutlineTruthOf, testing::ValuesIn(SceneFamilies()),
                         [](const auto& family) { return std::string(family.param.name); });

}  // namespace
