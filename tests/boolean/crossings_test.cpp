// Crossing detection: limits and forms. By named case: data/crossings.txt.
#include <gtest/gtest.h>

#include <cmath>

#include "support/shapes.h"

namespace {

std::vector<ZBR_CROSS> Detect(const Ring& a, const Ring& b) {
  std::vector<ZBR_CROSS> crosses;
  zbrGetPolygonCross(MakeLoop(a), MakeLoop(b), 0, 0, 0, 0, crosses, true);
  return crosses;
}

TEST(PolygonCross, PositionsAtTheEndOfARing) {
  const ZBR_TmpEps exact(0.0);
  const double h = std::ldexp(1.0, -60);
  const std::vector<ZBR_CROSS> spear = Detect(Square(0, 0, 1), {{-0.5, h}, {0.5, h}, {-0.5, 0.75}});
  ASSERT_EQ(spear.size(), 2U);
  EXPECT_TRUE(spear[0].a.pos == 4.0 && spear[0].b.pos == 0.5 && spear[1].a.pos == 3.625) << "rounded up to n on A";
  for (const ZBR_CROSS& c : Detect({{-h, -1}, {1, -1}, {1, 0.5}, {-h, 0.5}}, {{0, 0}, {2, 0.25}, {-2, 0.25}}))
    EXPECT_NE(c.b.pos, 3.0);
}

TEST(PolygonCross, NonFiniteRingsGiveNothing) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    for (std::size_t at = 0; at < 4; ++at) {
      Ring ring = Square(1, 1, 9);
      ring[at] = at % 2 == 0 ? ZBR_PT(bad, 1) : ZBR_PT(1, bad);
      EXPECT_TRUE(Detect(ring, Square(0, 0, 4)).empty() && Detect(Square(0, 0, 4), ring).empty());
    }
  }
}

TEST(PolygonCross, RecordsAreAppendedWithTheirNames) {
  std::vector<ZBR_CROSS> crosses(3);
  const auto a = MakeLoop(Square(0, 0, 2));
  zbrGetPolygonCross(a, MakeLoop(Square(1, 1, 2)), 7, 8, 2, 3, crosses, true);
  ASSERT_EQ(crosses.size(), 5U);
  const ZBR_CROSS& c = crosses[4];
  EXPECT_TRUE(c.a.loop.value == (std::int64_t{7} << 32) + 2 && c.b.loop.loop() == 8 && c.b.loop.poly() == 3);
  EXPECT_TRUE(c.pt.x() == 1.0 && c.pt.y() == 2.0 && c.index == 4 && c.a.seq == -1 && c.b.order == 0 && c.valid && !c.done);
  EXPECT_TRUE(a->IsSetuped());
  const auto alone = MakeLoop(Square(0, 0, 2));
  zbrGetPolygonCross(ParseLoop("0 0, 1 1"), alone, 0, 0, 0, 0, crosses, true);
  zbrGetLoopsCross({}, {alone}, crosses);
  EXPECT_FALSE(alone->IsSetuped()) << "where there is nothing to cross no loop is touched";
}

TEST(LoopsCross, OrderOfLoopsThenPolygons) {
  const LoopList A = ParseRegion("0 0, 8 0, 8 8, 0 8; 1 1, 7 1, 7 7, 1 7; 10 0, 17 0, 17 7, 10 7");
  const LoopList B = ParseRegion("-1 4, 20 4, 20 5, -1 5; 30 0, 31 0, 31 1");
  std::vector<ZBR_CROSS> crosses(1);
  zbrGetLoopsCross(A, B, crosses);
  ASSERT_EQ(crosses.size(), 13U);
  for (std::size_t i = 2; i < crosses.size(); ++i) {
    EXPECT_LE(crosses[i - 1].a.loop.value, crosses[i].a.loop.value);
    EXPECT_EQ(crosses[i].index, static_cast<int>(i));
  }
  std::vector<ZBR_CROSS> one;
  zbrGetLoopCross(A[0], B[0], 5, 6, one);
  ASSERT_EQ(one.size(), 8U);
  EXPECT_EQ(one[7].a.loop.value, ZBR_CROSS_LOOP(5, 1).value);
  EXPECT_EQ(one[7].b.loop.value, ZBR_CROSS_LOOP(6, 0).value);
  zbrGetLoopsCross({}, B, one);
  zbrGetLoopsCross(A, {}, one);
  EXPECT_EQ(one.size(), 8U);
}

}  // namespace
