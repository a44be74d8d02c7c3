// Point and loop inclusion by named case.
#include <gtest/gtest.h>

#include <cmath>

#include "support/shapes.h"

namespace {

constexpr double kEps = 1e-5;
constexpr const char* kUnit = "0 0, 1 0, 1 1, 0 1";

ZBR_POLY_INSIDE Where(const ZBR_PT& p, const char* ring) {
  std::vector<ZBR_POS_PT_PT> pos;
  const auto loop = ParseLoop(ring);
  const ZBR_POLY_INSIDE r = zbrIsInside(p, *loop, pos);
  EXPECT_EQ(ZBR_LOOP_LOCATOR(*loop).IsInside(p), r) << "the locator answers as the function does";
  return r;
}

TEST(PointInLoop, Cases) {
  const struct {
    const char* what;
    const char* ring;
    ZBR_PT p;
    ZBR_POLY_INSIDE r;
  } rows[] = {
      {"right of the box", kUnit, {2, 0.5}, ZBR_PI_OUT},
      {"vertex", kUnit, {1, 1}, ZBR_PI_ON_VERTEX},
      {"vertex within eps on both axes", kUnit, {1 + 0.5 * kEps, 1 - 0.5 * kEps}, ZBR_PI_ON_VERTEX},
      {"edge", kUnit, {0.5, 0}, ZBR_PI_ON_EDGE},
      {"edge within eps", kUnit, {0.5, -0.5 * kEps}, ZBR_PI_ON_EDGE},
      {"closing edge", kUnit, {0, 0.5}, ZBR_PI_ON_EDGE},
      {"just outside", kUnit, {0.5, -1.5 * kEps}, ZBR_PI_OUT},
      {"just inside", kUnit, {0.5, 1.5 * kEps}, ZBR_PI_IN},
      {"two points", "0 0, 1 0", {0.5, 0}, ZBR_PI_OUT},
      {"in the box, outside the ring", "0 0, 4 0, 0 4", {3, 3}, ZBR_PI_OUT},
      {"first slope meets a vertex, the next decides", "-1 -1, 9 -1, 6 3, 4 2, 6 9, -1 9", {0, 0}, ZBR_PI_IN},
  };
  for (const auto& row : rows) EXPECT_EQ(Where(row.p, row.ring), row.r) << row.what;
}

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

TEST(LoopInLoop, Relations) {
  const struct {
    const char* what;
    const char* a;
    const char* b;
    ZBR_POLY_REL rel;
    bool inside;
  } rows[] = {
      {"same", kUnit, "1 1, 1 0, 0 0, 0 1", ZBR_PR_SAME, true},
      {"inside", "1 1, 2 1, 2 2, 1 2", "0 0, 3 0, 3 3, 0 3", ZBR_PR_A_IN_B, true},
      {"around", "0 0, 3 0, 3 3, 0 3", "1 1, 2 1, 2 2, 1 2", ZBR_PR_B_IN_A, false},
      {"boxes apart", kUnit, "5 5, 6 5, 6 6, 5 6", ZBR_PR_APART, false},
      {"beside, boxes overlapping", "0 0, 4 0, 0 4", "4 1, 4 4, 1 4", ZBR_PR_APART, false},
      {"inside, touching from a corner", "0 0, 2 0, 0 2", "0 0, 3 0, 3 3, 0 3", ZBR_PR_A_IN_B, true},
      {"beside, sharing an edge", "1 0, 2 0, 2 1, 1 1", kUnit, ZBR_PR_APART, false},
      {"inside by an edge midpoint only", "0 0, 4 0, 4 4", "0 0, 4 0, 4 4, 0 4", ZBR_PR_A_IN_B, true},
      // Every vertex and edge midpoint of a is on b; between b's vertices a's upper edge runs outside b.
      {"over two notches", "0 0, 4 0, 4 4, 0 4", "0 0, 4 0, 4 4, 3 2, 2 4, 1 2, 0 4", ZBR_PR_B_IN_A, false},
      {"over two notches, repeated points", "0 0, 0 0, 4 0, 4 4, 4 4, 0 4", "0 0, 4 0, 4 4, 3 2, 2 4, 2 4, 1 2, 0 4", ZBR_PR_B_IN_A,
       false},
      {"one point on the boundary", "1 1", kUnit, ZBR_PR_APART, true},
      {"one point outside", "2 2, 2 2", "0 0, 4 0, 1 2", ZBR_PR_APART, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(zbrCheckInclude(*ParseLoop(row.a), *ParseLoop(row.b)), row.rel) << row.what;
    EXPECT_EQ(zbrIsInside(*ParseLoop(row.a), *ParseLoop(row.b)), row.inside) << row.what;
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
