// Combinations of regions that need no arrangement, or one of parts only: walks along crossings, sweeps of right-angled rings,
// unions of many, parts that keep apart.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

// Parts that keep apart, some of them with faults of different kinds: what one part is, must not depend on the others.
TEST(Region, PartsAreCombinedApart) {
  std::mt19937_64 random(7);
  for (int seed = 0; seed < Scaled(20); ++seed) {
    std::vector<Ring> a, b;
    for (int k = 0; k < 40; ++k) {
      const double x = 10.0 * (k % 7), y = 10.0 * (k / 7);
      a.push_back(Square(x, y, 5));
      b.push_back(Square(x + 3.0, y + 1.5 * (k % 3), 4));
      if (random() % 40 != 0) continue;
      const double twist = random() % 2 == 0 ? 5.0 : 1e-10;
      a.push_back({{x, y + 5}, {x + 4, y + 5 + twist}, {x + 4, y + 5}, {x, y + 5 + twist}});
    }
    const RegionJudge judge(a, b);
    for (const ZBR_BOOLEAN_OPE op : kOps) {
      const ZBR_REGION region = zbrCombineRegions(RegionOf(a), RegionOf(b), op);
      EXPECT_FALSE(judge.IsWrong(judge.Judge(op, RingsOf(region)), 1e-9)) << "seed " << seed << " operation " << op;
      LoopList loops;
      zbrBooleanLoops(MakeLoops(a), MakeLoops(b), op, loops);
      EXPECT_FALSE(judge.IsWrong(judge.Judge(op, RingsOf(loops)), 1e-8)) << "seed " << seed << " operation " << op;
    }
  }
}

// Many regions with holes, in general position but for some seeds, that are walked but for the groups with a contact. What they
// cover is judged by winding numbers; the edges lie on those that they name.
TEST(Region, UnionOfMany) {
  int walked = 0;
  for (int seed = 0; seed < Scaled(30); ++seed) {
    std::mt19937_64 random(static_cast<std::uint64_t>(seed));
    std::uniform_real_distribution<double> place(0.0, 40.0), size(0.5, 5.0);
    std::vector<ZBR_REGION> regions;
    std::vector<Ring> all;
    for (int k = 0; k < (seed % 3 == 0 ? 450 : 60); ++k) {
      const ZBR_PT at = seed % 2 == 0 || k % 20 != 19 ? ZBR_PT(place(random), place(random)) : all.back()[0];
      const double radius = size(random);
      ZBR_REGION& region = regions.emplace_back();
      for (const double share : {1.0, k % 3 == 0 ? 0.6 : 0.0}) {
        Ring& ring = all.emplace_back();
        for (int i = 0; i < 12; ++i) {
          const double angle = (share == 1.0 ? 1 : -1) * (i + radius) * std::acos(-1.0) / 6.0;
          ring.push_back(at + ZBR_PT(std::cos(angle), std::sin(angle)) * (share * radius * (i % 2 == 0 ? 1.0 : 0.9)));
        }
        if (share == 0.0) {
          all.pop_back();
        } else {
          region.AddRing(k % 2 == 0 ? ring : Ring(ring.rbegin(), ring.rend()), share == 1.0);  // which way they run says nothing
        }
      }
    }
    ZBR_REGION_OPTIONS options;
    options.sources = true;
    std::vector<ZBR_REGION_VIEW> views;
    for (const ZBR_REGION& region : regions) views.push_back(region.view());
    ZBR_REGION united;
    walked += zbrCoverRegions(views.data(), views.size(), 1, united, options).exact ? 0 : 1;
    const RegionJudge judge(all, {}, kFillPositive);
    ASSERT_FALSE(judge.IsWrong(judge.Judge(ZBR_BOOL_OR, RingsOf(united)), 1e-9)) << "seed " << seed;
    ASSERT_EQ(zbrUniteRegions(regions), united);
    std::size_t point = 0;
    ForEachEdge(RingsOf(united), [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
      const ZBR_EDGE_SOURCE& s = united.sources().at(static_cast<std::size_t>(united.source_offsets()[point++]));
      const std::vector<Ring> rings = RingsOf(regions.at(static_cast<std::size_t>(s.operand)));
      ASSERT_LE(DistanceFromSource(rings, s, p, q), 1e-9) << "seed " << seed;
    });
  }
  EXPECT_GT(walked, Scaled(30) / 4);
}

TEST(Region, UnionsAreValidWherePointsRepeat) {
  for (const Ring& ring : {Ring{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}, Ring{{0, 0}, {0, 0}, {1, 0}, {1, 1}, {1, 1}, {0, 1}},
                           Ring{{0, 0}, {1, 0}, {1 + 1e-14, 1e-14}, {1, 0}, {1, 1}, {0, 1}}}) {
    EXPECT_EQ(zbrUniteRegions({RegionOf({ring}), RegionOf({Square(5, 5, 1)})}).point_count(), 8U);
  }
}

// Rings of three to forty corners around each other in cells, all of it perhaps within one large ring, in any order and
// orientation; some points are repeated.
std::vector<Ring> NestedCells(Random& random) {
  std::vector<Ring> rings;
  const auto add = [&](const ZBR_PT& centre, double radius, int corners) {
    const double start = Unit(random);
    Ring& ring = rings.emplace_back();
    for (int k = 0; k < corners; ++k) {
      const double angle = 2.0 * std::acos(-1.0) * (start + k) / corners;
      ring.push_back(centre + ZBR_PT(std::cos(angle), std::sin(angle)) * radius);
      if (Below(random, 50) == 0) ring.push_back(ring.back());
    }
  };
  const ZBR_PT shift(10.0 * Unit(random), 10.0 * Unit(random));
  const int corners[] = {3, 4, 8, 9, 40};
  const int cells = 1 + Below(random, 5);
  for (int cell = 0; cell < cells * cells; ++cell) {
    const ZBR_PT centre = shift + ZBR_PT(cell % cells, std::floor(cell / cells)) * 10.0;
    double radius = 4.8;
    for (int depth = Below(random, 5); depth > 0; --depth, radius *= 0.45) add(centre, radius, corners[Below(random, 5)]);
  }
  if (Below(random, 2) == 0) add(shift + ZBR_PT(5.0, 5.0) * (cells - 1), 10.0 * cells, corners[Below(random, 5)] * 10);
  if (rings.empty()) add(shift, 1.0, 4);
  return Disguise(rings, random);
}

// In general position walking along the crossings gives the polygons that the arrangement gives.
TEST(Region, WalksNestedRingsAsTheyAreArranged) {
  ZBR_REGION_OPTIONS walked, arranged;
  walked.canonical = arranged.canonical = arranged.sources = true;
  long walks = 0;
  for (int seed = 0; seed < Scaled(300); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const ZBR_REGION a = RegionOf(NestedCells(random));
    const ZBR_REGION b = RegionOf(NestedCells(random));
    ZBR_REGION fast[5], sure[5];
    walks += zbrCombineRegions(a.view(), b.view(), kOps.data(), fast, 5, walked).exact ? 0 : 1;
    zbrCombineRegions(a.view(), b.view(), kOps.data(), sure, 5, arranged);
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      ASSERT_EQ(fast[k].ring_offsets(), sure[k].ring_offsets()) << "seed " << seed << " operation " << kOps[k];
      ASSERT_EQ(fast[k].polygon_offsets(), sure[k].polygon_offsets()) << "seed " << seed << " operation " << kOps[k];
      for (std::size_t i = 0; i < sure[k].point_count(); ++i) {
        ASSERT_LE(fast[k].points()[i].Distance(sure[k].points()[i]), 1e-10) << "seed " << seed << " operation " << kOps[k];
      }
    }
  }
  EXPECT_GT(walks, Scaled(300) * 9 / 10);
}

// A closed walk over a small lattice, turning at every point; it crosses, touches and covers itself.
Ring RightAngledWalk(Random& random) {
  const int turns = 2 + Below(random, 7);
  std::vector<int> xs, ys;
  for (std::vector<int>* values : {&xs, &ys}) {
    while (static_cast<int>(values->size()) < turns) {
      const int value = Below(random, 7);
      const bool isLast = static_cast<int>(values->size()) == turns - 1;
      if (values->empty() || (value != values->back() && !(isLast && value == values->front()))) values->push_back(value);
    }
  }
  Ring ring;
  for (std::size_t i = 0; i < xs.size(); ++i) {
    ring.emplace_back(xs[i], ys[i]);
    ring.emplace_back(xs[(i + 1) % xs.size()], ys[i]);
  }
  if (Below(random, 2) == 0) std::reverse(ring.begin(), ring.end());
  return ring;
}

// Without points between two others of the same x or y.
ZBR_REGION WithoutStraightPoints(const ZBR_REGION& region) {
  ZBR_REGION corners;
  for (std::size_t p = 0; p < region.polygon_count(); ++p) {
    for (auto r = static_cast<std::size_t>(region.polygon_offsets()[p]);
         r < static_cast<std::size_t>(region.polygon_offsets()[p + 1]); ++r) {
      const Ring ring = RingsOf(region)[r];
      Ring kept;
      for (std::size_t i = 0; i < ring.size(); ++i) {
        const ZBR_PT& prev = ring[(i + ring.size() - 1) % ring.size()];
        const ZBR_PT& next = ring[(i + 1) % ring.size()];
        if ((prev.x() == ring[i].x()) != (next.x() == ring[i].x())) kept.push_back(ring[i]);
      }
      corners.AddRing(kept, r == static_cast<std::size_t>(region.polygon_offsets()[p]));
    }
  }
  return corners;
}

// Rings parallel to the axes need no arrangement, whatever they do to each other; the polygons are those that it gives.
TEST(Region, SweepsRightAngledRingsAsTheyAreArranged) {
  ZBR_REGION_OPTIONS swept, arranged;
  swept.canonical = arranged.canonical = arranged.sources = true;
  const double steps[] = {1.0, -0.1, 0x1p-1070, 0x1p230};  // crossings have the coordinates of edges in both
  for (int seed = 0; seed < Scaled(600); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const double step = steps[seed % 4];
    const ZBR_PT shift(Below(random, 9) - 4, Below(random, 9) - 4);
    ZBR_REGION operands[2];
    for (ZBR_REGION& operand : operands) {
      for (int k = 1 + Below(random, 4); k > 0; --k) {
        Ring ring = RightAngledWalk(random);
        for (ZBR_PT& p : ring) p = (p + shift) * step;
        operand.AddRing(ring);
      }
    }
    ZBR_REGION fast[5], sure[5];
    ASSERT_FALSE(zbrCombineRegions(operands[0].view(), operands[1].view(), kOps.data(), fast, 5, swept).exact) << "seed " << seed;
    zbrCombineRegions(operands[0].view(), operands[1].view(), kOps.data(), sure, 5, arranged);
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      ASSERT_EQ(fast[k], WithoutStraightPoints(sure[k])) << "seed " << seed << " operation " << kOps[k];
      for (const ZBR_EDGE_SOURCE& s : sure[k].sources()) ASSERT_GT(std::fabs(s.t1 - s.t0), 1e-3) << "seed " << seed;  // not NaN
    }
  }
}

// A drawing of twenty parts and its revision, whose symmetric difference touches itself while the others do not.
TEST(Region, OperationsAtOnceAreThoseOneByOne) {
  for (int seed = 0; seed < Scaled(10); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    ZBR_REGION a, b;
    for (int part = 0; part < 20; ++part) {
      Ring ring, revised;
      const int rare = 5 + Below(random, 100);
      for (int k = 0; k < 60; ++k) {
        const double angle = k * 0.1047, radius = 9.0 + Unit(random);
        ring.emplace_back(30.0 * (part % 5) + radius * std::cos(angle), 30.0 * (part / 5) + radius * std::sin(angle));
        const double shift = Below(random, rare) == 0 ? 0.1 : 0.0;
        revised.push_back(ring.back() + ZBR_PT(shift, shift * Unit(random)));
      }
      a.AddRing(ring);
      b.AddRing(revised);
    }
    std::array<ZBR_REGION, kOps.size()> results;
    zbrCombineRegions(a.view(), b.view(), kOps.data(), results.data(), static_cast<int>(kOps.size()));
    for (std::size_t k = 0; k < kOps.size(); ++k) EXPECT_EQ(results[k], zbrCombineRegions(a, b, kOps[k])) << "seed " << seed;
  }
}

TEST(Region, SweepOfRightAngledOperandsStopsToo) {
  ZBR_REGION bars, beams;
  for (int i = 0; i < 40; ++i) {
    const double low = 2 * i + 0.5, high = low + 1;
    bars.AddRing({{low, 0}, {high, 0}, {high, 80}, {low, 80}});
    beams.AddRing({{0, low}, {80, low}, {80, high}, {0, high}});
  }
  beams.AddRing({{100, 0}, {101, 0}, {101, 1}, {100, 1}});
  bars.AddRing({{101, 0}, {102, 0}, {102, 1}, {101, 1}});  // along an edge, which is not for the walk
  ZBR_REGION_OPTIONS options;
  int left = 4;
  options.progress_data = &left;
  options.progress = [](double share, void* data) { return share < 1.0 && --*static_cast<int*>(data) > 0; };
  const ZBR_BOOLEAN_OPE op = ZBR_BOOL_XOR;
  ZBR_REGION result = bars;
  EXPECT_EQ(zbrCombineRegions(bars.view(), beams.view(), &op, &result, 1, options).code, ZBR_REGION_STOPPED);
  EXPECT_TRUE(result.empty() && left == 0);
}

// Both operands are narrow, cross in the open, and leave a triangle that is narrower than rounding explains.
TEST(Region, WalkedResultsHoldNoRingWithoutArea) {
  const std::vector<Ring> a = {{{103255.41505533917, -42684.058470622454},
                                {103269.77398536369, -42684.058469994343},
                                {102853.92029443578, -42684.058470132746},
                                {103083.95539652152, -42684.058470249191}}};
  const std::vector<Ring> b = {{{103171.63776061544, -42684.058470474098},
                                {103342.96605608548, -42684.058470372482},
                                {103220.99000297504, -42684.05847055334},
                                {102855.75220682631, -42684.058470521479},
                                {103169.79656536042, -42684.058470018776},
                                {102947.37885232353, -42684.05847037895}}};
  for (const ZBR_BOOLEAN_OPE op : kOps) {
    const ZBR_REGION result = zbrCombineRegions(RegionOf(a), RegionOf(b), op);
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(result.view(), faults);
    EXPECT_TRUE(faults.empty()) << op;
    EXPECT_FALSE(result.empty()) << op;
  }
}

}  // namespace
