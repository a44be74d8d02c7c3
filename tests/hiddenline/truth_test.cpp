// Drawings against what the eye would see: densely sampled edges, looked at one by one.
//
// A sample counts by the length of edge it stands for. Lines end within a tolerance of where they should, so a small share may
// differ; every scene prints its share.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "hiddenline/ink.h"
#include "hiddenline/scenes.h"

namespace {

constexpr double kShare = 1e-3;

struct Tally {
  double length = 0.0;
  double visible = 0.0;
  double wrong = 0.0;    // drawn but hidden, or hidden but not drawn
  double missing = 0.0;  // in neither the visible nor the hidden drawing
  double twice = 0.0;    // visible, and hidden in the drawing without repeats; or in neither of them

  double Wrong() const { return wrong / std::max(length, 1e-100); }
  void Add(const Tally& o) {
    length += o.length;
    visible += o.visible;
    wrong += o.wrong;
    missing += o.missing;
    twice += o.twice;
  }
};

std::vector<ZBR_HL_SHELL> Removed(Drawing& drawing) {
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
  return shells;
}

std::vector<ZBR_SEG> HiddenSegments(const std::vector<ZBR_HL_SHELL>& shells, int mode) {
  std::vector<ZBR_SEG> segments;
  ZBR_HiddenLine::GetHiddenLineObj(shells.data(), segments, mode, static_cast<unsigned>(shells.size()));
  return segments;
}

Tally Look(Drawing& drawing, int samples) {
  const std::vector<ZBR_HL_SHELL> shells = Removed(drawing);
  const Ink ink(shells);
  const std::vector<ZBR_SEG> all = HiddenSegments(shells, 0);
  const std::vector<ZBR_SEG> rest = HiddenSegments(shells, 3);
  Tally tally;
  for (const InkSample& s : ink.Samples(samples)) {
    const ZBR_PT p = s.at.xy();
    const auto isHidden = [&](const std::vector<ZBR_SEG>& segments, bool beside) {
      double t = 0.0;
      return std::any_of(segments.begin(), segments.end(),
                         [&](const ZBR_SEG& segment) { return PassesOver(segment.s(), segment.e(), p, ink.Reach(beside), t); });
    };
    tally.length += s.length;
    if (ink.IsDrawn(p)) tally.visible += s.length;
    if (ink.IsWrong(s)) tally.wrong += s.length;
    if (!ink.IsDrawn(p, true) && !isHidden(all, true)) tally.missing += s.length;
    if (ink.IsDrawn(p) ? isHidden(rest, false) : !ink.IsDrawn(p, true) && !isHidden(rest, true)) tally.twice += s.length;
  }
  return tally;
}

void Report(const std::string& scene, const Tally& tally) {
  std::printf("[ truth    ] %-24s length %10.1f  visible %5.1f %%  wrong %.1e  missing %.1e  twice %.1e\n", scene.c_str(),
              tally.length, 100.0 * tally.visible / tally.length, tally.Wrong(), tally.missing / tally.length,
              tally.twice / tally.length);
}

void ExpectTrue(const Tally& tally) {
  EXPECT_LE(tally.wrong, kShare * tally.length);
  EXPECT_LE(tally.missing, kShare * tally.length);
  EXPECT_LE(tally.twice, kShare * tally.length);
}

TEST(HiddenTruth, NamedScenesFromAllSides) {
  for (const NamedScene& scene : NamedScenes()) {
    Tally sum;
    std::vector<std::pair<std::string, View>> views = {{"slanting", tool::LookAlong({1.1, 2.3, -0.7}, {0, 0, 1})}};
    for (const std::string& name : tool::ViewNames()) views.emplace_back(name, *tool::NamedView(name));
    for (const auto& [name, view] : views) {
      SCOPED_TRACE(std::string(scene.name) + " seen from " + name);
      Drawing drawing = Draw(scene.bodies, view);
      const Tally tally = Look(drawing, Scaled(2000));
      ExpectTrue(tally);
      sum.Add(tally);
    }
    Report(scene.name, sum);
  }
}

class HiddenTruthOf : public testing::TestWithParam<SceneFamily> {};

TEST_P(HiddenTruthOf, RandomScenes) {
  Tally sum;
  for (int seed = 0; seed < Scaled(10); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(1000 + static_cast<std::uint64_t>(seed));
    const std::vector<Mesh> bodies = GetParam().bodies(random);
    Drawing drawing = Draw(bodies, RandomView(random));
    Disguise(drawing, random);
    if (seed % 4 == 0) ForgetNeighbours(drawing);
    const Tally tally = Look(drawing, 2000);
    ExpectTrue(tally);
    sum.Add(tally);
  }
  Report(GetParam().name, sum);
}

// The drawing does not depend on how the scene is written, and a mirrored scene gives the mirrored drawing.
TEST_P(HiddenTruthOf, SameDrawingInDisguiseAndMirrored) {
  double length = 0.0;
  double differing = 0.0;
  for (int seed = 0; seed < Scaled(10); ++seed) {
    const auto make = [&](Random& random) {
      const std::vector<Mesh> bodies = GetParam().bodies(random);
      return Draw(bodies, RandomView(random));
    };
    Random random(2000 + static_cast<std::uint64_t>(seed));
    Random again = random;
    Drawing plain = make(random);
    Drawing other = make(again);
    Disguise(other, random);
    const double mirror = seed % 2 == 0 ? -1.0 : 1.0;
    Scale(other, ZBR_PT3(mirror, 1, 1));
    const std::vector<ZBR_HL_SHELL> shells = Removed(plain);
    const Ink ink(shells);
    const Ink otherInk(Removed(other));
    for (const InkSample& s : ink.Samples(2000)) {
      length += s.length;
      if (ink.IsDrawn(s.at.xy()) != otherInk.IsDrawn({mirror * s.at.x(), s.at.y()})) differing += s.length;
    }
  }
  std::printf("[ disguise ] %-24s length %10.1f  differing %.1e\n", GetParam().name, length, differing / length);
  EXPECT_LE(differing, kShare * length);
}

INSTANTIATE_TEST_SUITE_P(Families, HiddenTruthOf, testing::ValuesIn(SceneFamilies()),
                         [](const auto& family) { return std::string(family.param.name); });

}  // namespace
