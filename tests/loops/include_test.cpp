// Point and loop inclusion: limits and forms. By named case: data/locations.txt, data/relations.txt.
#include <gtest/gtest.h>

#include <cmath>

#include "support/shapes.h"

namespace {

TEST(PointInLoop, EveryRayGrazesAVertex) {
  // A vertex on each of the 31 slopes of each quadrant: nothing decides.
  Ring ring;
  for (int quadrant = 0; quadrant < 4; ++quadrant) {
    for (int k = 1; k < 32; ++k) {
      const int slope = quadrant % 2 == 0 ? k : 32 - k;
      const double x = quadrant == 0 || quadrant == 3 ? 32 : -32;
      ring.emplace_back(x, quadrant < 2 ? slope : -slope);
    }
  }
  std::vector<ZBR_POS_PT_PT> pos;
  const auto loop = MakeLoop(ring);
  EXPECT_EQ(zbrIsInside({0, 0}, *loop, pos), ZBR_PI_UNKNOWN);
  EXPECT_EQ(ZBR_LOOP_LOCATOR(*loop).IsInside({0, 0}), ZBR_PI_IN) << "the locator decides here";
  EXPECT_EQ(zbrIsInside({0.1, 0.003}, *loop, pos), ZBR_PI_IN);
}

TEST(PointInLoop, PositionsAreFilledInLoopOrder) {
  const auto loop = ParseLoop("0 0, 4 0, 4 4, 0 4");
  std::vector<ZBR_POS_PT_PT> pos(7);
  zbrIsInside({9, 9}, *loop, pos);
  EXPECT_EQ(pos.size(), 7U) << "untouched when the box answers";
  zbrIsInside({1, 4}, *loop, pos);
  ASSERT_EQ(pos.size(), 4U);
  EXPECT_EQ(pos[2].xPos, 1);
  EXPECT_EQ(pos[2].yPos, 0);
  zbrIsInside({4, 4}, *loop, pos);
  EXPECT_EQ(pos.size(), 2U) << "cut short at the vertex";
}

TEST(PointInLoop, NonFiniteInputHasAnAnswer) {
  std::vector<ZBR_POS_PT_PT> pos;
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e308}) {
    for (const ZBR_PT& p : {ZBR_PT(bad, 0.5), ZBR_PT(0.5, bad), ZBR_PT(bad, bad)}) {
      const auto loop = MakeLoop(Square(0, 0, 1));
      EXPECT_NE(zbrIsInside(p, *loop, pos), ZBR_PI_IN) << p.x() << ' ' << p.y();
      loop->pt()[1] = p;
      loop->Reset();
      zbrIsInside({0.5, 0.5}, *loop, pos);
      ZBR_LOOP_LOCATOR(*loop).IsInside(p);
    }
  }
}

TEST(LoopInRegion, PointerAndListForms) {
  const LoopList region = ParseRegion("0 0, 12 0, 12 12, 0 12; 2 2, 10 2, 10 10, 2 10; 4 4, 8 4, 8 8, 4 8");
  ASSERT_EQ(region.size(), 2U);
  const struct {
    const char* what;
    const char* a;
    ZBR_LOOP_REL toFirst, toList;
  } rows[] = {
      {"in the hole", "3 3, 3.5 3, 3.5 3.5", ZBR_LR_IN_HOLE, ZBR_LR_IN_HOLE},
      {"on the island: the first container answers", "5 5, 6 5, 6 6", ZBR_LR_IN_HOLE, ZBR_LR_IN_HOLE},
      {"the hole itself", "2 2, 10 2, 10 10, 2 10", ZBR_LR_SAME_AS_HOLE, ZBR_LR_SAME_AS_HOLE},
      {"in the material", "0.5 0.5, 1 0.5, 1 1", ZBR_LR_INSIDE, ZBR_LR_INSIDE},
      {"around the hole", "1 1, 11 1, 11 11, 1 11", ZBR_LR_INSIDE, ZBR_LR_INSIDE},
      {"the loop itself", "12 12, 12 0, 0 0, 0 12", ZBR_LR_SAME, ZBR_LR_SAME},
      {"around all", "-1 -1, 13 -1, 13 13, -1 13", ZBR_LR_CONTAINS, ZBR_LR_OUTSIDE},
      {"beside", "20 0, 21 0, 21 1", ZBR_LR_OUTSIDE, ZBR_LR_OUTSIDE},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(zbrCheckInclude(ParseLoop(row.a), region[0]), row.toFirst) << row.what;
    EXPECT_EQ(zbrCheckInclude(ParseLoop(row.a), region), row.toList) << row.what;
  }
  EXPECT_EQ(zbrCheckInclude(ParseLoop("5 5, 6 5, 6 6"), LoopList{}), ZBR_LR_OUTSIDE);

  EXPECT_EQ(ZBR_LOOP_LOCATOR(LoopList{}).IsInside({0, 0}), ZBR_PI_OUT);
}

}  // namespace
