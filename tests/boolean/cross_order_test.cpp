// Sorting and clean-up of crossings, on records made by hand. By named case: data/orders.txt.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/shapes.h"

namespace {

constexpr ZBR_CROSS_DIR L = ZBR_CROSS_TO_LEFT;
constexpr ZBR_CROSS_DIR R = ZBR_CROSS_TO_RIGHT;

struct Side {
  int loop, poly;
  double pos;
};

ZBR_CROSS Make(Side a, Side b, ZBR_CROSS_DIR dir, const ZBR_PT& pt = {}) {
  ZBR_CROSS c;
  c.pt = pt;
  c.dir = dir;
  c.a.loop = ZBR_CROSS_LOOP(a.loop, a.poly);
  c.a.pos = a.pos;
  c.b.loop = ZBR_CROSS_LOOP(b.loop, b.poly);
  c.b.pos = b.pos;
  c.valid = true;
  return c;
}

TEST(CrossSort, KeysInTurn) {
  std::vector<ZBR_CROSS> c(2, Make({3, 1, 2.5}, {4, 2, 1.5}, L));
  // Which of the two comes first by side a, after a change of an earlier key each time.
  const auto first = [&](int primary) {
    const ZBR_CROSS_SORT_FUNCTOR before(c, primary, 1 - primary);
    return before(0, 1) ? '0' : before(1, 0) ? '1' : '=';
  };
  std::string order = {first(0)};
  c[1].b.order = -1;
  order += first(0);
  c[0].b.pos = 1.4;
  order += first(0);
  c[1].b.loop = ZBR_CROSS_LOOP(4, 1);
  order += first(0);
  c[0].a.order = -1;
  order += first(0);
  c[1].a.pos = std::nextafter(2.5, 0.0);
  order += first(0);
  c[0].a.loop = ZBR_CROSS_LOOP(2, 9);
  order += first(0);
  EXPECT_EQ(order, "=101010");
  EXPECT_EQ(first(1), '1') << "by side b the other one is first";
}

TEST(OptimizeCross, TieWithoutAStripBetweenIsDropped) {
  const LoopList A = Nest({Square(0, 0, 90)});
  const LoopList B = Nest({Square(0, 0, 4)});
  std::vector<ZBR_CROSS> tie = {Make({0, 0, 0.5}, {0, 0, 0.25}, L, {1, 0}), Make({0, 0, 0.5}, {0, 0, 0.75}, R, {3, 0})};
  tie[0].index = 0;
  tie[1].index = 1;
  std::vector<int> sorted[2];
  zbrOptimizeCross(A, B, tie, sorted, true);
  EXPECT_TRUE(tie.empty());
}

TEST(SetFollowingCrossDone, CyclicPredecessorWithinAPolygon) {
  std::vector<ZBR_CROSS> crosses;
  for (const int loop : {0, 0, 0, 1, 2, 2}) crosses.push_back(Make({loop, 0, 0.0}, {0, 0, 0.0}, crosses.size() == 1 ? L : R));
  const std::vector<int> list = {0, 1, 2, 3, 4, 5};
  zbrSetFollowingCrossDone(crosses, 0, list, R, true);
  std::string done;
  for (const ZBR_CROSS& c : crosses) done += c.done ? '1' : '.';
  EXPECT_EQ(done, "1..111") << "RLR: the first follows the last; a single one follows itself";
  std::vector<ZBR_CROSS> one = {Make({0, 0, 0}, {0, 0, 0}, R)};
  zbrSetFollowingCrossDone(one, 0, {0}, R, true);
  EXPECT_FALSE(one[0].done) << "fewer than two: nothing to follow";
}

}  // namespace
