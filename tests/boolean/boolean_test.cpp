// The calls of the Boolean and their limits. What it makes of shapes by name: data/booleans.txt.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

constexpr const char* kUnit = "0 0, 1 0, 1 1, 0 1";

TEST(Boolean, OperandsStayAndResultsAreNew) {
  const LoopList A = ParseRegion("0 0, 6 0, 6 6, 0 6; 2 2, 4 2, 4 4, 2 4");
  const LoopList B = ParseRegion("9 9, 10 9, 10 10");
  const std::string before = Describe(A, B);
  const BooleanResults all = RunAll(A, B);
  for (std::size_t k = 0; k < kOps.size(); ++k) {
    LoopList one = ParseLoops(kUnit);
    zbrBooleanLoops(A, B, kOps[k], one);
    EXPECT_EQ(ToText(one), ToText(all.loops[k])) << "one operation alone, " << kOps[k];
    for (const auto& loop : one) loop->pt().clear();
  }
  EXPECT_EQ(Describe(A, B), before);
}

TEST(Boolean, ResultListMayBeAnOperand) {
  LoopList A = ParseRegion("0 0, 4 0, 4 4, 0 4");
  LoopList B = ParseRegion("2 1, 6 1, 6 5, 2 5");
  zbrBooleanLoops(A, B, ZBR_BOOL_A_MINUS_B, A);
  EXPECT_EQ(NetArea(A), 10.0);
  zbrBooleanLoops(A, B, ZBR_BOOL_OR, B);
  EXPECT_EQ(NetArea(B), 26.0);
  zbrBooleanLoops(B, B, ZBR_BOOL_AND, B);
  EXPECT_EQ(NetArea(B), 26.0);

  LoopList lists[2] = {ParseRegion("0 0, 4 0, 4 4, 0 4"), ParseRegion("2 1, 6 1, 6 5, 2 5")};
  ZBR_BOOLEAN_OPE ops[2] = {ZBR_BOOL_OR, ZBR_BOOL_AND};
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(lists[0], lists[1], ops, lists, 2, crosses);
  EXPECT_EQ(NetArea(lists[0]), 26.0);
  EXPECT_EQ(NetArea(lists[1]), 6.0);
}

TEST(Boolean, CountZeroOnlyFindsTheCrossings) {
  const LoopList A = ParseRegion("0 0, 4 0, 4 4, 0 4");
  const LoopList B = ParseRegion("2 1, 6 1, 6 5, 2 5");
  std::vector<ZBR_CROSS> crosses(9);
  zbrBooleanLoops(A, B, nullptr, nullptr, 0, crosses);
  ASSERT_EQ(crosses.size(), 2U);
  EXPECT_EQ(crosses[0].a.seq, 0);
  EXPECT_EQ(crosses[1].b.seq, 1);
  EXPECT_EQ(crosses[1].index, 1);
}

TEST(Boolean, UnknownOperationYieldsOnlyWhatTheCrossingsGive) {
  LoopList result;
  zbrBooleanLoops(ParseRegion("0 0, 4 0, 4 4, 0 4; 20 0, 21 0, 21 1"), ParseRegion("2 1, 6 1, 6 5, 2 5"),
                  static_cast<ZBR_BOOLEAN_OPE>(17), result);
  EXPECT_EQ(NetArea(result), 26.0);
}

TEST(Boolean, ToleranceComesBackAsItsMagnitude) {
  const ZBR_TmpEps keep(0.125);
  LoopList result;
  zbrBooleanLoops(ParseRegion(kUnit), ParseRegion("0.5 0, 2 0, 2 1"), ZBR_BOOL_OR, result);
  EXPECT_TRUE(zbr_EpsE(0.125));
  EXPECT_FALSE(zbr_EpsE(std::nextafter(0.125, 1.0)));
  zbrCheckPolyBoolean(ParseRegion(kUnit), ParseRegion("0.5 0, 2 0, 2 1"), true);
  EXPECT_TRUE(zbr_EpsE(0.125));
  EXPECT_FALSE(zbr_EpsE(std::nextafter(0.125, 1.0)));
}

// The crossing on the last edge lies so near vertex 0 that its position rounds up to the number of vertices.
TEST(Boolean, PositionsRoundedUpToTheEndOfARing) {
  const double h = 0x1p-24;
  const LoopList big = Nest({Square(0, 0, 0x1p30)});
  const LoopList corner = Nest({{{-10, -10}, {h, -10}, {h, h}, {-10, h}}});
  const BooleanResults results = RunAll(big, corner);
  ASSERT_EQ(results.crosses.size(), 2U);
  EXPECT_EQ(results.crosses[1].a.pos, 4.0);
  const std::array<double, 5> areas = AreasOf(results);
  EXPECT_EQ(areas[0], 0x1p60);
  EXPECT_NEAR(areas[1], 100.0, 1e-5);
  EXPECT_EQ(areas[2], 0x1p60 + 100.0);
  EXPECT_EQ(areas[3], 0.0);
}

TEST(Boolean, TinyResultsAreDropped) {
  LoopList result;
  zbrBooleanLoops(Nest({Square(0, 0, 1)}), Nest({Square(1 - 0x1p-31, 0, 1)}), ZBR_BOOL_AND, result);
  EXPECT_TRUE(result.empty());
  zbrBooleanLoops(Nest({Square(0, 0, 1)}), Nest({Square(1 - 0x1p-29, 0, 1)}), ZBR_BOOL_AND, result);
  EXPECT_EQ(NetArea(result), 0x1p-29);
}

TEST(Boolean, RingsWithNonFinitePointsAreLeftOut) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    LoopList A = MakeLoops({Square(0, 0, 4), Square(10, 0, 4)});
    A[1]->pt()[2].Set(bad, 3);
    const LoopList B = Nest({Square(2, 1, 4), Square(20, 0, 1)});
    const std::array<double, 5> areas = AreasOf(RunAll(A, B));
    const std::array<double, 5> expected = {10, 11, 27, 6, 21};
    EXPECT_EQ(areas, expected);
    const std::array<double, 5> swapped = {11, 10, 27, 6, 21};
    EXPECT_EQ(AreasOf(RunAll(B, A)), swapped);
  }
}

TEST(Boolean, AnyToleranceIsSurvived) {
  const LoopList shapes =
      ParseLoops("0 0, 4 0, 4 4, 0 4; 2 1, 6 1, 6 5, 2 5; 1 1; 1 1, 3 3; 1 1, 2 1, 2 2, 1 2; 0 0, 4 4, 4 0, 0 4");
  for (const double eps : {0.0, 1.0, 1e300, HUGE_VAL, std::nan("")}) {
    const ZBR_TmpEps tolerance(eps);
    LoopList loops = MakeLoops(RingsOf(shapes));
    loops.push_back(MakeLoop({}));
    std::vector<ZBR_CROSS> crosses;
    std::vector<int> sorted[2];
    zbrGetLoopsCross(loops, shapes, crosses);
    zbrOptimizeCross(loops, shapes, crosses, sorted, true);
    EXPECT_EQ(sorted[0].size(), crosses.size());
    std::vector<ZBR_POS_PT_PT> pos;
    for (const auto& loop : loops) {
      zbrCheckInclude(loop, shapes);
      EXPECT_EQ(ZBR_LOOP_LOCATOR(*loop).IsInside({9, 9}), zbrIsInside({9, 9}, *loop, pos));
    }
    zbrMakeLoopTree(loops);
    EXPECT_LE(loops.size(), shapes.size() + 1);
    LoopList result;
    zbrBooleanLoops(loops, shapes, ZBR_BOOL_XOR, result);
  }
}

}  // namespace
