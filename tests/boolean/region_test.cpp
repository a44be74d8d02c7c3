// Regions as flat arrays: long rings, exact places, nesting, what is refused, progress. Of random families:
// region_families_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "arrangement/int128.h"
#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

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

// Turned, three of the lines cross in three places a step of the grid apart, and parts of two run opposite ways between these.
TEST(Region, CellsStayWhereLinesCrossInAlmostOnePlace) {
  const std::vector<Ring> lines = {{{4, 4}, {1, 1}}, {{0, 3}, {4, 1}}, {{1, 2}, {5, 2}}, {{2, 0}, {5, 5}}};
  for (int k = 0; k < 2000; ++k) {
    const double c = std::cos(k * 0.00314), s = std::sin(k * 0.00314);
    ZBR_REGION turned, cells;
    for (Ring line : lines) {
      for (ZBR_PT& p : line) p = ZBR_PT(p.x() * c - p.y() * s, p.x() * s + p.y() * c);
      turned.AddRing(line);
    }
    zbrTraceFaces(turned.view(), cells);
    ASSERT_EQ(cells.polygon_count(), 1U) << k;
    ASSERT_NEAR(cells.area(), 18.0 / 65.0, 1e-9) << k;
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

}  // namespace
