// What holds for every pair of regions, without knowing the answer or when the construction knows it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "boolean/check.h"
#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

OperandPair DrawPlain(const Family& family, std::uint64_t seed) {
  Random random(seed);
  return family.draw(random);
}

class BooleanProperties : public testing::TestWithParam<Family> {
 protected:
  template <typename Check>
  void ForEachPair(int count, OperandPair (*draw)(const Family&, std::uint64_t seed), Check check) {
    long crossings = 0;
    for (int seed = 0; seed < Scaled(count); ++seed) {
      const OperandPair pair = draw(GetParam(), static_cast<std::uint64_t>(seed));
      const LoopList A = Nest(pair.a);
      const LoopList B = Nest(pair.b);
      const BooleanResults results = RunAll(A, B);
      crossings += static_cast<long>(results.crosses.size());
      SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << Describe(A, B));
      check(pair, A, B, results);
      if (HasFatalFailure()) return;
    }
    std::printf("[ checked  ] %s: %d pairs, %ld crossings\n", GetParam().name, Scaled(count), crossings);
    EXPECT_GT(crossings, Scaled(count) / 2);
  }
};

using Pair = const OperandPair&;
using List = const LoopList&;
using Results = const BooleanResults&;

TEST_P(BooleanProperties, AreasAddUpAndResultsAreNested) {
  ForEachPair(1500, DrawHard, [](Pair pair, List A, List B, Results results) {
    const std::array<double, 5> areas = AreasOf(results);
    ASSERT_TRUE(AreasAgree(NetArea(A), NetArea(B), areas, 1e-6));
    for (std::size_t k = 0; k < areas.size(); ++k) {
      ASSERT_TRUE(IsNested(results.loops[k], kBooleanEps)) << ToText(results.loops[k]);
      ASSERT_NEAR(areas[k], pair.areas ? (*pair.areas)[k] : areas[k], 1e-7) << "operation " << kOps[k];
    }
  });
}

// A region with itself; and results are operands like any other: (A - B) with (A and B) gives A back, (A or B) minus B gives A - B.
TEST_P(BooleanProperties, ResultsAreOperands) {
  ForEachPair(300, DrawPlain, [](Pair, List A, List B, Results results) {
    for (const LoopList& region : {A, B, results.loops[2], results.loops[3]}) {
      LoopList copy;
      ZBR_LOOP::DeepCopyLoops(copy, region);
      const double area = NetArea(region);
      const std::array<double, 5> expected = {0.0, 0.0, area, area, 0.0};
      const std::array<double, 5> areas = AreasOf(RunAll(region, copy));
      for (std::size_t k = 0; k < 5; ++k) ASSERT_NEAR(areas[k], expected[k], 1e-8) << kOps[k] << '\n' << ToText(region);
    }
    LoopList whole;
    LoopList rest;
    zbrBooleanLoops(results.loops[0], results.loops[3], ZBR_BOOL_OR, whole);
    zbrBooleanLoops(results.loops[2], B, ZBR_BOOL_A_MINUS_B, rest);
    ASSERT_NEAR(NetArea(whole), NetArea(A), 1e-7);
    ASSERT_NEAR(NetArea(rest), NetArea(results.loops[0]), 1e-7);
  });
}

// In general position the boundaries enter and leave each other in turn, on both sides.
TEST(BooleanCrossings, TakeTurns) {
  for (int seed = 0; seed < Scaled(300); ++seed) {
    const OperandPair pair = DrawPlain(FamilyNamed("stars"), static_cast<std::uint64_t>(seed));
    const LoopList A = Nest(pair.a);
    const LoopList B = Nest(pair.b);
    std::vector<ZBR_CROSS> crosses;
    std::vector<int> sorted[2];
    zbrGetLoopsCross(A, B, crosses);
    zbrOptimizeCross(A, B, crosses, sorted, true);
    ASSERT_TRUE(Holds(zbr::SortedFault(crosses, sorted, 1e-5))) << "seed " << seed;
    for (int side = 0; side < 2; ++side) {
      ASSERT_TRUE(Holds(zbr::AlternationFault(crosses, side, sorted[side]))) << "seed " << seed << '\n' << Describe(A, B);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Families, BooleanProperties, testing::ValuesIn(RegionFamilies()), testing::PrintToStringParamName());

// The battlements of A stand on a long edge of B, many short edges along it; the two are turned, so that none lies on it exactly.
TEST(ShortEdgesAlongALongOne, AreOnIt) {
  for (int seed = 0; seed < Scaled(500); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const double length = std::pow(10.0, 1.0 + 4.0 * Unit(random));
    const double t = Unit(random);
    const auto turned = [&](double x, double y) {
      return ZBR_PT((1.0 - t * t) * x - 2.0 * t * y, 2.0 * t * x + (1.0 - t * t) * y) * (length / (1.0 + t * t));
    };
    Ring a;
    const int teeth = 2 + Below(random, 5);
    for (int k = 0; k < teeth; ++k) {
      const double from = (k + 0.5 * Unit(random)) / teeth;
      const double to = from + 0.4 * std::pow(10.0, -3.0 * Unit(random)) / teeth;
      if (k > 0) a.push_back(turned(from, 0.1));
      a.push_back(turned(from, 0.0));
      a.push_back(turned(to, 0.0));
      if (k + 1 < teeth) a.push_back(turned(to, 0.1));
    }
    a.push_back(turned(1.0, 0.2));
    a.push_back(turned(0.0, 0.2));
    const LoopList A = Nest({a});
    const LoopList B = Nest({{turned(-0.1, 0.0), turned(1.1, 0.0), turned(1.1, 0.3), turned(-0.1, 0.3)}});
    const std::array<double, 5> areas = AreasOf(RunAll(A, B));
    const double slack = 1e-9 * length * length;
    ASSERT_NEAR(areas[0], 0.0, slack) << "seed " << seed << '\n' << Describe(A, B);
    ASSERT_TRUE(AreasAgree(NetArea(A), NetArea(B), areas, slack)) << "seed " << seed << '\n' << Describe(A, B);
  }
}

}  // namespace
