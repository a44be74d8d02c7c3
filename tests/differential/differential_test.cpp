// The library, which searches with indexes, against the literal form, which tries all pairs: equal to the last bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "differential/compare.h"

namespace {

class Differential : public testing::TestWithParam<Family> {
 protected:
  // What was compared is part of the result: a run that compared nothing proves nothing.
  void Report(const char* what, long cases, long items, long least) {
    std::printf("[ compared ] %s: %ld cases, %ld %s\n", GetParam().name, cases, items, what);
    EXPECT_GE(items, least);
  }
};

// None, one far below the data, the default, and two that swallow features.
double DrawEps(Random& random) {
  const double eps[] = {0.0, 1e-9, 1e-5, 1e-4, 0.9e-3};
  return eps[Below(random, 5)];
}

TEST_P(Differential, Detection) {
  const int cases = Scaled(1500);
  long records = 0;
  for (int seed = 0; seed < cases; ++seed) {
    OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(DrawEps(random));
    if (seed % 3 == 0) Jitter(pair.b, tol.eps, random);
    const LoopList A = Nest(pair.a);
    const LoopList B = seed % 2 == 0 ? Nest(pair.b) : MakeLoops(pair.b);
    const ZBR_TmpEps guard(tol.eps);
    const literal::Loops literalA = literal::FromZbr(A);
    const literal::Loops literalB = literal::FromZbr(B);

    std::vector<ZBR_CROSS> got;
    std::vector<ZBR_CROSS> expected;
    zbrGetLoopsCross(A, B, got);
    literal::GetLoopsCross(literalA, literalB, expected, tol);
    ASSERT_TRUE(SameCrosses(got, expected)) << "seed " << seed << '\n' << Describe(A, B);
    records += static_cast<long>(got.size());

    for (std::size_t i = 0; i < std::min(A.size(), B.size()); ++i) {
      got.clear();
      expected.clear();
      const bool closed = (seed + static_cast<int>(i)) % 3 != 0;
      zbrGetPolygonCross(A[i], B[i], 3, 4, 1, 2, got, closed);
      literal::GetPolygonCross(*literalA[i], *literalB[i], {3, 1}, {4, 2}, expected, closed, tol);
      ASSERT_TRUE(SameCrosses(got, expected)) << "seed " << seed << " polygons " << i << '\n' << Describe(A, B);
    }
  }
  Report("records", cases, records, cases);
}

TEST_P(Differential, CleanUp) {
  const int cases = Scaled(1500);
  long left = 0;
  long crowded = 0;
  for (int seed = 0; seed < cases; ++seed) {
    OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(DrawEps(random));
    if (seed % 3 == 0) Jitter(pair.b, tol.eps, random);
    const LoopList A = Nest(pair.a);
    const LoopList B = Nest(pair.b);
    const ZBR_TmpEps guard(tol.eps);
    const bool bothClosed = seed % 4 != 0;
    const literal::Loops literalA = literal::FromZbr(A);
    const literal::Loops literalB = literal::FromZbr(B);

    std::vector<ZBR_CROSS> got;
    literal::GetLoopsCross(literalA, literalB, got, tol);
    std::vector<ZBR_CROSS> expected = got;
    std::vector<int> sorted[2];
    std::vector<int> expectedSorted[2];
    zbrOptimizeCross(A, B, got, sorted, bothClosed);
    if (literal::OptimizeCross(literalA, literalB, expected, expectedSorted, bothClosed, tol)) {
      ++crowded;
      continue;
    }
    ASSERT_TRUE(SameCrosses(got, expected)) << "seed " << seed << '\n' << Describe(A, B);
    for (int s = 0; s < 2; ++s) {
      ASSERT_EQ(sorted[s], expectedSorted[s]) << "seed " << seed << '\n' << Describe(A, B);
      const bool forward = seed % 2 == 0;
      const ZBR_CROSS_DIR dir = s == 0 ? ZBR_CROSS_TO_RIGHT : ZBR_CROSS_TO_LEFT;
      zbrSetFollowingCrossDone(got, s, sorted[s], dir, forward);
      literal::SetFollowingCrossDone(expected, s, sorted[s], dir, forward);
      ASSERT_TRUE(SameCrosses(got, expected)) << "seed " << seed << '\n' << Describe(A, B);
    }
    left += static_cast<long>(got.size());
  }
  std::printf("[ left out ] %s: %ld with more than two crossings at one spot\n", GetParam().name, crowded);
  Report("crossings left", cases - crowded, left, cases / 2);
}

TEST_P(Differential, LoopTree) {
  const int cases = Scaled(1500);
  long children = 0;
  for (int seed = 0; seed < cases; ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    std::vector<Ring> rings = pair.a;
    rings.insert(rings.end(), pair.b.begin(), pair.b.end());  // equal, touching and crossing rings in one list
    if (seed % 2 == 0) rings.resize(pair.a.size());
    Random random(static_cast<std::uint64_t>(seed));
    rings = Disguise(std::move(rings), random);
    const literal::Tol tol(DrawEps(random));
    const ZBR_TmpEps guard(tol.eps);
    LoopList got = MakeLoops(rings);
    literal::Loops expected = literal::FromZbr(got);
    zbrMakeLoopTree(got);
    literal::MakeLoopTree(expected, tol);
    ASSERT_TRUE(SameLoops(got, expected)) << "seed " << seed << '\n' << ToText(MakeLoops(rings));
    for (const auto& loop : got) children += static_cast<long>(loop->children().size());
  }
  Report("holes", cases, children, cases / 20);
}

// Hundreds of rings inside each other: apart, touching in a common corner, nearly touching, some of them twice.
TEST(DifferentialDeep, LoopTree) {
  const int cases = Scaled(24);
  for (int seed = 0; seed < cases; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(seed % 2 == 0 ? 1e-9 : 1e-5);
    const ZBR_TmpEps guard(tol.eps);
    const int kind = seed % 4;  // centred, common corner, a gap of a few tolerances on the left, several stacks
    std::vector<Ring> rings;
    for (int depth = 1; depth <= 260; ++depth) {
      const double stack = kind == 3 ? 600.0 * Below(random, 3) : 0.0;
      const double left = kind == 1 ? 0.0 : kind == 2 ? -depth * tol.eps * (1 + Below(random, 5)) : -depth;
      rings.push_back(Square(left + stack, kind == 1 ? 0.0 : -depth, 2.0 * depth));
      if (kind == 3 && Below(random, 8) == 0) rings.push_back(rings.back());
    }
    LoopList got = MakeLoops(Disguise(rings, random));
    literal::Loops expected = literal::FromZbr(got);
    zbrMakeLoopTree(got);
    literal::MakeLoopTree(expected, tol);
    ASSERT_TRUE(SameLoops(got, expected)) << "seed " << seed;
    ASSERT_GE(got.size(), 100U);
  }
}

TEST_P(Differential, Inclusion) {
  const int cases = Scaled(400);
  long answers[6] = {};
  for (int seed = 0; seed < cases; ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    const LoopList region = Nest(pair.a);
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(DrawEps(random));
    const ZBR_TmpEps guard(tol.eps);
    const literal::Loops literalRegion = literal::FromZbr(region);
    for (const Ring& ring : pair.b) {
      const auto a = MakeLoop(ring);
      const auto literalA = literal::FromRing(ring);
      const ZBR_LOOP_REL rel = zbrCheckInclude(a, region);
      ASSERT_EQ(rel, literal::CheckIncludeList(*literalA, literalRegion, tol)) << "seed " << seed << '\n'
                                                                               << Describe({ring}, pair.a);
      ++answers[rel];
      for (std::size_t i = 0; i < region.size(); ++i) {
        ASSERT_EQ(zbrCheckInclude(*a, *region[i]), literal::CheckInclude(*literalA, *literalRegion[i], tol));
        ASSERT_EQ(zbrIsInside(*a, *region[i]), literal::IsInside(*literalA, *literalRegion[i], tol));
        const ZBR_LOOP_REL toLoop = zbrCheckInclude(a, region[i]);
        ASSERT_EQ(toLoop, literal::CheckIncludeLoop(*literalA, *literalRegion[i], tol));
        ++answers[toLoop];
      }
    }
  }
  for (int rel = 0; rel < 6; ++rel) std::printf("%s%ld", rel == 0 ? "[ compared ] relations 0 to 5: " : ", ", answers[rel]);
  std::printf("\n");
  EXPECT_GT(answers[ZBR_LR_INSIDE], 0);
  EXPECT_GT(answers[ZBR_LR_OUTSIDE], 0);
}

// Points on vertices, on edges, near them and anywhere: the function, the locator of one ring, the locator of the region.
TEST_P(Differential, PointLocation) {
  const int cases = Scaled(400);
  long answers[6] = {};
  for (int seed = 0; seed < cases; ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    const LoopList region = Nest(pair.a);
    Random random(static_cast<std::uint64_t>(seed));
    const literal::Tol tol(DrawEps(random));
    const ZBR_TmpEps guard(tol.eps);
    const literal::Loops literalRegion = literal::FromZbr(region);
    const ZBR_LOOP_LOCATOR regionLocator(region);
    std::vector<ZBR_POS_PT_PT> pos;
    std::vector<ZBR_POS_PT_PT> expectedPos;
    for (std::size_t i = 0; i < region.size(); ++i) {
      const ZBR_LOOP_LOCATOR locator(*region[i]);
      for (int k = 0; k < 20; ++k) {
        const Ring& ring = region[i]->pt();
        const std::size_t at = random() % ring.size();
        const ZBR_PT other = ring[random() % ring.size()];
        ZBR_PT p = ring[at] + (other - ring[at]) * (Below(random, 5) * 0.25);
        if (Below(random, 3) == 0) p += ZBR_PT(Below(random, 3) - 1, Below(random, 3) - 1) * (tol.eps * (0.5 + Unit(random)));
        const ZBR_POLY_INSIDE expected = literal::IsInside(p, *literalRegion[i], expectedPos, tol);
        ASSERT_EQ(zbrIsInside(p, *region[i], pos), expected) << "seed " << seed << " point " << p.x() << ' ' << p.y();
        const auto where = [&] {
          return "seed " + std::to_string(seed) + " point " + ToText({MakeLoop({p})}) + " region " + ToText(region);
        };
        const ZBR_POLY_INSIDE inRegion = literal::IsInside(p, literalRegion, tol);
        ASSERT_TRUE(expected == ZBR_PI_UNKNOWN || locator.IsInside(p) == expected) << where();
        ASSERT_TRUE(inRegion == ZBR_PI_UNKNOWN || regionLocator.IsInside(p) == inRegion) << where();
        ASSERT_EQ(pos.size(), expectedPos.size());
        for (std::size_t v = 0; v < pos.size(); ++v) {
          ASSERT_EQ(pos[v].xPos, expectedPos[v].xPos);
          ASSERT_EQ(pos[v].yPos, expectedPos[v].yPos);
        }
        ++answers[expected];
      }
    }
  }
  for (const ZBR_POLY_INSIDE r : {ZBR_PI_ON_VERTEX, ZBR_PI_ON_EDGE, ZBR_PI_IN, ZBR_PI_OUT}) EXPECT_GT(answers[r], cases / 20);
}

// Result loops of all operations and the crossings. Where more than two crossings meet at one spot their ranking is free: there
// the areas are compared, if the construction knows them.
TEST_P(Differential, Boolean) {
  const int cases = Scaled(2000);
  long loops = 0;
  long crowded = 0;
  for (int seed = 0; seed < cases; ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    const LoopList A = Nest(pair.a);
    const LoopList B = Nest(pair.b);
    const BooleanResults got = RunAll(A, B);
    const auto expected = literal::BooleanLoops(literal::FromZbr(A), literal::FromZbr(B), {kOps.begin(), kOps.end()});
    if (pair.areas) {
      const std::array<double, 5> areas = AreasOf(got);
      for (std::size_t k = 0; k < areas.size(); ++k) {
        ASSERT_NEAR(areas[k], (*pair.areas)[k], 1e-7) << "operation " << kOps[k] << " seed " << seed << '\n' << Describe(A, B);
      }
    }
    if (expected.manyAtOneSpot) {
      ++crowded;
      continue;
    }
    ASSERT_TRUE(SameCrosses(got.crosses, expected.crosses)) << "seed " << seed << '\n' << Describe(A, B);
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      ASSERT_TRUE(SameLoops(got.loops[k], expected.loops[k])) << "operation " << kOps[k] << " seed " << seed << '\n'
                                                              << Describe(A, B);
      loops += static_cast<long>(got.loops[k].size());
    }
  }
  std::printf("[ left out ] %s: %ld with more than two crossings at one spot\n", GetParam().name, crowded);
  Report("result loops", cases - crowded, loops, cases);
}

INSTANTIATE_TEST_SUITE_P(Families, Differential, testing::ValuesIn(Families()),
                         [](const testing::TestParamInfo<Family>& family) { return std::string(family.param.name); });

}  // namespace
