// Regions against GEOS: equal in area, and their symmetric difference is nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "geos/geos_region.h"
#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

class AgainstGeos : public testing::TestWithParam<Family> {};

TEST_P(AgainstGeos, SameRegions) {
  const Geos geos;
  const int cases = Scaled(150);
  long compared = 0;
  long nothing = 0;
  for (int seed = 0; seed < cases; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    OperandPair pair = GetParam().draw(random);
    if (seed % 2 == 0) Roughen(pair.a, random);
    if (seed % 2 == 0) Roughen(pair.b, random);
    const LoopList A = Nest(Disguise(pair.a, random));
    const LoopList B = Nest(Disguise(pair.b, random));
    const Geos::Geometry a = geos.Region(A);
    const Geos::Geometry b = geos.Region(B);
    ASSERT_TRUE(a && b) << Describe(A, B);
    const BooleanResults results = RunAll(A, B);
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      const Geos::Geometry expected = geos.Operate(kOps[k], a, b);
      const Geos::Geometry got = geos.Region(results.loops[k]);
      ASSERT_TRUE(expected && got) << ToText(results.loops[k]) << '\n' << Describe(A, B);
      const double slack = 1e-8 * (1.0 + geos.Area(expected));
      ASSERT_NEAR(NetArea(results.loops[k]), geos.Area(expected), slack)
          << "operation " << kOps[k] << " seed " << seed << " gave " << ToText(results.loops[k]) << '\n'
          << Describe(A, B);
      ASSERT_LE(geos.Difference(got, expected, slack), slack)
          << "operation " << kOps[k] << " seed " << seed << " gave " << ToText(results.loops[k]) << '\n'
          << Describe(A, B);
      ++compared;
      nothing += geos.Area(expected) == 0.0 ? 1 : 0;
    }
  }
  std::printf("[ compared ] %s: %ld regions, %ld of them empty\n", GetParam().name, compared, nothing);
  EXPECT_GT(compared - nothing, cases * 2);
}

std::vector<Family> Regions() {
  std::vector<Family> regions;
  std::copy_if(Families().begin(), Families().end(), std::back_inserter(regions), [](const Family& f) { return f.regions; });
  return regions;
}
INSTANTIATE_TEST_SUITE_P(Families, AgainstGeos, testing::ValuesIn(Regions()),
                         [](const testing::TestParamInfo<Family>& family) { return std::string(family.param.name); });

}  // namespace
