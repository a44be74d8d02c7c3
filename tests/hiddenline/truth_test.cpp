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

// Boxes and pegs stand on a plate, seen from anywhere, their coordinates rounded as files hold them: the lines in which they meet
// the plate are drawn when the contact tolerance is above the rounding, and only then.
TEST(HiddenTruth, BodiesFaceToFaceInRoundedCoordinates) {
  struct Case {
    double offset, contact, least, most;  // lost share of the visible length
  };
  for (const Case& c :
       {Case{0, 1e-7, 0.005, 0.1}, Case{0, 1e-5, 0, 1e-6}, Case{1000, 1e-5, 0.02, 0.2}, Case{1000, 1e-4, 0, 1e-6}}) {
    double visible = 0.0;
    double wrong = 0.0;
    for (int seed = 0; seed < Scaled(6); ++seed) {
      Random random(static_cast<std::uint64_t>(seed));
      std::vector<Mesh> bodies = {example::Box({0, 0, -0.5}, {10, 10, 0})};
      for (int n = 0; n < 4; ++n) {
        const ZBR_PT3 at(1.0 + 2.2 * n, 1 + Below(random, 6), 0);
        bodies.push_back(n % 2 == 0 ? example::Box(at, at + ZBR_PT3(1.5, 1 + Below(random, 2), 1))
                                    : Moved(example::Cylinder(8 + Below(random, 24), 0.7, 1.5), at + ZBR_PT3(0.8, 0.8, 0)));
      }
      const ZBR_PT3 away(-Unit(random), -0.2 - Unit(random), -0.7 - Unit(random));
      Drawing drawing = Draw(bodies, zbr::drawing::LookAlong(away, {0.1, 0.2, 1}));
      const auto round = [&c](double v) { return static_cast<double>(static_cast<float>(v * 0.625 + c.offset)); };
      for (auto& body : drawing.bodies) {
        for (ZBR_HL_TRI& t : body) {
          for (ZBR_PT3& p : t.pt) p.Set(round(p.x()), round(p.y()), round(p.z()));
        }
      }
      std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
      ZBR_HL_REMOVAL options;
      options.contact_tolerance = c.contact;
      EXPECT_TRUE(ZBR_HiddenLine::RemoveAll(shells.data(), static_cast<unsigned>(shells.size()), options));
      const Ink ink(shells);
      for (const InkSample& s : ink.Samples(2000)) {
        if (ink.IsDrawn(s.at.xy())) visible += s.length;
        if (ink.IsWrong(s)) wrong += s.length;
      }
    }
    std::printf("[ contact  ] offset %4.0f tolerance %.0e wrong %.4f %%\n", c.offset, c.contact, 100.0 * wrong / visible);
    EXPECT_TRUE(c.least * visible <= wrong && wrong <= c.most * visible) << c.offset << ' ' << c.contact;
  }
}

INSTANTIATE_TEST_SUITE_P(Families, HiddenTruthOf, testing::ValuesIn(SceneFamilies()), testing::PrintToStringParamName());

}  // namespace
