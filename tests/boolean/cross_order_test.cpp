// Sorting, clean-up and order of crossings at one spot, on records made by hand.
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
  const std::size_t n = out.crosses.size();
  EXPECT_EQ(out.sorted[0].size(), n);
  EXPECT_EQ(out.sorted[1].size(), n);
  for (std::size_t k = 0; k < n && out.sorted[0].size() == n && out.sorted[1].size() == n; ++k) {
    EXPECT_EQ(out.crosses[k].index, static_cast<int>(k));
    EXPECT_EQ(out.crosses[static_cast<std::size_t>(out.sorted[0][k])].a.seq, static_cast<int>(k));
    EXPECT_EQ(out.crosses[static_cast<std::size_t>(out.sorted[1][k])].b.seq, static_cast<int>(k));
  }
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
  const auto before = [&](int i, int j, int primary) { return ZBR_CROSS_SORT_FUNCTOR(c, primary, 1 - primary)(i, j); };
  EXPECT_FALSE(before(0, 1, 0));
  EXPECT_FALSE(before(1, 0, 0)) << "equal records";
  const auto expectFirst = [&](int first) {
    EXPECT_EQ(before(0, 1, 0), first == 0);
    EXPECT_EQ(before(1, 0, 0), first == 1);
  };
  c[1].b.order = -1;
  expectFirst(1);
  c[0].b.pos = 1.4;
  expectFirst(0);
  c[1].b.loop = ZBR_CROSS_LOOP(4, 1);
  expectFirst(1);
  c[0].a.order = -1;
  expectFirst(0);
  c[1].a.pos = std::nextafter(2.5, 0.0);
  expectFirst(1);
  c[0].a.loop = ZBR_CROSS_LOOP(2, 9);
  expectFirst(0);
  EXPECT_TRUE(before(1, 0, 1)) << "by side b the other one is first";
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

// Two crossings of opposite directions at 0.5 of side s, on one ring of the other side at 0.5 and 1.5. Expected are both orders.
TEST(OptimizeCross, TieOnOnePolygonFollowsTheStripArea) {
  const auto orders = [](int s, bool leftFirst, bool clockwise) {
    Ring ring = Square(0, 0, 4);
    if (clockwise) std::reverse(ring.begin(), ring.end());
    const LoopList other = {MakeLoop(ring)};
    const LoopList own = {MakeLoop(Square(-9, -9, 40))};
    const ZBR_CROSS_DIR d0 = leftFirst ? L : R;
    const auto make = [&](double own0, double pos, ZBR_CROSS_DIR dir) {
      const Side here = {0, 0, own0};
      const Side there = {0, 0, pos};
      return Make(s == 0 ? here : there, s == 0 ? there : here, dir, other[0]->LinTo(pos));
    };
    const auto cleaned =
        Clean({make(0.5, 0.5, d0), make(0.5, 1.5, leftFirst ? R : L)}, true, s == 0 ? own : other, s == 0 ? other : own);
    EXPECT_EQ(cleaned.crosses.size(), 2U);
    if (cleaned.crosses.size() != 2) return std::string();
    std::string text;
    for (const ZBR_CROSS& c : cleaned.crosses) text += std::to_string((s == 0 ? c.a : c.b).order);
    return text;
  };
  // On side 0 the strip runs from the left crossing to the right one, on side 1 the other way round. Of a closed ring both strips
  // have the sign of its orientation.
  EXPECT_EQ(orders(0, true, false), "21");
  EXPECT_EQ(orders(0, false, false), "12");
  EXPECT_EQ(orders(0, true, true), "12");
  EXPECT_EQ(orders(0, false, true), "21");
  EXPECT_EQ(orders(1, true, false), "12");
  EXPECT_EQ(orders(1, false, false), "21");
  EXPECT_EQ(orders(1, true, true), "21");
  EXPECT_EQ(orders(1, false, true), "12");
}

TEST(OptimizeCross, TieWithoutAStripBetweenIsDropped) {
  const LoopList other = {MakeLoop(Square(0, 0, 4))};
  const std::vector<ZBR_CROSS> tie = {Make({0, 0, 0.5}, {0, 0, 0.25}, L, {1, 0}), Make({0, 0, 0.5}, {0, 0, 0.75}, R, {3, 0})};
  EXPECT_EQ(Clean(tie, true, TwoSquares(), other).crosses.size(), 0U);
}

TEST(OptimizeCross, TieOfTwoPolygonsAsksForTheirLoop) {
  const auto orders = [](int s, Side first, Side second, ZBR_CROSS_DIR d0) {
    // The second pair balances both polygons of the other side.
    const ZBR_CROSS_DIR d1 = d0 == L ? R : L;
    const Side own = {0, 0, 0.5};
    const Side far1 = {0, 0, 2.5};
    const Side far2 = {0, 0, 3.5};
    const auto make = [s](Side mine, Side theirs, ZBR_CROSS_DIR d) {
      return s == 0 ? Make(mine, theirs, d) : Make(theirs, mine, d);
    };
    Side back1 = first;
    Side back2 = second;
    back1.pos += 1.0;
    back2.pos += 1.0;
    const auto cleaned = Clean({make(own, first, d0), make(own, second, d1), make(far1, back1, d1), make(far2, back2, d0)}, true,
                               TwoSquares(), TwoSquares());
    std::string text;
    for (const ZBR_CROSS& c : cleaned.crosses) text += std::to_string((s == 0 ? c.a : c.b).order);
    return text;
  };
  const Side outer = {0, 0, 0.5};
  const Side hole = {0, 1, 0.5};
  const Side otherHole = {0, 2, 0.5};
  const Side otherLoop = {1, 0, 0.5};
  EXPECT_EQ(orders(0, outer, hole, L), "2100") << "one loop: material lies between outer boundary and hole";
  EXPECT_EQ(orders(0, hole, otherHole, L), "2100");
  EXPECT_EQ(orders(0, outer, hole, R), "1200");
  EXPECT_EQ(orders(0, outer, otherLoop, L), "1200") << "two loops: void lies between";
  EXPECT_EQ(orders(0, hole, otherLoop, L), "1200") << "also when one is a hole";
  EXPECT_EQ(orders(0, outer, otherLoop, R), "2100");
  EXPECT_EQ(orders(1, outer, hole, L), "1200");
  EXPECT_EQ(orders(1, outer, hole, R), "2100");
  EXPECT_EQ(orders(1, outer, otherLoop, L), "2100");
  EXPECT_EQ(orders(1, outer, otherLoop, R), "1200");
}

TEST(SetFollowingCrossDone, CyclicPredecessorWithinAPolygon) {
  const struct {
    const char* what;
    const char* dirs;  // along one polygon in list order; ' ' begins the next polygon
    ZBR_CROSS_DIR dir;
    bool forward;
    const char* done;
  } rows[] = {
      {"forward", "RRLR", R, true, "11.."},
      {"backward", "RRLR", R, false, "1..1"},
      {"other direction", "RRLR", L, true, "...."},
      {"all of one direction", "RRR", R, true, "111"},
      {"polygons apart", "RL LR RR", R, true, "....11"},
      {"single", "RL R", R, false, "..1"},
      {"left, backward", "LLRL", L, false, "1..1"},
  };
  for (const auto& row : rows) {
    for (int side = 0; side < 2; ++side) {
      std::vector<ZBR_CROSS> crosses;
      std::vector<int> list;
      int loop = 0;
      for (const char* d = row.dirs; *d != '\0'; ++d) {
        if (*d == ' ') {
          ++loop;
          continue;
        }
        const Side here = {loop, 0, 0.0};
        const Side there = {0, 0, 0.0};
        list.push_back(static_cast<int>(crosses.size()));
        crosses.push_back(Make(side == 0 ? here : there, side == 0 ? there : here, *d == 'L' ? L : R));
      }
      zbrSetFollowingCrossDone(crosses, side, list, row.dir, row.forward);
      std::string done;
      for (const ZBR_CROSS& c : crosses) done += c.done ? '1' : '.';
      EXPECT_EQ(done, row.done) << row.what;
    }
  }
  std::vector<ZBR_CROSS> one = {Make({0, 0, 0}, {0, 0, 0}, R)};
  zbrSetFollowingCrossDone(one, 0, {0}, R, true);
  EXPECT_FALSE(one[0].done) << "fewer than two: nothing to follow";
}

}  // namespace
