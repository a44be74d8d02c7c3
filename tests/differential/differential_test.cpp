// Booleans, crossings, nesting and location beside answers that look at everything: winding numbers counted along lines, and every
// edge tried against every other.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "boolean/check.h"
#include "support/expect.h"
#include "support/judge.h"
#include "support/random_shapes.h"

namespace {

class Differential : public testing::TestWithParam<Family> {};

// The walk along crossings and, as sources are asked for, the exact arrangement.
TEST_P(Differential, TwoEnginesBesideTheJudge) {
  int walked = 0;
  for (int seed = 0; seed < Scaled(300); ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    const LoopList A = Nest(pair.a);
    const LoopList B = Nest(pair.b);
    const BooleanResults loops = RunAll(A, B);
    walked += loops.status.exact ? 0 : 1;
    ZBR_REGION_OPTIONS options;
    options.sources = true;
    const RegionJudge judge(pair.a, pair.b);
    SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << Describe(A, B));
    std::array<double, 5> areas = AreasOf(loops);
    ASSERT_TRUE(AreasAgree(areas[0] + areas[3], areas[1] + areas[3], areas, 1e-6));
    for (std::size_t k = 0; k < kOps.size(); ++k) {
      const ZBR_REGION region = zbrCombineRegions(RegionOf(pair.a), RegionOf(pair.b), kOps[k], options);
      // Loops of an area within 1e-9 are dropped; operands that cross nowhere are passed on, crossing themselves or not.
      const Verdict verdict = judge.Judge(kOps[k], RingsOf(loops.loops[k]));
      const bool isJudged = verdict.area > 1e-8 && GetParam().regions;
      ASSERT_FALSE(isJudged && judge.IsWrong(verdict, 1e-9 * judge.Extent())) << kOps[k];
      ASSERT_FALSE(judge.IsWrong(judge.Judge(kOps[k], RingsOf(region)), 1e-9 * judge.Extent())) << kOps[k] << ", arranged";
      ASSERT_TRUE(IsNested(loops.loops[k], kBooleanEps)) << kOps[k] << ToText(loops.loops[k]);
      ASSERT_NEAR(areas[k], pair.areas ? (*pair.areas)[k] : areas[k], 1e-7) << kOps[k];
    }
  }
  std::printf("[ compared ] %s: %d walked\n", GetParam().name, walked);
  EXPECT_TRUE(walked > Scaled(300) / 10 || !GetParam().regions);
}

// Where two edges cross clear of their ends there is one record of it; each record lies where it says on both boundaries, and to a
// clean-up the lists that it sorts are sorted.
TEST_P(Differential, CrossingsOfAllPairsOfEdges) {
  constexpr double kClear = 1e-3;
  const ZBR_TmpEps guard(kBooleanEps);
  long proper = 0;
  for (int seed = 0; seed < Scaled(300); ++seed) {
    const OperandPair pair = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    const LoopList A = MakeLoops(pair.a);
    const LoopList B = MakeLoops(pair.b);
    std::vector<ZBR_CROSS> crosses;
    zbrGetLoopsCross(A, B, crosses);
    SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << Describe(A, B));
    const auto place = [](const LoopList& loops, const ZBR_CROSS_AB& side) {
      return loops[static_cast<std::size_t>(side.loop.loop())]->LinTo(side.pos);
    };
    for (const ZBR_CROSS& c : crosses) {
      ASSERT_LT(c.pt.Distance(place(A, c.a)) + c.pt.Distance(place(B, c.b)), 1e-4) << c.pt.x() << ' ' << c.pt.y();
    }
    const auto count = [&](int a, std::size_t i, int b, std::size_t j) {
      return std::count_if(crosses.begin(), crosses.end(), [&](const ZBR_CROSS& c) {
        return c.a.loop.loop() == a && c.b.loop.loop() == b && static_cast<std::size_t>(c.a.pos) == i &&
               static_cast<std::size_t>(c.b.pos) == j;
      });
    };
    ForEachEdge(pair.a, [&](int a, std::size_t i, const ZBR_PT& p, const ZBR_PT& q) {
      ForEachEdge(pair.b, [&](int b, std::size_t j, const ZBR_PT& r, const ZBR_PT& s) {
        double t = 0.0;
        double u = 0.0;
        const bool isProper =
            zbrIsIntersect(p, q, r, s, &t, &u, nullptr) && std::min(t, u) > kClear && std::max(t, u) < 1.0 - kClear;
        if (!isProper) return;
        ++proper;
        ASSERT_EQ(count(a, i, b, j), 1) << p.x() << ' ' << p.y() << ", " << r.x() << ' ' << r.y();
      });
    });
    ASSERT_FALSE(HasFatalFailure());
    std::vector<int> sorted[2];
    const LoopList nestedA = Nest(pair.a);
    const LoopList nestedB = Nest(pair.b);
    crosses.clear();
    zbrGetLoopsCross(nestedA, nestedB, crosses);
    zbrOptimizeCross(nestedA, nestedB, crosses, sorted, true);
    ASSERT_TRUE(crosses.empty() || Holds(zbr::SortedFault(crosses, sorted, 1e-5)));
    for (int side = 0; side < 2 && GetParam().name == std::string("stars"); ++side) {
      ASSERT_TRUE(Holds(zbr::AlternationFault(crosses, side, sorted[side]))) << "in general position they enter and leave in turn";
    }
  }
  std::printf("[ compared ] %s: %ld proper crossings\n", GetParam().name, proper);
  EXPECT_GT(proper, Scaled(300) / 10);
}

// 1 inside, 0 outside, -1 within the reach of the boundary: by the crossings of a line to the right, in long double.
int Place(const ZBR_PT& p, const Ring& ring, double reach) {
  bool inside = false;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const ZBR_PT& a = ring[i];
    const ZBR_PT& b = ring[(i + 1) % ring.size()];
    const ZBR_PT d = b - a;
    const double t = d.Length2() > 0.0 ? std::clamp((p - a).InnerProduct(d) / d.Length2(), 0.0, 1.0) : 0.0;
    if (p.Distance(a + d * t) < reach) return -1;
    if ((a.y() > p.y()) == (b.y() > p.y())) continue;
    const long double x = a.x() + static_cast<long double>(d.x()) * (p.y() - a.y()) / d.y();
    inside = inside != (x > p.x());
  }
  return inside ? 1 : 0;
}

// Points on vertices, on edges, near them and anywhere; then which ring lies in which.
TEST_P(Differential, NestingAndLocation) {
  long answers[6] = {};
  for (int seed = 0; seed < Scaled(300); ++seed) {
    const std::vector<Ring> rings = DrawHard(GetParam(), static_cast<std::uint64_t>(seed)).a;
    const LoopList tree = Nest(rings);
    SCOPED_TRACE(testing::Message() << "seed " << seed << '\n' << ToText(tree));
    const RegionJudge judge(rings, {});
    ASSERT_TRUE(!GetParam().regions || IsNested(tree, kBooleanEps));
    ASSERT_FALSE(GetParam().regions && judge.IsWrong(judge.Judge(ZBR_BOOL_OR, RingsOf(tree)), 1e-9 * judge.Extent()));
    const ZBR_LOOP_LOCATOR region(tree);
    Random random(static_cast<std::uint64_t>(seed));
    std::vector<ZBR_POS_PT_PT> pos;
    for (int k = 0; k < 20 && !tree.empty(); ++k) {
      const Ring& ring = rings[random() % rings.size()];
      const ZBR_PT from = ring[random() % ring.size()];
      const ZBR_PT p = from + (ring[random() % ring.size()] - from) * (Below(random, 5) * 0.25) +
                       ZBR_PT(Below(random, 3) - 1, Below(random, 3) - 1) * (Below(random, 2) * 1e-4);
      bool isOn = false;
      bool isIn = false;
      for (const Ring& other : RingsOf(tree)) {
        const auto loop = MakeLoop(other);
        const int place = Place(p, other, 4e-5);
        const ZBR_POLY_INSIDE got = zbrIsInside(p, *loop, pos);
        isOn = isOn || place < 0;
        isIn = isIn != (place == 1);
        ++answers[got];
        ASSERT_TRUE(place < 0 || got == ZBR_PI_UNKNOWN || got == (place == 1 ? ZBR_PI_IN : ZBR_PI_OUT))
            << p.x() << ' ' << p.y() << ' ' << got;
        ASSERT_TRUE(got == ZBR_PI_UNKNOWN || ZBR_LOOP_LOCATOR(*loop).IsInside(p) == got) << p.x() << ' ' << p.y();
      }
      ASSERT_TRUE(isOn || region.IsInside(p) == (isIn ? ZBR_PI_IN : ZBR_PI_OUT)) << p.x() << ' ' << p.y();
    }
  }
  for (const ZBR_POLY_INSIDE place : {ZBR_PI_ON_VERTEX, ZBR_PI_ON_EDGE, ZBR_PI_IN, ZBR_PI_OUT})
    EXPECT_GT(answers[place], Scaled(15));
}

INSTANTIATE_TEST_SUITE_P(Families, Differential, testing::ValuesIn(Families()), testing::PrintToStringParamName());

}  // namespace
