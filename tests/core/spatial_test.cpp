// Spatial points and planes. By named case: data/predicates.txt.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include <zbr/spatial.h>
#include <zbr/tolerance.h>

namespace {

constexpr double kEps = 1e-5;
constexpr double kEps2 = kEps * kEps;

bool Exactly(const ZBR_PT3& a, const ZBR_PT3& b) {
  return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}

TEST(SpatialPoint, DividingAndDropping) {
  ZBR_PT3 p(2, 4, 6);
  EXPECT_TRUE(Exactly(p / -2.0, {-1, -2, -3}) && Exactly(p /= 2.0, {1, 2, 3}));
  ZBR_PT kept[4];
  for (int k = 0; k < 4; ++k) zbrDropPt(&kept[k], p, static_cast<ZBR_DROP_TYPE>(k));
  EXPECT_TRUE(kept[0].x() == 2 && kept[0].y() == 3 && kept[1].x() == 3 && kept[1].y() == 1 && kept[2].x() == 1 && kept[2].y() == 2);
  EXPECT_EQ(kept[3].x(), 0.0);                 // not written
  EXPECT_TRUE(Exactly(p /= -2.0, {0, 0, 0}));  // made for lengths
}

TEST(SpatialPoint, PseudoCosinesFallAllTheWayRound) {
  double last = 2.0;
  for (int k = 0; k < 24; ++k) {
    const double angle = (k + 0.5) * 2.0 * std::numbers::pi / 24;
    const double value = ZBR_PT3().pseudo_cosXY({1, 0, 0}, {std::cos(-angle), std::sin(-angle), 0.1 * k});
    EXPECT_TRUE(value < last && value >= -3.0) << k;
    last = value;
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

}  // namespace
