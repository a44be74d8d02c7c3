// Cost without a clock: work counted at two sizes of each family. Eight times the input may cost eight times the work and some for
// the logarithm; a search that has become a look at all pairs costs 64 times.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "core/cost.h"
#include "support/expect.h"

// The library's objects are linked for their counters, the library itself for all others: the address sanitizer is not to mind.
extern "C" const char* __asan_default_options() {
  return "detect_odr_violation=0";
}

namespace {

constexpr int kFactor = 8;
constexpr double kMost = 2.0;  // of the ratio to the factor

struct Family {
  const char* name;
  void (*run)(int n);
  int small;
};
void PrintTo(const Family& family, std::ostream* out) {
  *out << family.name;
}

// A ring of n points between two radii, with teeth as deep as they are wide: so that boxes of edges are about as large as edges.
Ring Star(int n, double turn) {
  Ring ring;
  for (int k = 0; k < n; ++k) {
    const double angle = 2.0 * std::acos(-1.0) * (k + turn) / n;
    ring.push_back(ZBR_PT(std::cos(angle), std::sin(angle)) * (k % 2 == 0 ? 1.0 : 1.0 - 4.0 / n));
  }
  return ring;
}

std::vector<Ring> Grid(int side, double step, double size) {
  std::vector<Ring> rings;
  for (int k = 0; k < side * side; ++k) rings.push_back(Square(step * (k % side), step * (k / side), size));
  return rings;
}

int SideOf(int n) {
  return static_cast<int>(std::lround(std::sqrt(n)));
}

void Combine(const LoopList& a, const LoopList& b) {
  LoopList result;
  for (const ZBR_BOOLEAN_OPE op : kOps) zbrBooleanLoops(a, b, op, result);
}

void Stars(int n) {
  Combine(Nest({Star(n, 0.0)}), Nest({Star(n, 0.4)}));
}

void Combs(int n) {  // boundaries that cross at every tooth, on a line
  Ring a = {{0, 0}};
  Ring b = {{0, 9}};
  for (int k = 0; k < n; ++k) a.emplace_back(k, k % 2 == 0 ? 4 : 5), b.emplace_back(k, k % 2 == 0 ? 5 : 4);
  a.emplace_back(n, 0);
  b.emplace_back(n, 9);
  Combine(Nest({a}), Nest({b}));
}

void Tiles(int n) {
  const int side = SideOf(n);
  Combine(Nest(Grid(side, 4.0, 3.0)), MakeLoops(Grid(side, 4.0, 2.0)));
}

void NestSquares(int n) {
  std::vector<Ring> rings = Grid(SideOf(n), 4.0, 3.0);
  for (const Ring& ring : std::vector<Ring>(rings))
    rings.push_back({ring[0] + ZBR_PT(1, 1), ring[1] + ZBR_PT(-1, 1), ring[2] - ZBR_PT(1, 1)});
  Nest(rings);
}

void Locate(int n) {
  const ZBR_LOOP_LOCATOR locator(Nest({Star(n, 0.0)}));
  for (int k = 0; k < n; ++k) locator.IsInside(ZBR_PT(k % 64 / 32.0 - 1.0, k / 64 * 64.0 / n * 2.0 - 1.0));
}

void Clip(int n) {
  std::vector<ZBR_SEG3> segments, inside;
  const LoopList region = Nest({Star(n, 0.0)});
  for (int k = 0; k < n; ++k)
    segments.emplace_back(ZBR_PT3(std::cos(k), std::sin(k), 0), ZBR_PT3(0.5 * std::cos(k), 0.5 * std::sin(k), 1));
  zbrClipSegs(segments, region, inside, nullptr);
}

// A field of plates over a field of plates, so that every edge meets a few others.
std::vector<ZBR_HL_TRI> Plates(int n) {
  std::vector<ZBR_HL_TRI> tris;
  for (const double z : {0.0, 1.0}) {
    for (const Ring& r : Grid(SideOf(n), 4.0, 3.0)) {
      ZBR_HL_TRI& t = tris.emplace_back();
      for (std::size_t i = 0; i < 3; ++i) {
        t.pt[i] = ZBR_PT3(r[i].x() + z, r[i].y() + z, z);
        t.dispj[i] = true;
      }
    }
  }
  return tris;
}

void Outline(int n) {
  std::vector<ZBR_HL_TRI> tris = Plates(n);
  ZBR_HL_SHELL shell(tris.data(), static_cast<unsigned>(tris.size()));
  ZBR_HiddenLine::OutLineObj(&shell, 1);
}

void HiddenLines(int n) {
  std::vector<ZBR_HL_TRI> tris = Plates(n);
  ZBR_HL_SHELL shell(tris.data(), static_cast<unsigned>(tris.size()));
  shell.HiddenLineSelf();
  zbr::t_cost.pairs += shell.pairs_tried;
}

ZBR_REGION RegionFor(const std::vector<Ring>& rings) {
  ZBR_REGION region;
  for (const Ring& ring : rings) region.AddRing(ring);
  return region;
}

void Copies(int n) {  // one ring many times
  const Ring diamond = {{2, 0}, {4, 2}, {2, 4}, {0, 2}};
  zbrCombineRegions(RegionFor(std::vector<Ring>(static_cast<std::size_t>(n), diamond)), RegionFor({Square(1, 1, 4)}), ZBR_BOOL_OR);
}

void CopiesUnited(int n) {
  zbrUniteRegions(std::vector<ZBR_REGION>(static_cast<std::size_t>(n), RegionFor({Square(0, 0, 4)})));
}

void Crowd(int n) {  // vertices by the thousand within one tolerance
  Ring ring = {{0, 0}, {4, 0}};
  for (int k = 0; k < n; ++k) ring.emplace_back(4.0 + 1e-4 * std::cos(k), 2.0 + 1e-4 * std::sin(2 * k));
  ring.emplace_back(0, 4);
  ZBR_REGION_OPTIONS options;
  options.tolerance = 1e-2;
  zbrCombineRegions(RegionFor({ring}), RegionFor({Square(1, 1, 1)}), ZBR_BOOL_OR, options);
}

// Rings of 16 edges around each other, and the same moved by half their distance: of slanted edges beside each other all boxes
// overlap.
std::vector<Ring> NestedRings(int n, double shift) {
  std::vector<Ring> rings;
  for (int k = 1; k <= n; ++k) {
    Ring& ring = rings.emplace_back();
    for (int i = 0; i < 16; ++i)
      ring.push_back(ZBR_PT(std::cos(i * std::acos(-1.0) / 8.0), std::sin(i * std::acos(-1.0) / 8.0)) * k);
    for (ZBR_PT& p : ring) p = p + ZBR_PT(shift, 0.6 * shift);
  }
  return rings;
}

void NestedRingsByLoops(int n) {
  std::vector<ZBR_CROSS> crosses;
  zbrGetLoopsCross(MakeLoops(NestedRings(n, 0.0)), MakeLoops(NestedRings(n, 0.5)), crosses);
}

void NestedRingsByRegions(int n) {
  ZBR_REGION_OPTIONS options;
  options.fill_a = ZBR_FILL_NON_ZERO;
  ZBR_REGION result;
  const ZBR_BOOLEAN_OPE op = ZBR_BOOL_XOR;
  zbrCombineRegions(RegionFor(NestedRings(n, 0.0)).view(), RegionFor(NestedRings(n, 0.5)).view(), &op, &result, 1, options);
}

void BarsOnOneLine(int n) {  // n edges along n ends
  std::vector<Ring> bars;
  for (int k = 0; k < n; ++k) bars.push_back({{-1.0 - k, 0}, {1.0 + k, 0}, {1.0 + k, n * 1.0}, {-1.0 - k, n * 1.0}});
  ZBR_REGION_OPTIONS options;
  options.fill_a = ZBR_FILL_NON_ZERO;
  zbrCombineRegions(RegionFor(bars), RegionFor({{{0, -1}, {1, n / 2.0}, {-1, n / 2.0}}}), ZBR_BOOL_OR, options);
}

void Fan(int n) {  // n edges in one vertex
  std::vector<Ring> fan;
  const auto at = [n](double k) { return ZBR_PT(std::cos(k / n), std::sin(k / n)); };
  for (int k = 0; k < n; ++k) fan.push_back({{0, 0}, at(k), at(k + 0.5)});
  ZBR_REGION_OPTIONS options;
  options.fill_a = ZBR_FILL_NON_ZERO;
  zbrCombineRegions(RegionFor(fan), RegionFor({Square(0.2, 0.2, 0.5)}), ZBR_BOOL_OR, options);
}

void Slivers(int n) {  // one above the other, slanted, so that all boxes overlap
  std::vector<Ring> slivers;
  for (int k = 0; k < n; ++k) slivers.push_back({{0, k * 1e-3}, {n * 1.0, (k + n) * 1e-3}, {n * 1.0, (k + n + 0.5) * 1e-3}});
  std::vector<int> depths, parents;
  zbrNestRegion(RegionFor(slivers).view(), depths, parents);
}

class CostOf : public testing::TestWithParam<Family> {};

TEST_P(CostOf, GrowsWithTheInput) {
  zbr::Cost costs[2];
  for (int k = 0; k < 2; ++k) {
    zbr::t_cost = {};
    GetParam().run(GetParam().small * (k == 0 ? 1 : kFactor));
    costs[k] = zbr::t_cost;
  }
  const auto expectGrowth = [](const char* what, std::uint64_t small, std::uint64_t large) {
    std::printf("[ counted  ] %-9s %10.0f %10.0f\n", what, static_cast<double>(small), static_cast<double>(large));
    EXPECT_LE(static_cast<double>(large), kMost * kFactor * static_cast<double>(small + 100)) << what;
  };
  expectGrowth("nodes", costs[0].nodes, costs[1].nodes);
  expectGrowth("pairs", costs[0].pairs, costs[1].pairs);
  expectGrowth("crossings", costs[0].crossings, costs[1].crossings);
  EXPECT_GT(costs[0].nodes + costs[0].pairs, static_cast<std::uint64_t>(GetParam().small)) << "nothing was counted";
}

// A thousand parts; where one of them has to be arranged, the others must not be.
TEST(Cost, OneBadPartLeavesTheOthersToTheWalk) {
  const std::vector<Ring> b = Grid(32, 4.0, 2.0);
  std::vector<Ring> a = Grid(32, 4.0, 3.0);
  for (Ring& ring : a) ring.emplace_back(ring[0] + ZBR_PT(-0.5, 1.0));
  for (Ring& ring : a)
    for (ZBR_PT& p : ring) p = p + ZBR_PT(0.7, 0.6);
  double costs[2][2] = {};
  for (const int bad : {0, 1}) {
    if (bad == 1) a.push_back({a[500][0], a[500][0] + ZBR_PT(1, 1), a[500][0] + ZBR_PT(1, 0), a[500][0] + ZBR_PT(0, 1)});
    zbr::t_cost = {};
    zbrCombineRegions(RegionFor(a), RegionFor(b), ZBR_BOOL_OR);
    costs[0][bad] = static_cast<double>(zbr::t_cost.nodes + zbr::t_cost.pairs);
    const LoopList loopsA = MakeLoops(a), loopsB = MakeLoops(b);
    zbr::t_cost = {};
    LoopList result;
    zbrBooleanLoops(loopsA, loopsB, ZBR_BOOL_OR, result);
    costs[1][bad] = static_cast<double>(zbr::t_cost.nodes + zbr::t_cost.pairs);
  }
  for (const auto& cost : costs) {
    std::printf("[ counted  ] %10.0f %10.0f\n", cost[0], cost[1]);
    EXPECT_LE(cost[1], 3.5 * cost[0]);  // for the walk that failed, one of the sixteenths, and the search for clusters
  }
}

// Slivers along one line, within the tolerance of each other: each is led through the ends of all, but the pairs of what they
// become are not looked at one by one.
TEST(Cost, LinesThatRunTogetherCostNoMoreThanTheirPairs) {
  double pairs[2] = {};
  for (const int k : {0, 1}) {
    std::vector<Ring> slivers;
    for (int i = 0; i < (k == 0 ? 50 : 200); ++i) {
      const auto at = [i](double x, int y) { return ZBR_PT(x, 0.3 * x + 1e-13 * (i * (2 + y) % 5)); };
      slivers.push_back({at(std::fmod(i * 0.618, 1.0), 0), at(2.0 + std::fmod(i * 0.414, 1.0), 1), at(1.5 + i * 1e-4, 2)});
    }
    zbr::t_cost = {};
    ZBR_REGION result;
    zbrMakeValidRegion(RegionFor(slivers).view(), result);
    pairs[k] = static_cast<double>(zbr::t_cost.pairs);
  }
  std::printf("[ counted  ] %10.0f %10.0f\n", pairs[0], pairs[1]);
  EXPECT_LE(pairs[1], 1.5 * 16 * pairs[0]);
}

INSTANTIATE_TEST_SUITE_P(Families, CostOf,
                         testing::Values(Family{"stars", Stars, 500}, Family{"combs", Combs, 500}, Family{"tiles", Tiles, 400},
                                         Family{"nest", NestSquares, 400}, Family{"locate", Locate, 500}, Family{"clip", Clip, 500},
                                         Family{"outline", Outline, 400}, Family{"hidden", HiddenLines, 400},
                                         Family{"copies", Copies, 100}, Family{"copies_united", CopiesUnited, 400},
                                         Family{"crowd", Crowd, 500}, Family{"nested_loops", NestedRingsByLoops, 250},
                                         Family{"nested_regions", NestedRingsByRegions, 400}, Family{"bars", BarsOnOneLine, 400},
                                         Family{"fan", Fan, 400}, Family{"slivers", Slivers, 400}),
                         testing::PrintToStringParamName());

}  // namespace
