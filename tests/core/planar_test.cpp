// Points, corners, segments and areas at the places where a decision changes.
#include <gtest/gtest.h>

#include <cmath>

#include "support/random_shapes.h"

namespace {

constexpr double kEps = 1e-5;

TEST(Point, EqualWithinEpsOnly) {
  EXPECT_TRUE(ZBR_PT(0, 0) == ZBR_PT(kEps, 0));
  EXPECT_FALSE(ZBR_PT(0, 0) == ZBR_PT(1.0000001e-5, 0));
  EXPECT_TRUE(ZBR_PT(0, 0) != ZBR_PT(2e-5, 0));
  EXPECT_TRUE(ZBR_PT(NAN, 0) != ZBR_PT(NAN, 0));
}

TEST(Point, NormalizeNeverGivesNaN) {
  for (const double x : {0.0, 1e-101}) EXPECT_EQ(ZBR_PT(x, 0).Normalize().Length(), 0.0);
  EXPECT_LT(ZBR_PT(3, 4).Normalize().Distance({0.6, 0.8}), 1e-15);
}

TEST(Point, SideOfLine) {
  const ZBR_PT a(0, 0);
  const ZBR_PT b(1, 0);
  const struct {
    ZBR_PT p;
    int side;
  } rows[] = {{{0, 1}, 1}, {{0, -1}, -1}, {{5, 0}, 0}, {{0.5, kEps}, 0}, {{0.5, 1.01e-5}, 1}, {{-9, -1.01e-5}, -1}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.p.CheckPos(a, b), row.side) << row.p.x() << ' ' << row.p.y();
    EXPECT_EQ(row.p.CheckPos(a, b, 1.0), row.side) << row.p.x() << ' ' << row.p.y();
    EXPECT_EQ(row.p.CheckPos(a, a), -2);
  }
}

TEST(Point, ParameterOnTheLongerAxis) {
  EXPECT_EQ(ZBR_PT(1, 9).LinFrom({0, 0}, {2, 2}), 0.5);    // tie: x
  EXPECT_EQ(ZBR_PT(1, 9).LinFrom({0, 0}, {2, 2.5}), 3.6);  // y
  EXPECT_EQ(ZBR_PT(-1, 9).LinFrom({0, 0}, {-2, 1}), 0.5);
}

TEST(Corner, States) {
  ZBR_3PT_INFO info;
  EXPECT_EQ(ZBR_PT::Get3PtInfo({0, 0}, {0, 0}, {1, 0}, info), -2);
  EXPECT_EQ(ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {1, 0}, info), -3);
  EXPECT_EQ(ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {0, 0}, info), -4);
  EXPECT_EQ(ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {0, 1e-9}, info), 0);  // 1e-9 rad off a reversal: eps2, not eps
  EXPECT_EQ(ZBR_PT::Get3PtInfo({0, 0}, {2, 0}, {2, 4}, info), 0);
  EXPECT_TRUE(info.isConvex && info.sinA == 1.0 && info.cosA == 0.0);
  EXPECT_TRUE(info.invLen2Prev == 0.25 && info.invLen2Next == 0.0625);
  ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {2, 0}, info);
  EXPECT_TRUE(info.isConvex) << "straight on counts as convex";
}

TEST(Corner, BeyondAnAcuteApexIsOutside) {
  // Within eps of both edge lines, past the apex: a needle of half a tolerance per unit.
  int s1 = 9;
  int s2 = 9;
  const ZBR_PT apex(1, 0);
  EXPECT_EQ(ZBR_PT(1.1, 0).CheckPos({0, 0}, apex, {0, 1e-6}, s1, s2), -1);
  EXPECT_EQ(ZBR_PT(0.9, 0).CheckPos({0, 0}, apex, {0, 1e-6}, s1, s2), 0);
  EXPECT_EQ(ZBR_PT(1.1, 0).CheckPos({0, 0}, apex, {0, -1e-6}, s1, s2), 1) << "the reflex counterpart";
}

TEST(Corner, DegenerateWritesOnlyWhatItKnows) {
  int s1 = 9;
  int s2 = 9;
  const ZBR_PT p(0.5, 1);
  EXPECT_EQ(p.CheckPos({0, 0}, {0, 0}, {1, 0}, s1, s2), -2);
  EXPECT_EQ(p.CheckPos({0, 0}, {1, 0}, {0, 0}, s1, s2), -4);
  EXPECT_TRUE(s1 == 9 && s2 == 9);
  ZBR_3PT_INFO info;
  ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {0, 0}, info);
  EXPECT_EQ(p.CheckPos({0, 0}, {1, 0}, {0, 0}, info, s1, s2), -4);
  EXPECT_TRUE(s1 == 1 && s2 == -1);
}

TEST(Intersection, ParametersAndDeterminant) {
  double t = 9;
  double u = 9;
  double det = 9;
  EXPECT_TRUE(zbrIsIntersect({0, 0}, {2, 0}, {1, -1}, {1, 1}, &t, &u, &det));
  EXPECT_TRUE(t == 0.5 && u == 0.5 && det == 4.0);
  EXPECT_TRUE(zbrIsIntersect({0, 0}, {2, 0}, {8, 1}, {8, 2}, &t, &u, nullptr)) << "infinite lines";
  EXPECT_TRUE(t == 4.0 && u == -1.0);
  EXPECT_FALSE(zbrIsIntersect({0, 0}, {2, 0}, {0, 1}, {2, 1}, &t, &u, &det));
  EXPECT_EQ(t, 4.0) << "untouched";
  EXPECT_EQ(det, 0.0) << "written all the same";
}

TEST(OnSegment, EndsFootAndParameter) {
  const ZBR_PT a(0, 0);
  const ZBR_PT b(4, 0);
  const struct {
    ZBR_PT p;
    bool on, written;
    double t;
  } rows[] = {{{2, 0.5e-5}, true, true, 0.5},        {{2, 2e-5}, false, false, 9},          {{0, 0}, true, true, 0},
              {{-0.9e-5, 0}, true, true, -0.225e-5}, {{4.00002, 0}, false, true, 1.000005}, {{4, 0.9e-5}, true, true, 1}};
  for (const auto& row : rows) {
    ZBR_PT foot(9, 9);
    double t = 9;
    EXPECT_EQ(zbrIsOnSeg(row.p, a, b, &foot, &t), row.on) << row.p.x() << ' ' << row.p.y();
    EXPECT_EQ(zbrIsOnSeg(row.p, a, b, nullptr, nullptr), row.on);
    EXPECT_EQ(foot.x() != 9, row.written);
    EXPECT_NEAR(t, row.t, 1e-15);
  }
  EXPECT_TRUE(zbrIsOnSeg({0.5e-5, 0}, a, a, nullptr, nullptr));
  EXPECT_FALSE(zbrIsOnSeg({2e-5, 0}, a, a, nullptr, nullptr));
}

TEST(PolygonArea, Strips) {
  const ZBR_POLYGON square(Square(0, 0, 1));
  EXPECT_EQ(square.get_area(), 1.0);
  const struct {
    const char* what;
    double ta, tb, area;
  } rows[] = {{"forward half", 0.5, 2.5, 0.5},
              {"wrapping half", 2.5, 0.5, 0.5},
              {"one edge, ahead", 0.2, 0.7, 0.0},
              {"one edge, behind", 0.7, 0.2, 1.0},
              {"nothing between, up to the start", 3.5, 0.0, 0.0},
              {"corner", 0.5, 1.5, 0.125},
              {"the same place", 1.0, 1.0, 1.0},
              {"within eps", 1.0, 1.0 + 0.5e-5, 0.0},
              {"whole vertices", 1.0, 3.0, 0.5},
              {"vertex to vertex, wrapping", 3.0, 1.0, 0.5}};
  for (const auto& row : rows) EXPECT_NEAR(square.get_area(row.ta, row.tb), row.area, 1e-15) << row.what;
  EXPECT_EQ(ZBR_POLYGON({{0, 0}, {1, 1}}).get_area(0.5, 0.5), 0.0);
  EXPECT_EQ(ZBR_POLYGON({{0, 0}, {1, 1}}).get_area(0.5, 1.5), 0.0);
  EXPECT_EQ(ZBR_POLYGON().get_area(), 0.0);
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

}  // namespace
