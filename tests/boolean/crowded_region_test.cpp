// Edges by the hundred on one line or in one vertex: results by winding numbers, sources by a look at every edge.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

// Bars that stand on one line, each beside, on and in others.
OperandPair DrawBars(Random& random) {
  OperandPair pair;
  for (int k = 0; k < 90; ++k) {
    const double left = 0.5 * Below(random, 60), right = 60.0 + 0.5 * Below(random, 60), height = 1.0 + Below(random, 8);
    (k % 2 == 0 ? pair.a : pair.b).push_back({{left, 0}, {right, 0}, {right, height}, {left, height}});
  }
  return pair;
}

// Triangles around one vertex with gaps between them, and something that crosses them, near the vertex too.
OperandPair DrawFan(Random& random) {
  OperandPair pair;
  for (int k = 0; k < 160; ++k) {
    const double from = (k + 0.2 * Unit(random)) / 160, to = (k + 0.4 + 0.4 * Unit(random)) / 160, length = 5.0 + Unit(random);
    pair.a.push_back(
        {{0, 0}, ZBR_PT(std::cos(from), std::sin(from)) * length, ZBR_PT(std::cos(to), std::sin(to)) * (length + Unit(random))});
  }
  pair.b = {{{1, 0.1}, {6, 1}, {3, 5}}, {{-1, -1}, {1e-9, 1e-10}, {-1, 1}}, {{1e-5, -1}, {2e-5, 1}, {-1e-5, 1}}};
  return pair;
}

using Source = std::tuple<int, int, std::size_t>;  // operand, ring, edge

std::vector<Source> EdgesAlong(const OperandPair& pair, const ZBR_PT& p, const ZBR_PT& q) {
  const ZBR_TmpEps guard(1e-10);
  std::vector<Source> along;
  for (const int operand : {0, 1}) {
    ForEachEdge(operand == 0 ? pair.a : pair.b, [&](int ring, std::size_t edge, const ZBR_PT& r, const ZBR_PT& s) {
      if (zbrIsOnSeg(p, r, s, nullptr, nullptr) && zbrIsOnSeg(q, r, s, nullptr, nullptr)) along.emplace_back(operand, ring, edge);
    });
  }
  return along;
}

// Of each edge, sorted.
std::vector<std::vector<Source>> SourcesOf(const ZBR_REGION& region) {
  std::vector<std::vector<Source>> sources(region.point_count());
  for (std::size_t i = 0; i < sources.size(); ++i) {
    for (int k = region.source_offsets()[i]; k < region.source_offsets()[i + 1]; ++k) {
      const ZBR_EDGE_SOURCE& s = region.sources()[static_cast<std::size_t>(k)];
      sources[i].emplace_back(s.operand, s.ring, s.edge);
    }
    std::sort(sources[i].begin(), sources[i].end());
  }
  return sources;
}

// Where an edge of an operand only goes on, there is no point of the result, unless two parts of the border touch there.
void ExpectNoPassedPoints(const ZBR_REGION& region, const std::vector<std::vector<Source>>& sources) {
  std::map<std::pair<double, double>, int> times;
  for (const ZBR_PT& p : region.points()) ++times[{p.x(), p.y()}];
  for (std::size_t r = 0; r + 1 < region.ring_offsets().size(); ++r) {
    const auto begin = static_cast<std::size_t>(region.ring_offsets()[r]),
               end = static_cast<std::size_t>(region.ring_offsets()[r + 1]);
    for (std::size_t i = begin; i < end; ++i) {
      const std::vector<Source>&before = sources[i == begin ? end - 1 : i - 1], &after = sources[i];
      const bool goesOn = std::find_first_of(before.begin(), before.end(), after.begin(), after.end()) != before.end();
      const ZBR_PT p = region.points()[i];
      EXPECT_TRUE(!goesOn || times[std::pair(p.x(), p.y())] > 1) << p.x() << ' ' << p.y();
    }
  }
}

class CrowdedRegion : public testing::TestWithParam<Family> {};

TEST_P(CrowdedRegion, IsRightAndNamesAllSources) {
  ZBR_REGION_OPTIONS options;
  options.sources = true;
  options.fill_a = options.fill_b = ZBR_FILL_NON_ZERO;
  for (int seed = 0; seed < Scaled(3); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    OperandPair pair = GetParam().draw(random);
    const double angle = seed % 4 == 0 ? 0.0 : seed % 4 == 1 ? std::atan2(3, 4) : Unit(random);
    const auto turned = [&](const ZBR_PT& p) {
      return ZBR_PT(p.x() * std::cos(angle) - p.y() * std::sin(angle), p.x() * std::sin(angle) + p.y() * std::cos(angle));
    };
    for (std::vector<Ring>* rings : {&pair.a, &pair.b}) {
      for (Ring& ring : *rings) std::transform(ring.begin(), ring.end(), ring.begin(), turned);
    }
    const RegionJudge judge(pair.a, pair.b, kFillNonZero, kFillNonZero);
    for (const ZBR_BOOLEAN_OPE op : kOps) {
      const ZBR_REGION region = zbrCombineRegions(RegionOf(pair.a), RegionOf(pair.b), op, options);
      ASSERT_FALSE(judge.IsWrong(judge.Judge(op, RingsOf(region)), 1e-13 * judge.Extent()))
          << "seed " << seed << " operation " << op;
      const std::vector<std::vector<Source>> sources = SourcesOf(region);
      std::size_t point = 0;
      ForEachEdge(RingsOf(region), [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
        const std::vector<Source>& named = sources[point++];
        ASSERT_FALSE(named.empty());
        if (p.Distance(q) < 1e-6) return;
        ASSERT_EQ(named, EdgesAlong(pair, p, q)) << "seed " << seed << " operation " << op;
      });
      ExpectNoPassedPoints(region, sources);
      ASSERT_FALSE(HasFatalFailure());
    }
  }
}

// Cells cover what the rings do, and nothing twice.
TEST_P(CrowdedRegion, CellsCoverTheUnion) {
  Random random(7);
  const OperandPair pair = GetParam().draw(random);
  ZBR_REGION lines, cells;
  std::vector<ZBR_REGION> regions;
  for (const std::vector<Ring>* rings : {&pair.a, &pair.b}) {
    for (Ring ring : *rings) {
      regions.push_back(RegionOf({ring}));
      ring.push_back(ring[0]);
      lines.AddRing(ring);
    }
  }
  ASSERT_EQ(zbrTraceFaces(lines.view(), cells).code, ZBR_REGION_OK);
  const double all = RegionJudge(pair.a, pair.b, kFillNonZero, kFillNonZero).Judge(ZBR_BOOL_OR, {}).expected;
  const ZBR_REGION united = zbrUniteRegions(regions);
  EXPECT_NEAR(united.area(), all, 1e-9 * all);
  EXPECT_NEAR(zbrCombineRegions(united, cells, ZBR_BOOL_AND).area(), all, 1e-9 * all);
  EXPECT_NEAR(zbrCombineRegions(cells, cells, ZBR_BOOL_OR).area(), cells.area(), 1e-9 * all);
  EXPECT_GT(cells.polygon_count(), pair.a.size());
}

INSTANTIATE_TEST_SUITE_P(Families, CrowdedRegion, testing::Values(Family{"bars", DrawBars, false}, Family{"fan", DrawFan, false}),
                         testing::PrintToStringParamName());

}  // namespace
