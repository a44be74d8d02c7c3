// Faults of rings: every kind with its place, at any scale; crossings of random rings against trying all pairs in whole numbers.
#include <zbr/region.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "support/random_shapes.h"

namespace {

using Rings = std::vector<std::vector<ZBR_PT>>;
using Edges = std::array<std::int32_t, 4>;

ZBR_REGION ScaledRegion(const Rings& rings, int exponent = 0) {
  ZBR_REGION region;
  for (std::vector<ZBR_PT> ring : rings) {
    for (ZBR_PT& p : ring) p.Set(std::ldexp(p.x(), exponent), std::ldexp(p.y(), exponent));
    region.AddRing(ring);
  }
  return region;
}

Edges EdgesOf(const ZBR_REGION_FAULT& f) {
  return {f.ring_a, f.edge_a, f.ring_b, f.edge_b};
}

const std::vector<ZBR_PT> kSquare = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};

TEST(RegionCheck, EveryKindAtAnyScale) {
  const struct {
    const char* name;
    Rings rings;
    ZBR_REGION_FAULT_KIND kind;
    ZBR_PT place;
    Edges edges;
    std::size_t count;
  } cases[] = {
      {"bow tie", {{{0, 0}, {4, 4}, {6, 0}, {0, 3}}}, ZBR_FAULT_CROSSING, {2, 2}, {0, 0, 0, 2}, 1},
      {"squares", {kSquare, {{2, -1}, {6, -1}, {6, 9}, {2, 9}}}, ZBR_FAULT_CROSSING, {2, 0}, {0, 0, 1, 3}, 2},
      {"through a corner", {kSquare, {{-1, -2}, {2, 4}, {-3, 9}, {-9, 0}}}, ZBR_FAULT_CROSSING, {0, 0}, {0, 0, 1, 0}, 2},
      {"side by side", {kSquare, {{4, 1}, {8, 1}, {8, 3}, {4, 3}}}, ZBR_FAULT_OVERLAP, {4, 2}, {0, 1, 1, 3}, 1},
      {"spike", {{{0, 0}, {4, 0}, {8, 0}, {4, 0}, {4, 4}}}, ZBR_FAULT_FOLD, {8, 0}, {0, 1, 0, 2}, 1},
      {"repeated", {kSquare, {{5, 5}, {9, 5}, {9, 5}, {9, 9}}}, ZBR_FAULT_REPEATED_POINT, {9, 5}, {1, 1, -1, -1}, 1},
      {"two points", {kSquare, {{5, 5}, {9, 5}}}, ZBR_FAULT_NO_AREA, {5, 5}, {1, -1, -1, -1}, 1},
      {"slit", {{{0, 0}, {4, 0}, {4, 4}, {2 + 1e-11, 4}, {2, 1}, {2 - 1e-11, 4}, {0, 4}}}, {}, {}, {}, 0},
      {"narrower than rounding, but simple",
       {{{137068.00614286662, -122268.97416267615},
         {137068.76159490639, -122268.97416267678},
         {137069.34477863024, -122268.97416267695},
         {137069.91992282809, -122268.97416267684},
         {137069.8840211411, -122268.97416267678},
         {137069.37632983518, -122268.97416267668},
         {137069.70736730099, -122268.97416267662},
         {137068.91921581552, -122268.97416267612}}},
       {},
       {},
       {},
       0},
      {"touching, closed by its first point", {kSquare, {{4, 4}, {8, 4}, {8, 8}, {4, 4}}}, {}, {}, {}, 0},
  };
  for (const auto& c : cases) {
    for (const int exponent : {0, -400, 400}) {
      SCOPED_TRACE(std::string(c.name) + " * 2^" + std::to_string(exponent));
      std::vector<ZBR_REGION_FAULT> faults;
      ASSERT_EQ(zbrCheckRegion(ScaledRegion(c.rings, exponent).view(), faults).code, ZBR_REGION_OK);
      ASSERT_EQ(faults.size(), c.count);
      if (c.count == 0) continue;
      EXPECT_EQ(faults[0].kind, c.kind);
      EXPECT_EQ(EdgesOf(faults[0]), c.edges);
      EXPECT_EQ(std::ldexp(faults[0].place.x(), -exponent), c.place.x());
      EXPECT_EQ(std::ldexp(faults[0].place.y(), -exponent), c.place.y());
    }
  }
}

// Rings so close to each other that their edges come near by the hundred, one of them moved a little too far.
TEST(RegionCheck, OneOfManyBesideEachOther) {
  constexpr std::size_t kRings = 200, kCorners = 96;
  constexpr double kGap = 0.01, kPi = 3.141592653589793;
  for (const std::size_t moved : {kRings, std::size_t{0}, std::size_t{97}, kRings - 1}) {
    Rings rings(kRings);
    for (std::size_t k = 0; k < kRings; ++k) {
      for (std::size_t i = 0; i < kCorners; ++i) {
        const double angle = 2 * kPi * static_cast<double>(i) / kCorners, radius = 10 + kGap * static_cast<double>(k);
        rings[k].emplace_back(radius * std::cos(angle) - (k == moved ? 1.2 * kGap : 0.0), radius * std::sin(angle));
      }
    }
    std::vector<ZBR_REGION_FAULT> faults;
    ASSERT_EQ(zbrCheckRegion(ScaledRegion(rings).view(), faults).code, ZBR_REGION_OK);
    EXPECT_EQ(faults.size(), moved == kRings ? 0U : (moved == 97 ? 4U : 2U)) << "ring " << moved << " moved";
  }
}

// Slanted strips a few units in the last place wide, that every box of an edge has in common with all others: exactly apart, so
// that what comes near has no fault, whatever another ring does.
TEST(RegionCheck, StripsThatRoundingHides) {
  constexpr int kStrips = 300;
  constexpr double kFar = 1e7, kWidth = 0x1p-29 * 6;
  Rings rings;
  for (int i = 0; i < kStrips; ++i) {
    const double x = kFar + 2 * i * kWidth;
    rings.push_back({{x, kFar}, {x + kWidth, kFar}, {x + kWidth + 1, kFar + 1}, {x + 1, kFar + 1}});
  }
  for (const std::size_t crossings : {std::size_t{0}, std::size_t{1}}) {
    if (crossings > 0) rings.push_back({{kFar, kFar + 4}, {kFar + 4, kFar + 8}, {kFar + 6, kFar + 4}, {kFar, kFar + 7}});
    std::vector<ZBR_REGION_FAULT> faults;
    ASSERT_EQ(zbrCheckRegion(ScaledRegion(rings).view(), faults).code, ZBR_REGION_OK);
    EXPECT_EQ(std::erase_if(faults, [](const ZBR_REGION_FAULT& f) { return f.kind == ZBR_FAULT_NO_AREA; }), kStrips);
    ASSERT_EQ(faults.size(), crossings);
    if (crossings > 0) {
      EXPECT_EQ(EdgesOf(faults[0]), (Edges{kStrips, 0, kStrips, 2}));
    }
  }
}

TEST(RegionCheck, BadArrays) {
  std::vector<ZBR_REGION_FAULT> faults(1);
  const double xy[] = {0, 0, 4, 0, 4, 4, 0, std::numeric_limits<double>::quiet_NaN(), 1, 1, 2, 2};
  const std::int32_t good[] = {0, 3, 6}, bad[] = {0, 4, 3};
  ASSERT_EQ(zbrCheckRegion({xy, 6, good, 2, nullptr, 0}, faults).code, ZBR_REGION_OK);
  ASSERT_EQ(faults.size(), 1U);
  EXPECT_EQ(faults[0].kind, ZBR_FAULT_NOT_FINITE);
  EXPECT_EQ(EdgesOf(faults[0]), (Edges{1, 0, -1, -1}));
  EXPECT_EQ(zbrCheckRegion({xy, 6, bad, 2, nullptr, 0}, faults).code, ZBR_REGION_BAD_OFFSETS);
  EXPECT_TRUE(faults.empty());
  EXPECT_EQ(zbrCheckRegion({}, faults).code, ZBR_REGION_OK);
}

int Side(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& p) {
  const double cross = (b - a).OuterProduct(p - a);
  return (cross > 0) - (cross < 0);
}

// The edges of all rings, with their numbers.
struct Edge {
  std::int32_t ring, edge;
  ZBR_PT p, q;
};

// Crossings within edges are found, each once, and no others; all else that is called a crossing is at an end of an edge.
TEST(RegionCheck, RandomRingsAgainstAllPairs) {
  Random random(7);
  for (int k = 0; k < Scaled(3000); ++k) {
    Rings rings(1 + static_cast<std::size_t>(k) % 3);
    std::vector<Edge> edges;
    std::set<Edges> expected, found;
    for (auto& ring : rings) {
      for (int n = 3 + Below(random, 12); n > 0; --n) ring.emplace_back(Below(random, 12), Below(random, 12));
      const auto r = static_cast<std::int32_t>(&ring - rings.data());
      std::size_t withLength = 0;
      for (std::size_t i = 0; i < ring.size(); ++i) withLength += ring[i].Distance(ring[(i + 1) % ring.size()]) > 0 ? 1 : 0;
      for (std::size_t i = 0; withLength > 2 && i < ring.size(); ++i)  // others are no rings, and not searched
        edges.push_back({r, static_cast<std::int32_t>(i), ring[i], ring[(i + 1) % ring.size()]});
    }
    for (std::size_t i = 0; i < edges.size(); ++i) {
      for (std::size_t j = i + 1; j < edges.size(); ++j) {
        const Edge &e = edges[i], &f = edges[j];
        if (Side(e.p, e.q, f.p) * Side(e.p, e.q, f.q) < 0 && Side(f.p, f.q, e.p) * Side(f.p, f.q, e.q) < 0)
          expected.insert({e.ring, e.edge, f.ring, f.edge});
      }
    }
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(ScaledRegion(rings).view(), faults);
    for (const ZBR_REGION_FAULT& fault : faults) {
      if (fault.kind != ZBR_FAULT_CROSSING) continue;
      const bool isAtEnd = std::any_of(edges.begin(), edges.end(), [&](const Edge& e) {
        const bool isOne = (e.ring == fault.ring_a && e.edge == fault.edge_a) || (e.ring == fault.ring_b && e.edge == fault.edge_b);
        return isOne && std::min(e.p.Distance(fault.place), e.q.Distance(fault.place)) < 1e-9;
      });
      if (!isAtEnd) {
        EXPECT_TRUE(found.insert(EdgesOf(fault)).second);
      }
    }
    ASSERT_EQ(found, expected) << k;
  }
}

}  // namespace
