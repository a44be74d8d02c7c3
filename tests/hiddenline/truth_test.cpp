// Drawings against what the eye would see: densely sampled edges, looked at one by one.
//
// A sample counts by the length of edge it stands for. Lines end within a tolerance of where they should, so a small share may
// differ; every family prints its share.
#include <gtest/gtest.h>

#include <cstdio>

#include "hiddenline/ink.h"
#include "hiddenline/scenes.h"

namespace {

class HiddenTruthOf : public testing::TestWithParam<SceneFamily> {};

TEST_P(HiddenTruthOf, RandomScenes) {
  double all = 0.0;
  double seen = 0.0;
  double mistaken = 0.0;
  for (int seed = 0; seed < Scaled(20); ++seed) {
    Random random(1000 + static_cast<std::uint64_t>(seed));
    const std::vector<Mesh> bodies = GetParam().bodies(random);
    Drawing drawing = Draw(bodies, RandomView(random));
    Disguise(drawing, random);
    if (seed % 2 == 0) Scale(drawing, ZBR_PT3(-1, 1, 1));
    if (seed % 4 == 0) ForgetNeighbours(drawing);
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
    const Ink ink(shells);
    double length = 0.0;
    double wrong = 0.0;  // drawn but hidden, or hidden but not drawn
    for (const InkSample& s : ink.Samples(2000)) {
      length += s.length;
      if (ink.IsDrawn(s.at.xy())) seen += s.length;
      if (ink.IsWrong(s)) wrong += s.length;
    }
    EXPECT_LE(wrong, 1e-3 * length) << "seed " << seed;
    all += length;
    mistaken += wrong;
  }
  std::printf("[ truth    ] %-9s length %10.1f  visible %5.1f %%  wrong %.1e\n", GetParam().name, all, 100.0 * seen / all,
              mistaken / all);
}

INSTANTIATE_TEST_SUITE_P(Families, HiddenTruthOf, testing::ValuesIn(SceneFamilies()), testing::PrintToStringParamName());

}  // namespace
