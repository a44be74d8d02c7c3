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
      SCOPED_TRACE(testing::Message() << "operation " << kOps[k] << " seed " << seed << " gave " << ToText(results.loops[k]) << '\n'
                                      << Describe(A, B));
      ASSERT_TRUE(expected && got);
      const double slack = 1e-8 * (1.0 + geos.Area(expected));
      ASSERT_NEAR(NetArea(results.loops[k]), geos.Area(expected), slack);
      ASSERT_LE(geos.Difference(got, expected, slack), slack);
      ++compared;
      nothing += geos.Area(expected) == 0.0 ? 1 : 0;
    }
  }
  std::printf("[ compared ] %s: %ld regions, %ld of them empty\n", GetParam().name, compared, nothing);
  EXPECT_GT(compared - nothing, cases * 2);
}

// Up to `count` lattice polygons which touch each other, some of them.
std::vector<Ring> TouchingRings(const Geos& geos, std::size_t count, Random& random) {
  std::vector<Ring> rings;
  for (int tries = 0; tries < 200 && rings.size() < count; ++tries) {
    Ring ring;
    for (int n = 3 + Below(random, 3); n > 0; --n) ring.emplace_back(Below(random, 7), Below(random, 7));
    const auto fits = [&](const Ring& other) { return geos.MayTouch(ring, other); };
    if (geos.RingsAreApart(MakeLoops({ring})) && std::all_of(rings.begin(), rings.end(), fits)) rings.push_back(ring);
  }
  return rings;
}

// Turned, so that nothing is aligned or exact any more, and shaken within what is promised.
void Turn(std::vector<Ring>& rings, double noise, Random& random) {
  for (Ring& ring : rings) {
    for (ZBR_PT& p : ring) {
      p = ZBR_PT(0.6 * p.x() - 0.8 * p.y(), 0.8 * p.x() + 0.6 * p.y());
      p += ZBR_PT(2.0 * Unit(random) - 1.0, 2.0 * Unit(random) - 1.0) * noise;
    }
  }
}

// GEOS gets the lattice, where it is exact.
TEST(TouchingRings, TurnedAndShaken) {
  const Geos geos;
  int touching = 0;
  for (int seed = 0; seed < Scaled(400); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    std::vector<Ring> ringsA = TouchingRings(geos, 3, random);
    std::vector<Ring> ringsB = TouchingRings(geos, 1 + static_cast<std::size_t>(seed % 3), random);
    touching += geos.RingsAreApart(MakeLoops(ringsA)) ? 0 : 1;
    const Geos::Geometry a = geos.Region(Nest(ringsA));
    const Geos::Geometry b = geos.Region(Nest(ringsB));
    const double noise = seed % 2 == 0 ? 0.0 : 1e-10;
    Turn(ringsA, noise, random);
    Turn(ringsB, noise, random);
    const LoopList A = Nest(ringsA);
    const LoopList B = Nest(ringsB);
    const std::array<double, 5> areas = AreasOf(RunAll(A, B));
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      ASSERT_NEAR(areas[k], geos.Area(geos.Operate(kOps[k], a, b)), 1e-7) << "operation " << kOps[k] << " seed " << seed << '\n'
                                                                          << Describe(A, B);
    }
  }
  EXPECT_GT(touching, Scaled(400) / 4);
}

INSTANTIATE_TEST_SUITE_P(Families, AgainstGeos, testing::ValuesIn(RegionFamilies()), testing::PrintToStringParamName());

}  // namespace
