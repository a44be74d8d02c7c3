// Regions as flat arrays: where edges come from, coverage by count, order, nesting, what is refused. That combinations are right
// and valid: classes/ and differential/.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "arrangement/int128.h"
#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

struct Drawn {
  explicit Drawn(const Family& family, int seed) : pair(DrawHard(family, static_cast<std::uint64_t>(seed))) {}
  OperandPair pair;
  ZBR_REGION a = RegionOf(pair.a), b = RegionOf(pair.b);
};

ZBR_PT At(const std::vector<Ring>& rings, const ZBR_EDGE_SOURCE& s, double t) {
  const Ring& ring = rings.at(static_cast<std::size_t>(s.ring));
  const auto edge = static_cast<std::size_t>(s.edge);
  return ring.at(edge) + (ring[(edge + 1) % ring.size()] - ring[edge]) * t;
}

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
          ASSERT_LE(At(rings, s, s.t0).Distance(p) + At(rings, s, s.t1).Distance(q), slack)
              << "seed " << seed << " operation " << op;
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
        ASSERT_LE(At(rings, s, s.t0).Distance(p) + At(rings, s, s.t1).Distance(q), 1e-9 * judge.Extent()) << "seed " << seed;
      });
    }
  }
}

// Where a spike within the tolerance sticks out of a corner of a long ring, the corner moves no farther, and edges that lean by
// less than that stay in order.
TEST(Region, SpikesAtCornersOfLongRings) {
  constexpr int kSides = 200;
  constexpr double kPi = 3.14159265358979;
  ZBR_REGION_OPTIONS options;
  options.tolerance = 0.01;
  Random random(1);
  for (int k = 0; k < Scaled(200); ++k) {
    const auto within = [&] { return options.tolerance * Unit(random); };
    const ZBR_PT corner(0, 0), spike(within(), -0.4 * within());
    ZBR_REGION large, small;
    Ring ring = {corner, ZBR_PT(within(), 5)};
    for (int i = 0; i <= kSides; ++i) {
      const double t = kPi * (0.5 + static_cast<double>(i) / kSides);
      ring.emplace_back(-20 + 30 * std::cos(t), 30 * std::sin(t));
    }
    large.AddRing(ring);
    small.AddRing({spike, corner, ZBR_PT(3, -20), ZBR_PT(8, -20), corner});
    const double most = 100 * options.tolerance, sum = large.area() + small.area();
    EXPECT_NEAR(zbrCombineRegions(large, small, ZBR_BOOL_OR, options).area(), sum, most) << k;
    EXPECT_NEAR(zbrCombineRegions(small, large, ZBR_BOOL_AND, options).area(), 0, most) << k;
    EXPECT_NEAR(zbrCombineRegions(small, large, ZBR_BOOL_A_MINUS_B, options).area(), small.area(), most) << k;
    const ZBR_REGION alone = zbrCombineRegions(large, ZBR_REGION(), ZBR_BOOL_OR, options);
    EXPECT_EQ(alone.point_count(), ring.size()) << k;
  }
}

// An arranged ring begins with the edge that ends at its leftmost point, wherever it began; so does a long one, where that edge is
// within a chain.
TEST(Region, LongRingsBeginAsShortOnesDo) {
  for (const int sides : {12, 600}) {
    for (int turn = 0; turn < sides; turn += sides / 12) {
      Ring ring;
      for (int k = 0; k < sides; ++k) {
        const double t = 6.283185307179586 * (k + turn + 0.3) / sides;
        ring.emplace_back(9.0 * std::cos(t), 9.0 * std::sin(t));
      }
      ZBR_REGION_OPTIONS options;
      options.sources = true;
      for (int way = 0; way < 2; ++way) {
        const ZBR_REGION region = zbrCombineRegions(RegionOf({ring}), ZBR_REGION(), ZBR_BOOL_OR, options);
        const auto isLeft = [](const ZBR_PT& p, const ZBR_PT& q) { return p.x() < q.x(); };
        ASSERT_EQ(region.point_count(), ring.size());
        EXPECT_EQ(std::min_element(region.points().begin(), region.points().end(), isLeft) - region.points().begin(), 1)
            << "sides " << sides << " turn " << turn;
        std::reverse(ring.begin(), ring.end());
      }
    }
  }
}

// A ring that goes one way for some edges and then crosses itself, by a loop that it runs round twice, wherever that begins.
TEST(Region, LoopsAfterStraightRunsAreSeen) {
  constexpr double kEnd = 100, kTop = 50, kLoop = 4;
  for (int before = 0; before < 48; ++before) {
    Ring ring;
    const double x = before;
    for (int k = 0; k <= before; ++k) ring.emplace_back(k, 0);
    for (const ZBR_PT& p : {ZBR_PT(3, 0), ZBR_PT(3, 2), ZBR_PT(1, 2), ZBR_PT(1, -1)}) ring.push_back(p + ZBR_PT(x, 0));
    for (double along = x + 2; along <= kEnd; ++along) ring.emplace_back(along, -1);
    for (double along = kEnd; along >= 0; --along) ring.emplace_back(along, kTop);
    ZBR_REGION_OPTIONS options;
    options.sources = true;
    const ZBR_REGION region = zbrCombineRegions(RegionOf({ring}), ZBR_REGION(), ZBR_BOOL_OR, options);
    const double strip = kEnd - (x + 1);  // below
    EXPECT_NEAR(region.area(), kEnd * kTop + strip - kLoop, 1e-9) << before;
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
      ASSERT_LE(At(rings, s, s.t0).Distance(p) + At(rings, s, s.t1).Distance(q), 1e-9) << "seed " << seed;
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

// The ends of the long edges are off the grid by half a step: where two cross almost on a third one, the place told nothing of its
// side, and a ring touched its own edge from without. Led through that place, no edge comes near it.
TEST(Region, CrossingsBesideAnEdgeAreOnIt) {
  const ZBR_TmpEps guard(1e-12);
  const ZBR_REGION a = RegionOf({{{31.567768844142076, -27.522436731746907},
                                  {-41.78894448168422, -27.604840754793408},
                                  {31.567768792047893, -27.522436622545126}},
                                 {{30.592052395596305, -32.889078366138065},
                                  {-41.78894469234753, -27.604840568195595},
                                  {30.59205224228659, -32.88907837049685}}});
  const ZBR_REGION b = RegionOf({{{31.56776861875701, -27.522436698805386},
                                  {30.59205234202793, -32.88907809219331},
                                  {30.59205207183357, -32.8890781108945}}});
  for (const ZBR_BOOLEAN_OPE op : {ZBR_BOOL_A_MINUS_B, ZBR_BOOL_OR}) {
    const std::vector<Ring> rings = RingsOf(zbrCombineRegions(a, b, op));
    EXPECT_GE(rings.size(), 2U);
    ForEachEdge(rings, [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
      for (const Ring& ring : rings) {
        for (const ZBR_PT& v : ring) {
          const bool isEnd = v.Distance(p) == 0.0 || v.Distance(q) == 0.0;
          EXPECT_TRUE(isEnd || !zbrIsOnSeg(v, p, q, nullptr, nullptr)) << v.x() << ' ' << v.y();
        }
      }
    });
  }
}

// The exact sign for points a few hundred units apart, with coordinates of at most 2^21 and no more than 35 binary places.
int ExactSide(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& c) {
  const auto whole = [](double d) { return static_cast<std::int64_t>(std::ldexp(d, 35)); };
  const ZBR_PT u = b - a, v = c - a;
  return (zbr::Int128::Product(whole(u.x()), whole(v.y())) - zbr::Int128::Product(whole(u.y()), whole(v.x()))).Sign();
}

// A few digits of the coordinates are all that tells the sides of these rings apart. What was led through a vertex nearby came to
// lie on the other side of another one when it was made straight again.
TEST(Region, ThinRingsFarAwayGiveSimpleOnes) {
  const std::vector<Ring> cases[][2] = {{{{{576272.59701520961, 292131.42225594545},
                                           {576276.78410832596, 292135.62424538686},
                                           {576249.50926773716, 292309.62854811881}}},
                                         {{{576303.93028422166, 292162.8669986013},
                                           {576281.24496498518, 292140.10097233177},
                                           {576254.98297943582, 292113.74555512634},
                                           {576317.3824196629, 292176.36699239264},
                                           {576265.47745508875, 292124.27736673114}}}},
                                        {{{{-756363.76155239716, -1438813.9347021654},
                                           {-756363.71691699827, -1438813.9781533906},
                                           {-756363.64298035461, -1438814.7040869773}}},
                                         {{{-756363.28831347579, -1438814.3953860803},
                                           {-756364.22995011869, -1438813.478731018},
                                           {-756363.4350927585, -1438814.2525008435}}}},
                                        {{{{-142524.48747845713, 3138186.1628391794},
                                           {-142524.69713425377, 3138184.3417907748},
                                           {-142524.6474409973, 3138184.7734212014}},
                                          {{-142524.60258553457, 3138185.1630310994},
                                           {-142524.55646823379, 3138185.5636011465},
                                           {-142525.86572130246, 3138185.1834875224}}},
                                         {}}};
  ZBR_REGION_OPTIONS options;
  options.fill_a = options.fill_b = ZBR_FILL_NON_ZERO;
  for (const auto& [a, b] : cases) {
    const ZBR_REGION region = zbrCombineRegions(RegionOf(a), RegionOf(b), ZBR_BOOL_OR, options);
    const std::vector<Ring> rings = RingsOf(region);
    EXPECT_FALSE(rings.empty());
    ForEachEdge(rings, [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
      ForEachEdge(rings, [&](int, std::size_t, const ZBR_PT& r, const ZBR_PT& s) {
        if (p.Distance(r) == 0.0 || p.Distance(s) == 0.0 || q.Distance(r) == 0.0 || q.Distance(s) == 0.0) return;
        EXPECT_TRUE(ExactSide(p, q, r) * ExactSide(p, q, s) > 0 || ExactSide(r, s, p) * ExactSide(r, s, q) > 0);
      });
    });
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(region.view(), faults);
    EXPECT_TRUE(faults.empty());
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

// Eight places of the coordinates to a unit.
TEST(Region, SmallThingsFarAwayStay) {
  const double far = 1e15;
  const ZBR_REGION a = RegionOf({{{far, far}, {far + 5, far}, {far + 5, far + 6}, {far, far + 6}}});
  const ZBR_REGION b = RegionOf({{{far, far}, {far + 3, far}, {far + 1, far + 3}}});
  ZBR_REGION valid;
  zbrMakeValidRegion(a.view(), valid);
  EXPECT_EQ(valid.area(), 30.0);
  EXPECT_EQ(zbrCombineRegions(a, b, ZBR_BOOL_A_MINUS_B).area(), 25.5);
}

TEST(Region, SimplifiesAndNests) {
  ZBR_REGION simple;
  const Ring dented = {{0, 0}, {2, 1e-4}, {4, 0}, {4, 4}, {0, 4}, {0, 2}};
  zbrSimplifyRegion(RegionOf({dented}).view(), 1e-3, simple);
  EXPECT_EQ(simple.point_count(), 4U);
  zbrSimplifyRegion(RegionOf({dented}).view(), 1e-5, simple);
  EXPECT_EQ(simple.point_count(), 5U);
  Ring round;
  for (int k = 0; k < 720; ++k) round.push_back(ZBR_PT(std::cos(k * 0.0087266), std::sin(k * 0.0087266)) * 100.0);
  zbrSimplifyRegion(RegionOf({round}).view(), 0.1, simple);
  EXPECT_LT(simple.point_count(), 100U);  // where points leave one by one, what is left out still lies near
  EXPECT_NEAR(simple.area(), RegionOf({round}).area(), 0.1 * RegionOf({round}).perimeter());
  std::vector<Ring> rings = {Square(20, 0, 1)};
  for (int k = 0; k < 9; ++k) rings.push_back(Square(k, k, 18 - 2 * k));
  std::mt19937_64 random(1);
  rings = Disguise(rings, random);
  std::vector<std::int32_t> depths, parents;
  EXPECT_EQ(zbrNestRegion(RegionOf(rings).view(), depths, parents).code, ZBR_REGION_OK);
  for (std::size_t i = 0; i < rings.size(); ++i) {
    const double side = RegionOf({rings[i]}).perimeter() / 4.0;
    const bool isOutermost = depths[i] == 0;
    EXPECT_EQ(depths[i], side == 1.0 ? 0 : std::lround(18.0 - side) / 2) << i;
    EXPECT_EQ(parents[i] < 0, isOutermost);
    EXPECT_EQ(isOutermost ? 0 : depths[static_cast<std::size_t>(parents[i])] + 1, depths[i]);
  }
}

TEST(Region, FaultyArraysAreRefusedWithTheirPlace) {
  const double bad[] = {std::nan(""), HUGE_VAL, 1e200};
  for (const double value : bad) {
    const ZBR_REGION faulty = RegionOf({Square(0, 0, 1), {{0, 0}, {1, 0}, {1, value}}});
    ZBR_REGION result = faulty;
    const ZBR_BOOLEAN_OPE op = ZBR_BOOL_OR;
    const ZBR_REGION_STATUS status = zbrCombineRegions(RegionOf({Square(0, 0, 1)}).view(), faulty.view(), &op, &result, 1);
    EXPECT_EQ(status.code, ZBR_REGION_NOT_FINITE);
    EXPECT_TRUE(status.operand == 1 && status.ring == 1 && status.point == 2 && result.empty());
  }
  const double xy[] = {0, 0, 1, 0, 1, 1};
  const std::int32_t offsets[][3] = {{0, 3, 4}, {0, 3, 2}, {-1, 3, 3}};
  for (const auto& wrong : offsets) {
    ZBR_REGION result = RegionOf({Square(0, 0, 1)});
    const ZBR_REGION_STATUS status = zbrMakeValidRegion({xy, 3, wrong, 2}, result);
    EXPECT_TRUE(status.code == ZBR_REGION_BAD_OFFSETS && status.operand == 0 && result.empty());
  }
}

TEST(Region, StopsWhenProgressSaysSo) {
  const ZBR_REGION a = RegionOf({Square(0, 0, 2)});
  const ZBR_REGION_VIEW views[] = {a.view(), a.view()};
  ZBR_REGION_OPTIONS options;
  options.progress = [](double share, void* data) { return share <= 1.0 && --*static_cast<int*>(data) > 0; };
  int left = 0;
  options.progress_data = &left;
  for (int calls = 1; calls < 100; ++calls) {
    ZBR_REGION result = a;
    left = calls;
    const bool stopped = zbrCoverRegions(views, 2, 1, result, options).code == ZBR_REGION_STOPPED;
    EXPECT_EQ(stopped, result.empty());
    EXPECT_TRUE(stopped || calls > 1);
    if (!stopped) return;
  }
  FAIL() << "never came to an end";
}

// The calling thread's tolerance says nothing about them.
TEST(Region, UnionsOfRingsSmallerThanTheTolerance) {
  for (const double size : {1.0, 1e-5, 1e-7, 1e-12}) {
    const ZBR_REGION a = RegionOf({{{0, 0}, {size, 0}, {size, size}, {0, size}}});
    const ZBR_REGION b = RegionOf({{{size, 0}, {2 * size, 0}, {2 * size, size}, {size, size}}});
    const double area = zbrUniteRegions({a, b}).area();
    EXPECT_NEAR(area, 2 * size * size, 1e-6 * size * size) << size;
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

TEST(Region, ProgressOfManyPairsGoesOn) {
  const std::vector<ZBR_REGION> regions(9, RegionOf({Square(0, 0, 2)}));
  std::vector<ZBR_REGION_VIEW> views;
  for (const ZBR_REGION& region : regions) views.push_back(region.view());
  std::vector<ZBR_REGION> results(regions.size());
  std::vector<double> shares;
  ZBR_REGION_OPTIONS options;
  options.sources = true;
  options.progress_data = &shares;
  options.progress = [](double share, void* data) {
    static_cast<std::vector<double>*>(data)->push_back(share);
    return true;
  };
  zbrCombineRegionPairs(views.data(), views.data(), views.size(), ZBR_BOOL_OR, results.data(), options);
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()) && shares.size() > 1 && shares.back() <= 1.0);
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
