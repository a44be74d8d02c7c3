// Spatial points, planes and lines at the places where a decision changes.
#include <gtest/gtest.h>

#include <cmath>

#include <zbr/spatial.h>
#include <zbr/tolerance.h>

namespace {

constexpr double kEps = 1e-5;
constexpr double kEps2 = kEps * kEps;

bool Exactly(const ZBR_PT3& a, const ZBR_PT3& b) {
  return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}

TEST(SpatialPoint, TolerantComparisons) {
  const ZBR_PT3 o;
  EXPECT_TRUE(o == ZBR_PT3(0, 0, 0.99 * kEps));
  EXPECT_FALSE(o != ZBR_PT3(0, 0, 0.99 * kEps));
  EXPECT_FALSE(o == ZBR_PT3(0, 0, 1.01 * kEps));
  EXPECT_TRUE(o != ZBR_PT3(0.8 * kEps, 0.8 * kEps, 0));
  EXPECT_TRUE(ZBR_PT3(0, 0, NAN) != ZBR_PT3(0, 0, NAN));
  EXPECT_TRUE(ZBR_PT3(kEps, 0, 0).IsZero2());  // inclusive
  EXPECT_FALSE(ZBR_PT3(0, 2 * kEps, 0).IsZero2());
  EXPECT_TRUE(ZBR_PT3(0, 0.5 * kEps2, 0).IsZero4());
  EXPECT_FALSE(ZBR_PT3(0, 2 * kEps2, 0).IsZero4());
  EXPECT_FALSE(ZBR_PT3(0, 0, 1e-300).IsZero());
  const ZBR_TmpEps none(0.0);
  EXPECT_TRUE(o.IsZero2());   // inclusive
  EXPECT_FALSE(o.IsZero4());  // strict
}

TEST(SpatialPoint, NormalisingAndDividing) {
  EXPECT_TRUE(Exactly(ZBR_PT3(1e-101, 0, 0).Normalize(), {0, 0, 0}));
  EXPECT_TRUE(Exactly(ZBR_PT3(1e-99, 0, 0).Normalize(), {1, 0, 0}));
  EXPECT_TRUE(Exactly(ZBR_PT3(0, 3, 4).Unit(), {0, 0.6, 0.8}));
  ZBR_PT3 p(2, 4, 6);
  EXPECT_TRUE(Exactly(p / -2.0, {-1, -2, -3}) && Exactly(p /= 2.0, {1, 2, 3}));
  EXPECT_TRUE(Exactly(p /= -2.0, {0, 0, 0}));  // made for lengths
}

TEST(SpatialPoint, SideOfProjectedLine) {
  const ZBR_PT3 a(0, 0, 5);
  const ZBR_PT3 b(1, 0, -9);
  EXPECT_EQ(ZBR_PT3(0.5, 2 * kEps, 100).CheckPos(a, b), 1);
  EXPECT_EQ(ZBR_PT3(9, -2 * kEps, 0).CheckPos(a, b), -1);
  EXPECT_EQ(ZBR_PT3(0.5, 0.5 * kEps, 0).CheckPos(a, b), 0);
  EXPECT_EQ(ZBR_PT3(0.5, 1, 0).CheckPos(a, a), -2);
  EXPECT_EQ(ZBR_PT3(0.5, 1, 0).CheckPos({0, 0, 0}, {0, 0, 1}), 0);  // seen end-on: a line without direction
}

TEST(SpatialPoint, CosinesAndPseudoCosines) {
  const ZBR_PT3 o;
  const ZBR_PT3 x(1, 0, 0);
  const ZBR_PT3 up(0, 0, 1);
  EXPECT_EQ(x.cos({-3, 0, 0}), -1.0);
  EXPECT_EQ(x.cos({0.5 * kEps2, 0, 0}), 0.0);  // the product of lengths is below eps2
  EXPECT_EQ(x.cos({2 * kEps2, 0, 0}), 1.0);
  EXPECT_EQ(o.cosXY({1, 0, 7}, {0, 1, -7}), 0.0);
  EXPECT_EQ(o.pseudo_cos(x, {0, 1, 0}, up), 0.0);
  EXPECT_EQ(o.pseudo_cos(x, {0, -1, 0}, up), -2.0);
  EXPECT_EQ(o.pseudo_cos(x, {-1, 0, 0}, up), -1.0);
  EXPECT_TRUE(std::isnan(o.pseudo_cos(o, x, up)));
  EXPECT_EQ(o.pseudo_cosXY(o, x), 0.0);
  // The form with two points runs the other way round.
  EXPECT_EQ(x.pseudo_cosXY({0, 1, 0}), 0.0);
  EXPECT_EQ(x.pseudo_cosXY({0, -1, 0}), -2.0);
  EXPECT_EQ(o.pseudo_cosXY(x, {0, 1, 0}), -2.0);
  EXPECT_EQ(o.pseudo_cosXY(x, {0, -1, 0}), 0.0);
  double last = 2.0;
  for (int k = 0; k < 24; ++k) {
    const double angle = (k + 0.5) * 2.0 * M_PI / 24;
    const double value = o.pseudo_cosXY(x, {std::cos(-angle), std::sin(-angle), 0.1 * k});
    EXPECT_LT(value, last) << k;
    EXPECT_GE(value, -3.0);
    last = value;
  }
}

TEST(SpatialPoint, WedgesAndTriangles) {
  const ZBR_PT3 b;
  const ZBR_PT3 east(4, 0, 1);
  const ZBR_PT3 north(0, 4, -1);
  EXPECT_TRUE(ZBR_PT3(1, 1, 9).insideXY(north, b, east));  // the quarter from c to a
  EXPECT_TRUE(ZBR_PT3(0.2, 0.2, 9).insideXY({0, 0.5, 0}, b, {0.5, 0, 0}));
  EXPECT_FALSE(ZBR_PT3(1, 1, 9).insideXY(east, b, north));  // the other three
  EXPECT_TRUE(ZBR_PT3(-1, 1, 9).insideXY(east, b, north));
  EXPECT_FALSE(ZBR_PT3(1, 0, 0).insideXY(north, b, east));
  EXPECT_FALSE(ZBR_PT3(-1, 1, 0).insideXY({-4, 0, 0}, b, east));  // straight

  // b -> c -> a counter-clockwise: the edge c-a belongs to the triangle, the other two do not.
  const ZBR_PT3 at[] = {{1, 1, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}, {3, 3, 0}};
  const bool inside[] = {true, true, false, false, false};
  for (int k = 0; k < 5; ++k) {
    EXPECT_EQ(at[k].inTriangleXY(north, b, east), inside[k]) << k;
    EXPECT_EQ(at[k].inTriangleXY_CCL(north, b, east), inside[k]) << k;
    EXPECT_FALSE(at[k].inTriangleXY(east, b, north)) << k;
  }
}

TEST(Plane, SettingAndValidity) {
  ZBR_Plane plane;
  EXPECT_FALSE(plane.IsValid());
  EXPECT_TRUE(plane.Set({0, 0, 2}, 4));
  EXPECT_TRUE(Exactly(plane.normal(), {0, 0, 1}));
  EXPECT_EQ(plane.distance(), 2.0);
  EXPECT_EQ(plane.distance({5, 6, -2}), 0.0);
  EXPECT_FALSE(plane.Set({0, 0, 0}, {1, 1, 1}, {2, 2, 2}));
  EXPECT_FALSE(plane.IsValid());
  EXPECT_FALSE(plane.Set(0, 0, 0.9 * kEps2, 1));
  EXPECT_TRUE(plane.Set(0, 0, 1.1 * kEps2, 0));
  EXPECT_TRUE(plane.Set({1, 0, 7}, {2, 0, 7}, {1, 1, 7}));
  EXPECT_TRUE(Exactly(plane.normal(), {0, 0, 1}));
  EXPECT_EQ(plane.distance(), -7.0);
  EXPECT_TRUE(Exactly((plane += ZBR_PT3(3, 4, 1)).GetNearest({1, 2, 9}), {1, 2, 8}));
}

TEST(Plane, SidesAndIntersections) {
  ZBR_Plane plane;
  plane.Set({0, 0, 1}, 0);
  EXPECT_EQ(plane.pos({9, 9, kEps}), ZBR_Plane::POS_ON);
  EXPECT_EQ(plane.pos({9, 9, 1.5 * kEps}), ZBR_Plane::POS_FRONT);
  EXPECT_EQ(plane.pos({9, 9, -1.5 * kEps}), ZBR_Plane::POS_BACK);
  ZBR_PT3 p(7, 7, 7);
  double t = 7;
  EXPECT_FALSE(plane.GetIntersection({0, 0, 1}, {1, 0, 1}, &p, &t));
  EXPECT_TRUE(Exactly(p, {7, 7, 7}));
  EXPECT_EQ(t, 7.0);
  EXPECT_TRUE(plane.GetIntersection({1, 0, 4}, {2, 0, 2}, &p, &t));
  EXPECT_TRUE(Exactly(p, {3, 0, 0}));
  EXPECT_EQ(t, 2.0);
  EXPECT_TRUE(plane.GetIntersection({1, 0, 4}, {2, 0, 2}, &p, nullptr));
}

TEST(SpatialLines, DroppingACoordinate) {
  EXPECT_EQ(zbrDropType({1, 1, 1}), ZBR_DROP_X);
  EXPECT_EQ(zbrDropType({0, 2, 2}), ZBR_DROP_Y);
  EXPECT_EQ(zbrDropType({2, 0, 2}), ZBR_DROP_X);
  EXPECT_EQ(zbrDropType({1, -3, 3.5}), ZBR_DROP_Z);
  EXPECT_EQ(zbrDropType({0, 0, 0}), ZBR_DROP_X);
  const double kept[3][2] = {{2, 3}, {3, 1}, {1, 2}};
  ZBR_PT p;
  for (int k = 0; k < 3; ++k) {
    zbrDropPt(&p, {1, 2, 3}, static_cast<ZBR_DROP_TYPE>(k));
    EXPECT_EQ(p.x(), kept[k][0]);
    EXPECT_EQ(p.y(), kept[k][1]);
  }
  zbrDropPt(&p, {7, 7, 7}, static_cast<ZBR_DROP_TYPE>(3));
  EXPECT_EQ(p.x(), 1.0);
}

TEST(SpatialLines, Relations) {
  ZBR_PT3 pa(7, 7, 7);
  ZBR_PT3 pb;
  double ta = 7;
  double tb = 7;
  const ZBR_PT3 o;
  const ZBR_PT3 x(1, 0, 0);
  EXPECT_EQ(zbrIsIntersect(o, x, {5, 0, 0}, {3, 0, 0}, &pa, &pb, &ta, &tb), ZBR_LL_SAME);
  EXPECT_EQ(zbrIsIntersect(o, x, {0, 1, 0}, {1, 1, 0}, &pa, &pb, &ta, &tb), ZBR_LL_PARALLEL);
  EXPECT_EQ(zbrIsIntersect(o, x, {0, 1, 0}, {0, 1, 0}, &pa, &pb, &ta, &tb), ZBR_LL_PARALLEL);  // b has no direction: a's counts
  EXPECT_EQ(zbrIsIntersect(o, o, {0, 1, 0}, {0, 1, 0}, &pa, &pb, &ta, &tb), ZBR_LL_SAME);
  EXPECT_EQ(ta, 7.0);
  EXPECT_TRUE(Exactly(pa, {7, 7, 7}));
  for (const double z : {0.0, 0.5 * kEps, 1.0}) {
    const ZBR_LL_RELATION expected = z < kEps ? ZBR_LL_CROSS : ZBR_LL_SKEW;
    EXPECT_EQ(zbrIsIntersect(o, x, {0.5, -1, z}, {0.5, 1, z}, &pa, &pb, &ta, &tb), expected);
    EXPECT_TRUE(Exactly(pa, {0.5, 0, 0}) && Exactly(pb, {0.5, 0, z}));
    EXPECT_EQ(ta, 0.5);
    EXPECT_EQ(tb, 0.5);
    EXPECT_EQ(zbrIsIntersect(o, x, {0.5, -1, z}, {0.5, 1, z}, nullptr, nullptr, nullptr, nullptr), expected);
  }
  EXPECT_EQ(zbrIsIntersect(o, x, {3, 2, 0}, {3, 1, 0}, nullptr, nullptr, &ta, &tb), ZBR_LL_CROSS);
  EXPECT_EQ(ta, 3.0);  // not limited
  EXPECT_EQ(tb, 2.0);
}

TEST(SpatialLines, PointOnSegment) {
  const ZBR_PT3 a(0, 0, 3);
  const ZBR_PT3 b(0, 0, 5);
  ZBR_PT3 foot(7, 7, 7);
  double t = 7;
  EXPECT_TRUE(zbrIsOnSeg(a, a, a, &foot, &t));
  EXPECT_FALSE(zbrIsOnSeg(b, a, a, &foot, &t));
  EXPECT_EQ(t, 7.0);
  EXPECT_TRUE(zbrIsOnSeg({0, 0, 5 + 0.5 * kEps}, a, b, nullptr, nullptr));
  EXPECT_FALSE(zbrIsOnSeg({0, 0, 5 + 2 * kEps}, a, b, nullptr, nullptr));
  EXPECT_TRUE(zbrIsOnSeg({0.5 * kEps, 0, 4}, a, b, &foot, &t));
  EXPECT_FALSE(zbrIsOnSeg({1, 0, 6}, a, b, &foot, &t));
  EXPECT_TRUE(Exactly(foot, {0, 0, 6}));  // written whatever the answer
  EXPECT_EQ(t, 1.5);
  EXPECT_TRUE(Exactly(zbrGetOnLinePt({5, 5, 4}, a, b), {0, 0, 4}));
  EXPECT_EQ(zbrGetOnLineParameter({5, 5, 2}, a, b), -0.5);
}

}  // namespace
