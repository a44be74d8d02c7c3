// Planar predicates beside whole numbers. By named case: data/predicates.txt.
#include <gtest/gtest.h>

#include <cmath>

#include "support/random_shapes.h"

namespace {

TEST(Corner, SidesOfAReversalThatIsKnown) {
  int s1 = 9;
  int s2 = 9;
  ZBR_3PT_INFO info;
  ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {0, 0}, info);
  EXPECT_EQ(ZBR_PT(0.5, 1).CheckPos({0, 0}, {1, 0}, {0, 0}, info, s1, s2), -4);
  EXPECT_TRUE(s1 == 1 && s2 == -1);
}

// Lattice points, where products are exact: sides, segments and wedges by the signs of whole numbers.
TEST(Planar, AgreesWithWholeNumbers) {
  const auto sign = [](double d) { return d > 0.0 ? 1 : d < 0.0 ? -1 : 0; };
  int onBoundary = 0;
  for (int i = 0; i < Scaled(20000); ++i) {
    SCOPED_TRACE(testing::Message() << "seed " << i);
    Random random(static_cast<std::uint64_t>(i));
    const ZBR_TmpEps guard(std::ldexp(1.0, -10 - Below(random, 30)));
    const auto draw = [&] { return ZBR_PT(Below(random, 4), Below(random, 4)); };
    const ZBR_PT a = draw();
    const ZBR_PT b = draw();
    const ZBR_PT c = draw();
    const ZBR_PT p = draw();
    if (a.Distance(b) == 0.0 || b.Distance(c) == 0.0) continue;
    const int side1 = sign((b - a).OuterProduct(p - a));
    const int side2 = sign((c - b).OuterProduct(p - b));
    ASSERT_EQ(p.CheckPos(a, b), side1);
    const double along = (p - a).InnerProduct(b - a);
    ASSERT_EQ(zbrIsOnSeg(p, a, b, nullptr, nullptr), side1 == 0 && along >= 0.0 && along <= a.Distance2(b));
    const int turn = sign((b - a).OuterProduct(c - b));
    const bool convex = turn >= 0;  // straight on counts as convex
    if (turn == 0 && (b - a).InnerProduct(c - b) < 0.0) continue;
    int got1 = 9;
    int got2 = 9;
    const int pos = p.CheckPos(a, b, c, got1, got2);
    const bool in = convex ? side1 > 0 && side2 > 0 : side1 > 0 || side2 > 0;
    const bool out = convex ? side1 < 0 || side2 < 0 : side1 < 0 && side2 < 0;
    ASSERT_EQ(pos, in ? 1 : out ? -1 : 0);
    ASSERT_TRUE(got1 == side1 && got2 == side2);
    onBoundary += pos == 0 ? 1 : 0;
  }
  EXPECT_GT(onBoundary, Scaled(20000) / 200);
}

// The foot replaces the point that was put on the line, or an end: the answer is that for the points as they were.
TEST(Planar, FootMayBeAPointAskedAbout) {
  const double eps = 1e-5;  // of the guard below
  const ZBR_TmpEps guard(eps);
  for (const double along : {-1.5, -0.5, 0.5, 500.0, 999.5, 1000.5, 1001.5}) {
    for (const double off : {0.0, 0.75, 1.5}) {
      const ZBR_PT points[3] = {ZBR_PT(along * eps, off * eps), ZBR_PT(0, 0), ZBR_PT(1000.0 * eps, 0)};
      const bool isOn = off < 1.0 && along > -1.0 && along < 1001.0;
      for (int k = 0; k < 3; ++k) {
        ZBR_PT p[3] = {points[0], points[1], points[2]};
        EXPECT_EQ(zbrIsOnSeg(p[0], p[1], p[2], &p[k], nullptr), isOn) << along << ' ' << off << ' ' << k;
      }
    }
  }
}

}  // namespace
