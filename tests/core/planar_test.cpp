// Points, corners, segments and areas at the places where a decision changes.
#include <gtest/gtest.h>

#include <cmath>

#include "literal/plane.h"
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
  for (const ZBR_PT& tiny : {ZBR_PT(0, 0), ZBR_PT(1e-101, 0)}) {
    ZBR_PT p = tiny;
    EXPECT_EQ(p.Normalize().Length(), 0.0);
  }
  ZBR_PT p(3, 4);
  p.Normalize();
  EXPECT_DOUBLE_EQ(p.x(), 0.6);
  EXPECT_DOUBLE_EQ(p.y(), 0.8);
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
  EXPECT_TRUE(info.isConvex);
  EXPECT_EQ(info.sinA, 1.0);
  EXPECT_EQ(info.cosA, 0.0);
  EXPECT_EQ(info.invLen2Prev, 0.25);
  EXPECT_EQ(info.invLen2Next, 0.0625);
  ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {2, 0}, info);
  EXPECT_TRUE(info.isConvex) << "straight on counts as convex";
}

TEST(Corner, PositionOfAPoint) {
  const struct {
    const char* what;
    ZBR_PT next;
    ZBR_PT p;
    int pos, side1, side2;
  } rows[] = {{"convex, inside", {1, 1}, {0.5, 0.5}, 1, 1, 1},
              {"convex, right of first", {1, 1}, {0.5, -0.5}, -1, -1, 1},
              {"convex, right of second", {1, 1}, {2, 0.5}, -1, 1, -1},
              {"convex, on first", {1, 1}, {0.5, 0}, 0, 0, 1},
              {"convex, on second", {1, 1}, {1, 0.5}, 0, 1, 0},
              {"reflex, left of first", {1, -1}, {0.5, 0.5}, 1, 1, -1},
              {"reflex, left of second", {1, -1}, {2, -0.5}, 1, -1, 1},
              {"reflex, outside", {1, -1}, {0.5, -0.5}, -1, -1, -1},
              {"reflex, on first", {1, -1}, {0.5, 0}, 0, 0, -1},
              {"straight, on the line", {2, 0}, {3, 0}, 0, 0, 0},
              {"straight, left", {2, 0}, {3, 1}, 1, 1, 1}};
  for (const auto& row : rows) {
    int side1 = 9;
    int side2 = 9;
    EXPECT_EQ(row.p.CheckPos({0, 0}, {1, 0}, row.next, side1, side2), row.pos) << row.what;
    EXPECT_EQ(side1, row.side1) << row.what;
    EXPECT_EQ(side2, row.side2) << row.what;
  }
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
  EXPECT_EQ(s1, 9);
  EXPECT_EQ(s2, 9);
  ZBR_3PT_INFO info;
  ZBR_PT::Get3PtInfo({0, 0}, {1, 0}, {0, 0}, info);
  EXPECT_EQ(p.CheckPos({0, 0}, {1, 0}, {0, 0}, info, s1, s2), -4);
  EXPECT_EQ(s1, 1);
  EXPECT_EQ(s2, -1);
}

TEST(Intersection, ParametersAndDeterminant) {
  double t = 9;
  double u = 9;
  double det = 9;
  EXPECT_TRUE(zbrIsIntersect({0, 0}, {2, 0}, {1, -1}, {1, 1}, &t, &u, &det));
  EXPECT_EQ(t, 0.5);
  EXPECT_EQ(u, 0.5);
  EXPECT_EQ(det, 4.0);
  EXPECT_TRUE(zbrIsIntersect({0, 0}, {2, 0}, {8, 1}, {8, 2}, &t, &u, nullptr)) << "infinite lines";
  EXPECT_EQ(t, 4.0);
  EXPECT_EQ(u, -1.0);
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
  } rows[] = {{{2, 0.5e-5}, true, true, 0.5}, {{2, 2e-5}, false, false, 9},   {{0, 0}, true, true, 0},
              {{-0.9e-5, 0}, true, true, -1}, {{4.00002, 0}, false, true, 2}, {{4, 0.9e-5}, true, true, 1}};
  for (const auto& row : rows) {
    ZBR_PT foot(9, 9);
    double t = 9;
    EXPECT_EQ(zbrIsOnSeg(row.p, a, b, &foot, &t), row.on) << row.p.x() << ' ' << row.p.y();
    EXPECT_EQ(zbrIsOnSeg(row.p, a, b, nullptr, nullptr), row.on);
    EXPECT_EQ(foot.x() != 9, row.written);
    if (row.t == -1 || row.t == 2) {
      EXPECT_TRUE(t < 0 || t > 1);
    } else {
      EXPECT_EQ(t, row.t);
    }
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

// Random points on and beside random corners and segments: all decisions equal to the literal ones, to the bit.
TEST(Planar, AgreesWithLiteralForm) {
  int onBoundary = 0;
  for (int i = 0; i < Scaled(20000); ++i) {
    Random random(static_cast<std::uint64_t>(i));
    const literal::Tol tol(std::ldexp(1.0, -Below(random, 40)));
    const ZBR_TmpEps guard(tol.eps);
    const bool coarse = Below(random, 2) == 0;
    const auto draw = [&] { return coarse ? ZBR_PT(Below(random, 4), Below(random, 4)) : ZBR_PT(Unit(random), Unit(random)); };
    const ZBR_PT a = draw();
    const ZBR_PT b = draw();
    const ZBR_PT c = draw();
    const ZBR_PT p = Below(random, 2) == 0 ? draw() : a + (b - a) * Unit(random);
    SCOPED_TRACE(testing::Message() << "seed " << i);
    ASSERT_EQ(a == b, literal::Same(a, b, tol));
    ASSERT_EQ(p.CheckPos(a, b), literal::SideOfLine(p, a, b, tol));
    double t = 9;
    double expectedT = 9;
    ASSERT_EQ(zbrIsOnSeg(p, a, b, nullptr, &t), literal::OnSegment(p, a, b, &expectedT, tol));
    ASSERT_EQ(t, expectedT);
    const Ring ring = {a, b, c, p};
    const double ta = Below(random, 8) * 0.5;
    const double tb = coarse ? Below(random, 8) * 0.5 : 4.0 * Unit(random);
    ASSERT_EQ(ZBR_POLYGON(ring).get_area(a, c, ta, tb), literal::StripArea(ring, a, c, ta, tb, tol));
    if (a == b || b == c) continue;
    int side1 = 9;
    int side2 = 9;
    int expectedSide = 9;
    ZBR_3PT_INFO info;
    ZBR_PT::Get3PtInfo(a, b, c, info);
    const int pos = p.CheckPos(a, b, c, info, side1, side2);
    ASSERT_EQ(pos, literal::Corner(a, b, c, tol).Position(p, expectedSide, tol));
    ASSERT_EQ(side2, expectedSide);
    onBoundary += pos == 0 ? 1 : 0;
  }
  EXPECT_GT(onBoundary, 100);
}

}  // namespace
