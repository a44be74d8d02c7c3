// Sorting and clean-up of crossings, on records made by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "boolean/check.h"
#include "support/expect.h"

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

struct Cleaned {
  std::vector<ZBR_CROSS> crosses;
  std::vector<int> sorted[2] = {{1, 2, 3}, {4, 5}};
};

// Cleans up and checks what must hold for every crossing that is left.
Cleaned Clean(const std::vector<ZBR_CROSS>& crosses, bool bothClosed, const LoopList& A, const LoopList& B) {
  Cleaned out;
  out.crosses = crosses;
  for (std::size_t k = 0; k < crosses.size(); ++k) out.crosses[k].index = static_cast<int>(k);
  zbrOptimizeCross(A, B, out.crosses, out.sorted, bothClosed);
  EXPECT_TRUE(Holds(zbr::SortedFault(out.crosses, out.sorted, 1e-5)));
  return out;
}

// Two far squares with two holes each: polygons (0..1, 0..2).
LoopList TwoSquares() {
  LoopList loops;
  for (int x = 0; x < 200; x += 100) {
    loops.push_back(MakeLoop(Square(x, 0, 90)));
    loops.back()->children() =
        MakeLoops({{{x + 1.0, 1.0}, {x + 1.0, 2.0}, {x + 2.0, 2.0}}, {{x + 4.0, 1.0}, {x + 4.0, 2.0}, {x + 5.0, 2.0}}});
  }
  NetArea(loops);
  return loops;
}

std::size_t LeftOf(const std::vector<ZBR_CROSS>& crosses, bool bothClosed = true) {
  return Clean(crosses, bothClosed, TwoSquares(), TwoSquares()).crosses.size();
}

// A balanced pair far from everything, so that a list does not run empty.
const std::vector<ZBR_CROSS> kPair = {Make({1, 0, 0.5}, {1, 0, 0.5}, L), Make({1, 0, 1.5}, {1, 0, 1.5}, R)};
std::vector<ZBR_CROSS> WithPair(std::vector<ZBR_CROSS> crosses) {
  crosses.insert(crosses.end(), kPair.begin(), kPair.end());
  return crosses;
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

TEST(OptimizeCross, FewerThanTwoOfClosedFamiliesClearsAll) {
  EXPECT_EQ(LeftOf({}), 0U);
  EXPECT_EQ(LeftOf({Make({0, 0, 1}, {0, 0, 1}, L)}), 0U);
  EXPECT_EQ(LeftOf({}, false), 0U);
  EXPECT_EQ(LeftOf({Make({0, 0, 1}, {0, 0, 1}, L)}, false), 1U) << "an open line may end inside";
}

TEST(OptimizeCross, PolygonsCrossedOneWayLoseTheirCrossings) {
  EXPECT_EQ(LeftOf(kPair), 2U);
  EXPECT_EQ(LeftOf(WithPair({Make({0, 0, 1}, {0, 0, 1}, L), Make({0, 0, 2}, {0, 0, 2}, L)})), 2U);
  EXPECT_EQ(LeftOf(WithPair({Make({0, 0, 1}, {0, 0, 1}, L), Make({0, 0, 2}, {0, 1, 2}, R)})), 2U) << "balanced on a, not on b";
  EXPECT_EQ(LeftOf(WithPair({Make({0, 0, 1}, {0, 0, 1}, L), Make({0, 1, 2}, {0, 0, 2}, R)})), 2U) << "balanced on b, not on a";
  EXPECT_EQ(LeftOf(WithPair({Make({0, 0, 1}, {0, 0, 1}, L), Make({0, 0, 2}, {0, 0, 2}, R)})), 4U);
  EXPECT_EQ(LeftOf({Make({0, 0, 1}, {0, 0, 1}, L), Make({0, 0, 2}, {0, 0, 2}, L)}, false), 2U) << "not asked of open lines";
}

TEST(OptimizeCross, CoincidentRecords) {
  const ZBR_CROSS at = Make({0, 0, 1}, {0, 0, 1}, L);
  const ZBR_CROSS exit = Make({0, 0, 3}, {0, 0, 3}, R);
  const double near = 0.9e-5;
  EXPECT_EQ(LeftOf(WithPair({at, at, exit})), 4U) << "a passage recorded twice counts once";
  EXPECT_EQ(LeftOf(WithPair({at, Make({0, 0, 1 + near}, {0, 0, 1 - near}, L), exit})), 4U) << "within eps in position";
  EXPECT_EQ(LeftOf(WithPair({at, Make({0, 0, 1}, {0, 0, 1.1}, L), exit})), 5U) << "elsewhere on b";
  EXPECT_EQ(LeftOf(WithPair({at, Make({0, 0, 1}, {0, 0, 1}, R)})), 2U) << "a touch: both go";
  EXPECT_EQ(LeftOf({at, Make({0, 0, 1}, {0, 0, 1}, R)}), 0U) << "with two entries only one pair is looked at";
  EXPECT_EQ(LeftOf(WithPair({Make({0, 0, 0}, {0, 0, 0}, L), Make({0, 0, 4}, {0, 0, 4}, L), exit})), 5U) << "0 is not n";
}

TEST(OptimizeCross, TouchesOfOpenLines) {
  const auto touch = [](ZBR_CROSS_DIR second) {
    return std::vector<ZBR_CROSS>{Make({0, 0, 0.5}, {0, 0, 0.5}, L), Make({0, 0, 1}, {0, 0, 1}, L),
                                  Make({0, 1, 2}, {0, 0, 1}, second), Make({0, 0, 3}, {0, 0, 3}, R)};
  };
  EXPECT_EQ(LeftOf(touch(R), false), 2U) << "one place of b, opposite directions: both go";
  EXPECT_EQ(LeftOf(touch(L), false), 4U) << "same direction: kept";
}

TEST(OptimizeCross, TieWithoutAStripBetweenIsDropped) {
  const LoopList other = {MakeLoop(Square(0, 0, 4))};
  const std::vector<ZBR_CROSS> tie = {Make({0, 0, 0.5}, {0, 0, 0.25}, L, {1, 0}), Make({0, 0, 0.5}, {0, 0, 0.75}, R, {3, 0})};
  EXPECT_EQ(Clean(tie, true, TwoSquares(), other).crosses.size(), 0U);
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
