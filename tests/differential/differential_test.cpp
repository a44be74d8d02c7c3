// The library, which searches with indexes, against trying all pairs: equal to the last bit.
#include <gtest/gtest.h>

#include <cstdio>

#include "differential/compare.h"

namespace {

class Differential : public testing::TestWithParam<Family> {};

// None, one far below the data, the default, and two that swallow features.
double DrawEps(Random& random) {
  const double eps[] = {0.0, 1e-9, 1e-5, 1e-4, 0.9e-3};
  return eps[Below(random, 5)];
}

// Detection and clean-up, points of B off by up to the tolerance: equal ones come to differ, coincidences to miss closely. Where
// more than two crossings meet at one spot their ranking is free.
TEST_P(Differential, Crossings) {
  long records = 0;
  int crowded = 0;
  for (int seed = 0; seed < Scaled(1500); ++seed) {
    OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(DrawEps(random));
    const ZBR_TmpEps guard(tol.eps);
    for (Ring& ring : pair.b) {
      for (ZBR_PT& p : ring) p += ZBR_PT(Unit(random) - 0.5, Unit(random) - 0.5) * (seed % 3 == 0 ? 2.0 * tol.eps : 0.0);
    }
    const LoopList A = Nest(pair.a);
    const LoopList B = seed % 2 == 0 ? Nest(pair.b) : MakeLoops(pair.b);
    const literal::Loops literalA = literal::FromZbr(A);
    const literal::Loops literalB = literal::FromZbr(B);
    SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << Describe(A, B));
    std::vector<ZBR_CROSS> got, expected, open, expectedOpen;
    std::vector<int> sorted[2], expectedSorted[2];
    zbrGetLoopsCross(A, B, got);
    literal::GetLoopsCross(literalA, literalB, expected, tol);
    ASSERT_TRUE(SameCrosses(got, expected));
    records += static_cast<long>(got.size());
    if (!A.empty() && !B.empty()) {
      zbrGetPolygonCross(A[0], B[0], 3, 4, 1, 2, open, false);
      literal::GetPolygonCross(*literalA[0], *literalB[0], {3, 1}, {4, 2}, expectedOpen, false, tol);
      ASSERT_TRUE(SameCrosses(open, expectedOpen));
    }
    const bool bothClosed = seed % 4 != 0;
    zbrOptimizeCross(A, B, got, sorted, bothClosed);
    if (literal::OptimizeCross(literalA, literalB, expected, expectedSorted, bothClosed, tol)) {
      ++crowded;
      continue;
    }
    for (int s = 0; s < 2; ++s) {
      ASSERT_EQ(sorted[s], expectedSorted[s]);
      const ZBR_CROSS_DIR dir = s == 0 ? ZBR_CROSS_TO_RIGHT : ZBR_CROSS_TO_LEFT;
      zbrSetFollowingCrossDone(got, s, sorted[s], dir, seed % 2 == 0);
      literal::SetFollowingCrossDone(expected, s, sorted[s], dir, seed % 2 == 0);
    }
    ASSERT_TRUE(SameCrosses(got, expected));
  }
  std::printf("[ compared ] %s: %ld records; left out %d crowded cases\n", GetParam().name, records, crowded);
  EXPECT_GE(records, Scaled(1500));  // a run that compared nothing proves nothing
}

TEST_P(Differential, Boolean) {
  int exact = 0;
  for (int seed = 0; seed < Scaled(1500); ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    const LoopList A = Nest(pair.a);
    const LoopList B = Nest(pair.b);
    const BooleanResults got = RunAll(A, B);
    const auto expected = literal::BooleanLoops(literal::FromZbr(A), literal::FromZbr(B), {kOps.begin(), kOps.end()});
    if (expected.manyAtOneSpot) continue;
    SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << Describe(A, B));
    ASSERT_TRUE(SameCrosses(got.crosses, expected.crosses));
    if (got.status.exact) {
      ++exact;
      continue;
    }
    for (std::size_t k = 0; k < kOps.size(); ++k) ASSERT_TRUE(SameLoops(got.loops[k], expected.loops[k])) << kOps[k];
  }
  std::printf("[ compared ] %s: all but %d\n", GetParam().name, exact);
}

// Equal, touching and crossing rings in one list; then points on vertices, on edges, near them and anywhere.
TEST_P(Differential, NestingAndLocation) {
  long answers[6] = {};
  for (int seed = 0; seed < Scaled(800); ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    std::vector<Ring> rings = pair.a;
    if (seed % 2 == 0) rings.insert(rings.end(), pair.b.begin(), pair.b.end());
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(DrawEps(random));
    const ZBR_TmpEps guard(tol.eps);
    LoopList tree = MakeLoops(Disguise(std::move(rings), random));
    literal::Loops expected = literal::FromZbr(tree);
    zbrMakeLoopTree(tree);
    literal::MakeLoopTree(expected, tol);
    SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << ToText(tree));
    ASSERT_TRUE(SameLoops(tree, expected));

    const ZBR_LOOP_LOCATOR inRegion(tree);
    std::vector<ZBR_POS_PT_PT> pos, expectedPos;
    for (int k = 0; k < 20 && !tree.empty(); ++k) {
      const Ring& ring = tree[random() % tree.size()]->pt();
      const ZBR_PT from = ring[random() % ring.size()];
      ZBR_PT p = from + (ring[random() % ring.size()] - from) * (Below(random, 5) * 0.25);
      if (Below(random, 3) == 0) p += ZBR_PT(Below(random, 3) - 1, Below(random, 3) - 1) * (tol.eps * (0.5 + Unit(random)));
      long places[6] = {};
      for (const Ring& other : RingsOf(tree)) {
        const auto loop = MakeLoop(other);
        const ZBR_POLY_INSIDE place = literal::IsInside(p, *literal::FromRing(other), expectedPos, tol);
        ASSERT_EQ(zbrIsInside(p, *loop, pos), place) << p.x() << ' ' << p.y();
        ASSERT_TRUE(place == ZBR_PI_UNKNOWN || ZBR_LOOP_LOCATOR(*loop).IsInside(p) == place) << p.x() << ' ' << p.y();
        ++places[place];
        ++answers[place];
      }
      const bool isOn = places[ZBR_PI_ON_VERTEX] + places[ZBR_PI_ON_EDGE] + places[ZBR_PI_UNKNOWN] > 0;
      const ZBR_POLY_INSIDE parity = places[ZBR_PI_IN] % 2 == 1 ? ZBR_PI_IN : ZBR_PI_OUT;
      ASSERT_TRUE(isOn || inRegion.IsInside(p) == parity) << p.x() << ' ' << p.y();
    }
  }
  for (const ZBR_POLY_INSIDE place : {ZBR_PI_ON_VERTEX, ZBR_PI_ON_EDGE, ZBR_PI_IN, ZBR_PI_OUT})
    EXPECT_GT(answers[place], Scaled(40));
}

INSTANTIATE_TEST_SUITE_P(Families, Differential, testing::ValuesIn(Families()), testing::PrintToStringParamName());

}  // namespace
