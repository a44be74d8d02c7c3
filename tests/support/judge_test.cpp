// The judge against areas known by construction, and against results made wrong on purpose.
#include <gtest/gtest.h>

#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

TEST(RegionJudge, KnowsTheAreasOfCells) {
  for (int seed = 0; seed < Scaled(50); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const OperandPair pair = FamilyNamed("cells").draw(random);
    const RegionJudge judge(pair.a, pair.b);
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      EXPECT_NEAR(judge.Judge(kOps[k], {}).expected, (*pair.areas)[k], 1e-9) << "seed " << seed;
      EXPECT_NEAR(judge.Judge(kOps[k], {}).area, (*pair.areas)[k], 1e-9) << "seed " << seed;
    }
  }
}

TEST(RegionJudge, FourRules) {
  const std::vector<Ring> rings = {Square(0, 0, 4), Square(1, 1, 2), {{2, 2}, {2, 9}, {9, 9}, {9, 2}}};
  // By winding number: -1 on 45, 0 on 3, 1 on 9 + 1, 2 on 3.
  const double areas[] = {55.0, 58.0, 13.0, 45.0};
  for (const JudgeFill fill : {kFillEvenOdd, kFillNonZero, kFillPositive, kFillNegative}) {
    EXPECT_DOUBLE_EQ(RegionJudge(rings, {}, fill).Judge(ZBR_BOOL_OR, {}).expected, areas[fill]) << fill;
  }
}

// A corner of the union moved by 1e-8 is rounding, by 1e-3 a fault; so are rings that are missing, doubled or the wrong way round.
TEST(RegionJudge, TellsFaultsFromRounding) {
  for (const int points : {1, 500}) {  // per side: exact slabs, equal slabs
    Ring a;
    for (int i = 0; i < 4 * points; ++i) {
      const ZBR_PT corners[] = {{0, 0}, {100, 0}, {100, 100}, {0, 100}};
      const int side = i / points;
      a.push_back(corners[side] + (corners[(side + 1) % 4] - corners[side]) * (1.0 * (i % points) / points));
    }
    const std::vector<Ring> b = {Square(200, 0, 100)};
    const RegionJudge judge({a}, b);
    const auto isWrong = [&](const std::vector<Ring>& result) { return judge.IsWrong(judge.Judge(ZBR_BOOL_OR, result), 1e-7); };
    const auto moved = [&](double by) {
      Ring ring = a;
      ring[static_cast<std::size_t>(points)] += ZBR_PT(by, by);
      return ring;
    };
    EXPECT_FALSE(isWrong({a, b[0]}));
    EXPECT_FALSE(isWrong({moved(1e-8), b[0]}));
    EXPECT_TRUE(isWrong({moved(1e-2), b[0]}));
    EXPECT_TRUE(isWrong({a}));
    EXPECT_TRUE(isWrong({a, b[0], b[0]}));
    EXPECT_TRUE(isWrong({a, Ring(b[0].rbegin(), b[0].rend())}));
  }
}

}  // namespace
