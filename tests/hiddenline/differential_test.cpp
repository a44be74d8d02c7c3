// Three ways to the same intervals, equal to the last bit: the driver, which searches trees edge by edge; the walk over the
// quadtrees, triangle by triangle; and every triangle tried against all others.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "hiddenline/scenes.h"

namespace {

using Shells = std::vector<ZBR_HL_SHELL>;

// Neighbours first: sharing an edge decides for both triangles.
void HideByAll(ZBR_HL_TRI& t, const Shells& shells) {
  std::vector<const ZBR_HL_TRI*> met;
  for (const int idx : t.adj) {
    if (idx != -1) met.push_back(&t.shell->GetTri(idx));
  }
  for (const ZBR_HL_TRI* neighbour : met) t.HiddenLine_TriByTri(*neighbour);
  for (const ZBR_HL_SHELL& shell : shells) {
    for (const ZBR_HL_TRI* o = shell.tris; o != shell.tris + shell.count; ++o) {
      if (std::find(met.begin(), met.end(), o) == met.end()) t.HiddenLine_TriByTri(*o);
    }
  }
}

void HideByAll(Shells& shells) {
  for (ZBR_HL_SHELL& shell : shells) Classify(shell);
  for (ZBR_HL_SHELL& shell : shells) {
    for (ZBR_HL_TRI* t = shell.tris; t != shell.tris + shell.count; ++t) HideByAll(*t, shells);
  }
}

void HideByDriver(Shells& shells) {
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
}

class HiddenDifferential : public testing::TestWithParam<SceneFamily> {};

TEST_P(HiddenDifferential, DriverWalkAndAllPairsAgree) {
  std::size_t parts = 0;
  for (int seed = 0; seed < Scaled(60); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const ZBR_TmpEps guard(seed % 5 == 0 ? 1e-6 : 1e-5);
    Drawing drawings[3];
    Shells shells[3];
    for (int k = 0; k < 3; ++k) {
      drawings[k] = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
      shells[k] = drawings[k].Shells();
    }
    HideByDriver(shells[0]);
    WalkTrees(shells[1]);
    HideByAll(shells[2]);
    const std::string expected = StateText(shells[2]);
    ASSERT_EQ(StateText(shells[0]), expected) << "the driver";
    ASSERT_EQ(StateText(shells[1]), expected) << "the walk";
    parts += static_cast<std::size_t>(std::count(expected.begin(), expected.end(), '['));
  }
  std::printf("[ compared ] %-9s %zu visible parts of edges\n", GetParam().name, parts);
  EXPECT_GE(parts, 1000U * static_cast<unsigned>(Scaled(60)) / 60U);
}

INSTANTIATE_TEST_SUITE_P(Families, HiddenDifferential, testing::ValuesIn(SceneFamilies()), testing::PrintToStringParamName());

// What a triangle beyond any drawing leaves of an edge is as good as its rounding, which must be that of the full rule.
TEST(HiddenByTrianglesBeyondAnyDrawing, DriverAndAllPairsAgree) {
  for (int seed = 0; seed < Scaled(40); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const auto at = [&](unsigned n) { return 10.0 * static_cast<double>(random() % n); };
    std::vector<Corners> triangles(100);
    for (Corners& corners : triangles) {
      for (ZBR_PT3& p : corners) {
        const auto wild = random() % 30;
        p = ZBR_PT3(wild == 0 ? 1e60 : at(8), at(8), wild == 1 ? 1e76 : at(3));
      }
    }
    Drawing drawings[2] = {DrawTriangles(triangles), DrawTriangles(triangles)};
    Shells shells[2] = {drawings[0].Shells(), drawings[1].Shells()};
    HideByDriver(shells[0]);
    HideByAll(shells[1]);
    ASSERT_EQ(StateText(shells[0]), StateText(shells[1])) << seed;
  }
}

}  // namespace
