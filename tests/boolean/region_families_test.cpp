// Regions as flat arrays, drawn from families full of coincidences: where edges come from, coverage by count, order. That
// combinations are right and valid: classes/ and differential/.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

struct Drawn {
  explicit Drawn(const Family& family, int seed) : pair(DrawHard(family, static_cast<std::uint64_t>(seed))) {}
  OperandPair pair;
  ZBR_REGION a = RegionOf(pair.a), b = RegionOf(pair.b);
};

// The rings with their edges in parts, in a plane that is bent: what ran along something else still does.
std::vector<Ring> Bent(const std::vector<Ring>& rings) {
  constexpr int kParts = 6;
  std::vector<Ring> bent(rings.size());
  ForEachEdge(rings, [&](int ring, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
    for (int k = 0; k < kParts; ++k) {
      const ZBR_PT r = p + (q - p) * (static_cast<double>(k) / kParts);
      bent[static_cast<std::size_t>(ring)].emplace_back(r.x() + 0.3 * std::sin(1.7 * r.y()), r.y() + 0.3 * std::sin(1.3 * r.x()));
    }
  });
  return bent;
}

class RegionOfFamilies : public testing::TestWithParam<Family> {};

// Each edge lies on the pieces that it names; where it lies on edges of both operands it names both.
TEST_P(RegionOfFamilies, EdgesNameTheirSources) {
  const ZBR_TmpEps guard(1e-12);
  long shared = 0;
  for (int seed = 0; seed < Scaled(60); ++seed) {
    const Drawn drawn(GetParam(), seed);
    ZBR_REGION_OPTIONS options;
    options.sources = true;
    options.canonical = seed % 2 == 0;
    for (const ZBR_BOOLEAN_OPE op : kOps) {
      const ZBR_REGION region = zbrCombineRegions(drawn.a, drawn.b, op, options);
      double xmin, ymin, xmax, ymax;
      region.GetBounds(xmin, ymin, xmax, ymax);
      const double slack = 1e-9 * (1.0 + std::abs(xmax) + std::abs(ymin));
      std::size_t point = 0;
      ASSERT_EQ(region.source_offsets().size(), region.point_count() + 1);
      ForEachEdge(RingsOf(region), [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
        const int from = region.source_offsets()[point];
        const int to = region.source_offsets()[++point];
        bool named[2] = {};
        for (int k = from; k < to; ++k) {
          const ZBR_EDGE_SOURCE& s = region.sources()[static_cast<std::size_t>(k)];
          const std::vector<Ring>& rings = s.operand == 0 ? drawn.pair.a : drawn.pair.b;
          named[s.operand] = true;
          ASSERT_LE(DistanceFromSource(rings, s, p, q), slack) << "seed " << seed << " operation " << op;
        }
        ASSERT_LT(from, to);
        const ZBR_PT middle = (p + q) * 0.5;
        for (int operand = 0; operand < 2; ++operand) {
          ForEachEdge(operand == 0 ? drawn.pair.a : drawn.pair.b, [&](int, std::size_t, const ZBR_PT& r, const ZBR_PT& s) {
            const bool runsAlong = zbrIsOnSeg(p, r, s, nullptr, nullptr) && zbrIsOnSeg(q, r, s, nullptr, nullptr);
            ASSERT_TRUE(named[operand] || !runsAlong) << "seed " << seed << " near " << middle.x() << ' ' << middle.y();
          });
        }
        shared += named[0] && named[1] ? 1 : 0;
      });
      ASSERT_FALSE(HasFatalFailure());
    }
  }
  EXPECT_TRUE(shared > Scaled(60) || GetParam().name == std::string("stars"));
}

// Long rings are arranged in chains of edges; those that coincide, meet or cross must be told from the others.
TEST_P(RegionOfFamilies, LongRingsAreArrangedInChains) {
  constexpr double kTolerance = 1e-12;  // of the extent
  for (int seed = 0; seed < Scaled(20); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const OperandPair pair = GetParam().draw(random);
    const std::vector<Ring> a = Bent(pair.a), b = Bent(pair.b);
    const RegionJudge judge(a, b);
    ZBR_REGION_OPTIONS options;
    options.sources = true;
    for (const ZBR_BOOLEAN_OPE op : kOps) {
      const ZBR_REGION region = zbrCombineRegions(RegionOf(a), RegionOf(b), op, options);
      const Verdict verdict = judge.Judge(op, RingsOf(region));
      ASSERT_FALSE(judge.IsWrong(verdict, kTolerance * judge.Extent())) << "seed " << seed << " operation " << op;
      std::size_t point = 0;
      ForEachEdge(RingsOf(region), [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
        const auto first = static_cast<std::size_t>(region.source_offsets()[point++]);
        const ZBR_EDGE_SOURCE& s = region.sources().at(first);
        const std::vector<Ring>& rings = s.operand == 0 ? a : b;
        ASSERT_LE(DistanceFromSource(rings, s, p, q), 1e-9 * judge.Extent()) << "seed " << seed;
      });
    }
  }
}

// What k of three regions cover, by winding numbers: as sums of what pairs of them have in common.
TEST_P(RegionOfFamilies, CoverCounts) {
  for (int seed = 0; seed < Scaled(60); ++seed) {
    const Drawn one(GetParam(), seed);
    const ZBR_REGION third = RegionOf(Moved(one.pair.b, 1.0, one.pair.b.empty() ? ZBR_PT() : one.pair.b[0][1] - one.pair.b[0][0]));
    const ZBR_REGION_VIEW views[] = {one.a.view(), one.b.view(), third.view()};
    const auto judged = [&](const ZBR_REGION& x, const ZBR_REGION& y, ZBR_BOOLEAN_OPE op) {
      return RegionJudge(RingsOf(x), RingsOf(y)).Judge(op, {}).expected;
    };
    const double single = judged(one.a, {}, ZBR_BOOL_OR) + judged(one.b, {}, ZBR_BOOL_OR) + judged(third, {}, ZBR_BOOL_OR);
    const ZBR_REGION both = zbrCombineRegions(one.a, one.b, ZBR_BOOL_AND);
    const double all = judged(both, third, ZBR_BOOL_AND);
    const double pairs =
        judged(one.a, one.b, ZBR_BOOL_AND) + judged(one.a, third, ZBR_BOOL_AND) + judged(one.b, third, ZBR_BOOL_AND);
    const double expected[] = {single - pairs + all, pairs - 2.0 * all, all};
    ZBR_REGION covered[3];
    for (int times = 1; times <= 3; ++times) {
      ASSERT_EQ(zbrCoverRegions(views, 3, times, covered[times - 1]).code, ZBR_REGION_OK);
      ASSERT_NEAR(covered[times - 1].area(), expected[times - 1], 1e-6 * (1.0 + single)) << "seed " << seed << " times " << times;
    }
    ASSERT_EQ(zbrUniteRegions({one.a, one.b, third}), covered[0]);
  }
}

// Neither calls at once nor the order of rings and their starts change a bit of a canonical result.
TEST_P(RegionOfFamilies, BatchesAndOrderChangeNothing) {
  ZBR_REGION_OPTIONS options;
  options.canonical = true;
  std::vector<ZBR_REGION> a, b;
  std::vector<ZBR_REGION_VIEW> viewsA, viewsB;
  for (int seed = 0; seed < Scaled(60); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const Drawn drawn(GetParam(), seed);
    a.push_back(drawn.a);
    b.push_back(drawn.b);
    const ZBR_REGION shuffled = RegionOf(Disguise(drawn.pair.a, random));
    options.sources = true;  // always arranged
    const ZBR_REGION result = zbrCombineRegions(drawn.a, drawn.b, ZBR_BOOL_OR, options);
    const ZBR_REGION again = zbrCombineRegions(shuffled, drawn.b, ZBR_BOOL_OR, options);
    ASSERT_TRUE(again.ring_count() == result.ring_count() && again.point_count() == result.point_count()) << "seed " << seed;
    for (std::size_t i = 0; i < result.point_count(); ++i) {
      ASSERT_LE(again.points()[i].Distance(result.points()[i]), 1e-9 * (1.0 + result.points()[i].Length())) << "seed " << seed;
    }
    options.sources = false;
  }
  for (const ZBR_REGION& region : a) viewsA.push_back(region.view());
  for (const ZBR_REGION& region : b) viewsB.push_back(region.view());
  std::vector<ZBR_REGION> results(a.size());
  const bool exact = zbrCombineRegionPairs(viewsA.data(), viewsB.data(), a.size(), ZBR_BOOL_AND, results.data(), options).exact;
  bool anyExact = false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    ZBR_REGION alone;
    const ZBR_BOOLEAN_OPE op = ZBR_BOOL_AND;
    anyExact |= zbrCombineRegions(viewsA[i], viewsB[i], &op, &alone, 1, options).exact;
    ASSERT_EQ(results[i], alone) << i;
  }
  EXPECT_EQ(exact, anyExact);
}

INSTANTIATE_TEST_SUITE_P(Families, RegionOfFamilies, testing::ValuesIn(RegionFamilies()), testing::PrintToStringParamName());

}  // namespace
