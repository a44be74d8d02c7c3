// What holds for every pair of regions, without knowing the answer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

// How many points the rings have, smallest ring first. Rings so small that a change of scale may drop them do not count.
std::vector<std::size_t> RingSizes(const LoopList& loops, double leastArea) {
  std::vector<std::size_t> sizes;
  for (const Ring& ring : RingsOf(loops)) {
    if (std::abs(ZBR_POLYGON(ring).get_area()) > leastArea) sizes.push_back(ring.size());
  }
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

class BooleanProperties : public testing::TestWithParam<Family> {
 protected:
  template <typename Check>
  void ForEachPair(int count, Check check) {
    long crossings = 0;
    for (int seed = 0; seed < Scaled(count); ++seed) {
      Random random(static_cast<std::uint64_t>(seed));
      OperandPair pair = GetParam().draw(random);
      pair.a = Disguise(std::move(pair.a), random);
      pair.b = Disguise(std::move(pair.b), random);
      const LoopList A = Nest(pair.a);
      const LoopList B = Nest(pair.b);
      const BooleanResults results = RunAll(A, B);
      crossings += static_cast<long>(results.crosses.size());
      SCOPED_TRACE(testing::Message() << "seed " << seed);
      check(pair, A, B, results, random);
      if (HasFatalFailure()) return;
    }
    std::printf("[ checked  ] %s: %d pairs, %ld crossings\n", GetParam().name, Scaled(count), crossings);
    EXPECT_GT(crossings, count / 2);
  }
};

using Pair = const OperandPair&;
using List = const LoopList&;
using Results = const BooleanResults&;

TEST_P(BooleanProperties, AreasAddUpAndResultsAreNested) {
  ForEachPair(500, [](Pair, List A, List B, Results results, Random&) {
    ASSERT_TRUE(AreasAgree(NetArea(A), NetArea(B), AreasOf(results), 1e-8)) << Describe(A, B);
    for (const LoopList& loops : results.loops)
      ASSERT_TRUE(IsNested(loops, kBooleanEps)) << ToText(loops) << '\n' << Describe(A, B);
  });
}

// Point by point: a result holds what its operation says. Points on any boundary are passed over.
TEST_P(BooleanProperties, ResultsHoldTheRightPoints) {
  long tested = 0;
  ForEachPair(200, [&tested](Pair pair, List A, List B, Results results, Random& random) {
    const ZBR_LOOP_LOCATOR inA(A);
    const ZBR_LOOP_LOCATOR inB(B);
    std::vector<ZBR_LOOP_LOCATOR> inResult(results.loops.begin(), results.loops.end());
    Ring corners = {{-1, -1}};
    for (const Ring& ring : pair.a) corners.insert(corners.end(), ring.begin(), ring.end());
    for (const Ring& ring : pair.b) corners.insert(corners.end(), ring.begin(), ring.end());
    for (int i = 0; i < 100; ++i) {
      const ZBR_PT& p = corners[random() % corners.size()];
      const ZBR_PT& q = corners[random() % corners.size()];
      const ZBR_PT at(p.x() + (q.x() - p.x()) * Unit(random), p.y() + (q.y() - p.y()) * Unit(random));
      const ZBR_POLY_INSIDE a = inA.IsInside(at);
      const ZBR_POLY_INSIDE b = inB.IsInside(at);
      if (a < ZBR_PI_IN || b < ZBR_PI_IN) continue;
      const bool isA = a == ZBR_PI_IN;
      const bool isB = b == ZBR_PI_IN;
      const bool expected[5] = {isA && !isB, isB && !isA, isA || isB, isA && isB, isA != isB};
      for (std::size_t k = 0; k < 5; ++k) {
        ASSERT_EQ(inResult[k].IsInside(at), expected[k] ? ZBR_PI_IN : ZBR_PI_OUT)
            << kOps[k] << " at " << at.x() << ' ' << at.y() << '\n'
            << Describe(A, B);
      }
      ++tested;
    }
  });
  EXPECT_GT(tested, 2000);
}

TEST_P(BooleanProperties, OperandsExchanged) {
  ForEachPair(300, [](Pair, List A, List B, Results results, Random&) {
    std::array<double, 5> swapped = AreasOf(RunAll(B, A));
    std::swap(swapped[0], swapped[1]);
    const std::array<double, 5> areas = AreasOf(results);
    for (std::size_t k = 0; k < 5; ++k) ASSERT_NEAR(areas[k], swapped[k], 1e-8) << kOps[k] << '\n' << Describe(A, B);
  });
}

TEST_P(BooleanProperties, AnotherOrderStartAndOrientationOfTheRings) {
  ForEachPair(300, [](Pair pair, List A, List B, Results results, Random& random) {
    const std::array<double, 5> areas = AreasOf(results);
    const std::array<double, 5> other = AreasOf(RunAll(Nest(Disguise(pair.a, random)), Nest(Disguise(pair.b, random))));
    for (std::size_t k = 0; k < 5; ++k) ASSERT_NEAR(areas[k], other[k], 1e-8) << kOps[k] << '\n' << Describe(A, B);
  });
}

// Coordinates cut to multiples of 2^-20 stay exact under the move, so that the same edges meet in the same way.
TEST_P(BooleanProperties, MovedAndScaledByPowersOfTwo) {
  ForEachPair(300, [](Pair pair, List, List, Results, Random& random) {
    std::vector<Ring> a = pair.a;
    std::vector<Ring> b = pair.b;
    for (std::vector<Ring>* rings : {&a, &b}) {
      for (Ring& ring : *rings) {
        for (ZBR_PT& p : ring) p.Set(std::round(p.x() * 0x1p20) * 0x1p-20, std::round(p.y() * 0x1p20) * 0x1p-20);
      }
    }
    const double scale = std::ldexp(1.0, Below(random, 9) - 4);
    const ZBR_PT shift{std::ldexp(1.0, 4 + Below(random, 12)), -std::ldexp(1.0, 4 + Below(random, 12))};
    const BooleanResults here = RunAll(Nest(a), Nest(b));
    const BooleanResults there = RunAll(Nest(Moved(a, scale, shift)), Nest(Moved(b, scale, shift)));
    ASSERT_EQ(here.crosses.size(), there.crosses.size()) << Describe(a, b);
    for (std::size_t k = 0; k < 5; ++k) {
      ASSERT_EQ(RingSizes(there.loops[k], 1e-6 * scale * scale), RingSizes(here.loops[k], 1e-6)) << kOps[k] << '\n'
                                                                                                 << Describe(a, b);
      ASSERT_NEAR(NetArea(there.loops[k]), NetArea(here.loops[k]) * scale * scale, 1e-6) << kOps[k] << '\n' << Describe(a, b);
    }
  });
}

TEST_P(BooleanProperties, ARegionWithItself) {
  ForEachPair(300, [](Pair, List A, List B, Results results, Random&) {
    for (const LoopList& region : {A, B, results.loops[2], results.loops[3]}) {
      LoopList copy;
      ZBR_LOOP::DeepCopyLoops(copy, region);
      const double area = NetArea(region);
      const std::array<double, 5> expected = {0.0, 0.0, area, area, 0.0};
      const std::array<double, 5> areas = AreasOf(RunAll(region, copy));
      for (std::size_t k = 0; k < 5; ++k) ASSERT_NEAR(areas[k], expected[k], 1e-8) << kOps[k] << '\n' << ToText(region);
    }
  });
}

// (A - B) with (A and B) gives A back; (A or B) minus B gives A - B: results are operands like any other.
TEST_P(BooleanProperties, ResultsAreOperands) {
  ForEachPair(300, [](Pair, List A, List B, Results results, Random&) {
    LoopList whole;
    LoopList rest;
    zbrBooleanLoops(results.loops[0], results.loops[3], ZBR_BOOL_OR, whole);
    zbrBooleanLoops(results.loops[2], B, ZBR_BOOL_A_MINUS_B, rest);
    ASSERT_NEAR(NetArea(whole), NetArea(A), 1e-7) << Describe(A, B);
    ASSERT_NEAR(NetArea(rest), NetArea(results.loops[0]), 1e-7) << Describe(A, B);
  });
}

std::vector<Family> Regions() {
  std::vector<Family> regions;
  std::copy_if(Families().begin(), Families().end(), std::back_inserter(regions), [](const Family& f) { return f.regions; });
  return regions;
}
INSTANTIATE_TEST_SUITE_P(Families, BooleanProperties, testing::ValuesIn(Regions()),
                         [](const testing::TestParamInfo<Family>& family) { return std::string(family.param.name); });

}  // namespace
