// Boolean combinations by named case. Expected are the areas of A - B, B - A, union, intersection and symmetric difference.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

constexpr const char* kUnit = "0 0, 1 0, 1 1, 0 1";

struct Row {
  const char* what;
  const char* a;
  const char* b;
  const char* expected;
};

void ExpectAll(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    ExpectBoolean(row.a, row.b, row.expected);
  }
}

TEST(Boolean, Crossing) {
  ExpectAll({
      {"a spear through one edge: the walk goes all the way round", "0 0, 4 0, 4 4, 0 4", "1 -1, 3 -1, 2 1",
       "15.5:1+0 1.5:1+0 17.5:1+0 0.5:1+0 17:2+0"},
      {"combs close a row of holes", "0 0, 7 0, 7 3, 6 3, 6 1, 5 1, 5 3, 4 3, 4 1, 3 1, 3 3, 2 3, 2 1, 1 1, 1 3, 0 3",
       "0 2, 7 2, 7 4, 0 4", "11:1+0 10 25:1+3 4:4+0 21"},
      {"a ring cut through its hole", "0 0, 6 0, 6 6, 0 6; 2 2, 4 2, 4 4, 2 4", "3 -1, 9 -1, 9 7, 3 7",
       "16:1+0 32 64:1+1 16:1+0 48"},
      {"crossing at a vertex of both", "0 0, 2 2, 0 4", "1 2, 2 2, 4 0, 4 4, 1 3", "3.5 6 10 0.5 9.5"},
  });
}

TEST(Boolean, SharedEdges) {
  ExpectAll({
      {"side by side, shorter", "0 0, 3 0, 3 3, 0 3", "3 1, 4 1, 4 2, 3 2", "9:1+0 1:1+0 10:1+0 0:0+0 10"},
      {"inside, along one side", "0 0, 3 0, 3 3, 0 3", "0 1, 1 1, 1 2, 0 2", "8:1+0 0:0+0 9:1+0 1:1+0 8:1+0"},
      {"a plug fills a hole but for a slit", "0 0, 5 0, 5 5, 0 5; 1 1, 4 1, 4 4, 1 4", "1 1, 3 1, 3 4, 1 4",
       "16:1+1 6:1+0 22:1+1 0:0+0 22"},
      {"hole touching the other's outer loop", "0 0, 6 0, 6 6, 0 6; 2 2, 4 2, 4 4, 2 4", "2 2, 4 2, 3 3", "32 1 33 0 33"},
  });
}

// Polygons that no crossing touches, each row a relation of A's polygon to B; operands are exchanged too, which covers B's columns.
TEST(Boolean, PolygonsWithoutCrossings) {
  ExpectAll({
      {"loop outside", kUnit, "5 5, 7 5, 7 7, 5 7", "1:1+0 4:1+0 5:2+0 0:0+0 5:2+0"},
      {"loop inside", kUnit, "-1 -1, 2 -1, 2 2, -1 2", "0:0+0 8:1+1 9:1+0 1:1+0 8:1+1"},
      {"loop in a hole", kUnit, "-3 -3, 4 -3, 4 4, -3 4; -1 -1, 2 -1, 2 2, -1 2", "1:1+0 40:1+1 41:2+1 0:0+0 41:2+1"},
      {"loop same as a loop", kUnit, "1 0, 1 1, 0 1, 0 0", "0:0+0 0:0+0 1:1+0 1:1+0 0:0+0"},
      {"loop same as a hole", "-1 -1, 2 -1, 2 2, -1 2", "-3 -3, 4 -3, 4 4, -3 4; -1 -1, 2 -1, 2 2, -1 2",
       "9:1+0 40:1+1 49:1+0 0:0+0 49:1+0"},
      {"hole outside", "0 0, 6 0, 6 6, 0 6; 1 1, 2 1, 2 2, 1 2", "4 -1, 9 -1, 9 7, 4 7", "23:1+1 28 63:1+1 12:1+0 51"},
      {"hole inside", "0 0, 6 0, 6 6, 0 6; 1 1, 2 1, 2 2, 1 2", "-1 -1, 7 -1, 7 7, -1 7", "0:0+0 29:2+1 64:1+0 35:1+1 29:2+1"},
      {"hole in a hole", "0 0, 6 0, 6 6, 0 6; 2 2, 3 2, 3 3, 2 3", "0 -9, 9 -9, 9 9, 0 9; 1 1, 5 1, 5 5, 1 5",
       "15:1+1 126 161:1+1 20:1+1 141"},
      {"hole same as a loop", "0 0, 6 0, 6 6, 0 6; 1 1, 2 1, 2 2, 1 2", "1 1, 2 1, 2 2, 1 2", "35:1+1 1:1+0 36:1+0 0:0+0 36:1+0"},
      {"hole same as a hole", "0 0, 6 0, 6 6, 0 6; 2 2, 3 2, 3 3, 2 3", "1 1, 5 1, 5 5, 1 5; 2 2, 3 2, 3 3, 2 3",
       "20:1+1 0:0+0 35:1+1 15:1+1 20:1+1"},
      {"empty operand", "", kUnit, "0:0+0 1:1+0 1:1+0 0:0+0 1:1+0"},
      {"both empty", "", "", "0:0+0 0:0+0 0:0+0 0:0+0 0:0+0"},
  });
}

// An island inside a hole stands behind its outer loop in the list: the first loop that contains a polygon need not be the
// innermost.
TEST(Boolean, InnermostContainerDecides) {
  constexpr const char* kTarget = "0 0, 12 0, 12 12, 0 12; 1 1, 11 1, 11 11, 1 11; 2 2, 10 2, 10 10, 2 10";
  ExpectAll({
      {"a square on the island", "5 5, 6 5, 6 6, 5 6", kTarget, "0:0+0 107:2+2 108:2+1 1:1+0 107:2+2"},
      {"the same without it", "0 0, 12 0, 12 12, 0 12; 1 1, 11 1, 11 11, 1 11; 2 2, 10 2, 10 10, 2 10; 5 5, 6 5, 6 6, 5 6", kTarget,
       "0:0+0 1:1+0 108:2+1 107:2+2 1:1+0"},
      {"the island itself", "2 2, 10 2, 10 10, 2 10", kTarget, "0:0+0 44:1+1 108:2+1 64:1+0 44:1+1"},
      {"around the island, in the hole", "1.5 1.5, 10.5 1.5, 10.5 10.5, 1.5 10.5", kTarget, "17:1+1 44:1+1 125:2+1 64:1+0 61:2+2"},
  });
}

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
