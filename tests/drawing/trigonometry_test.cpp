// Functions of angles against the C library's in long double, where they say how far they may be off.
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/trigonometry.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace zbr::drawing {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

double UnitsBetween(double value, double exact) {
  if (value == exact) return 0.0;
  return std::abs(value - exact) / (std::nextafter(std::abs(exact), kInf) - std::abs(exact));
}

// Of a quarter turn at most the C library is asked: MinGW's reduces larger angles by a pi of 66 bits.
struct Exact {
  explicit Exact(double angle) {
    constexpr long double kHigh = 0x1.921fb544p0L, kLow = 0x1.0b4611a62633145cp-34L;  // of a right angle
    const double quarters = std::nearbyint(angle / static_cast<double>(kHigh));
    const long double rest = angle - quarters * kHigh - quarters * kLow, s = std::sin(rest), c = std::cos(rest);
    const int turned = static_cast<int>(quarters) & 3;
    sin = turned == 0 ? s : turned == 1 ? c : turned == 2 ? -s : -c;
    cos = turned == 0 ? c : turned == 1 ? -s : turned == 2 ? -c : s;
  }
  long double sin, cos;
};

TEST(Trigonometry, IsWithinUnitsOfTheExactValue) {
  std::mt19937_64 random(1);
  const auto between = [&random](double low, double high) {
    return low + (high - low) * (static_cast<double>(random() >> 11) * 0x1p-53);
  };
  for (int i = 0; i < 20000; ++i) {
    const double angle = between(-30, 30), part = between(-1, 1), other = between(-1, 1) * std::ldexp(1.0, i % 60 - 30);
    const auto nearest = [](long double exact) { return static_cast<double>(exact); };
    const Exact exact(angle);
    EXPECT_LE(UnitsBetween(Sin(angle), nearest(exact.sin)), 1) << angle;
    EXPECT_LE(UnitsBetween(Cos(angle), nearest(exact.cos)), 1) << angle;
    EXPECT_LE(UnitsBetween(Tan(angle), nearest(exact.sin / exact.cos)), 3) << angle;
    EXPECT_LE(UnitsBetween(Atan2(part, other), nearest(std::atan2(static_cast<long double>(part), other))), 1)
        << part << ' ' << other;
    EXPECT_LE(UnitsBetween(Asin(part), nearest(std::asin(static_cast<long double>(part)))), 3) << part;
    EXPECT_LE(UnitsBetween(Acos(part), nearest(std::acos(static_cast<long double>(part)))), 3) << part;
    EXPECT_LE(UnitsBetween(Hypot(part, other), nearest(std::hypot(static_cast<long double>(part), other))), 2)
        << part << ' ' << other;
  }
}

TEST(Trigonometry, EndsOfTheRange) {
  const double values[] = {0.0, -0.0, 1, -1, 3, 0.125, 5e-324, -1e-310, 1e-300, 1e308, -1e308, kInf, -kInf, std::nan("")};
  for (const double y : values) {
    for (const double x : values) {
      const double exact = std::atan2(y, x), value = Atan2(y, x);
      EXPECT_EQ(std::isnan(value), std::isnan(exact)) << y << ' ' << x;
      if (std::isnan(exact)) continue;
      EXPECT_LE(UnitsBetween(value, exact), 1) << y << ' ' << x;
      EXPECT_EQ(std::signbit(value), std::signbit(exact)) << y << ' ' << x;
      EXPECT_LE(UnitsBetween(Hypot(y, x), std::hypot(y, x)), 2) << y << ' ' << x;
    }
  }
  EXPECT_TRUE(std::isnan(Sin(kInf)) && std::isnan(Cos(std::nan(""))));
  EXPECT_TRUE(std::signbit(Sin(-0.0)));
}

TEST(Trigonometry, PowersOfTenAndTheirExponents) {
  for (int n = -320; n <= 308; ++n) {
    EXPECT_EQ(DecimalExponent(PowerOfTen(n)), n);
    EXPECT_EQ(DecimalExponent(std::nextafter(PowerOfTen(n), 0.0)), n - 1);
  }
  EXPECT_EQ(PowerOfTen(22), 1e22);
  EXPECT_EQ(PowerOfTen(-22), 1e-22);
  EXPECT_EQ(PowerOfTen(400), kInf);
}

}  // namespace
}  // namespace zbr::drawing
