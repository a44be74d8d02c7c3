// The thread's tolerance: every predicate at its bounds, guards.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zbr/tolerance.h>

namespace {

constexpr double kEps = 1e-5;
constexpr double kEps2 = kEps * kEps;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
double Above(double x) {
  return std::nextafter(x, kInf);
}
double Below(double x) {
  return std::nextafter(x, -kInf);
}

// E, L and G as they must come out; NE, GE and LE are their complements, with NaN too.
struct Answers {
  bool e, l, g, ne, ge, le;
};
void Expect(const Answers& got, bool e, bool l, bool g) {
  EXPECT_TRUE(got.e == e && got.l == l && got.g == g && got.ne == !e && got.ge == !l && got.le == !g)
      << got.e << got.l << got.g << got.ne << got.ge << got.le;
}
void ExpectPredicates(double a, bool e, bool l, bool g) {
  SCOPED_TRACE(a);
  Expect({zbr_EpsE(a), zbr_EpsL(a), zbr_EpsG(a), zbr_EpsNE(a), zbr_EpsGE(a), zbr_EpsLE(a)}, e, l, g);
}
void ExpectPredicates2(double a, bool e, bool l, bool g) {
  SCOPED_TRACE(a);
  Expect({zbr_EpsE2(a), zbr_EpsL2(a), zbr_EpsG2(a), zbr_EpsNE2(a), zbr_EpsGE2(a), zbr_EpsLE2(a)}, e, l, g);
}
void ExpectPredicates(double a, double b, bool e, bool l, bool g) {
  SCOPED_TRACE(testing::Message() << a << " against " << b);
  Expect({zbr_EpsE(a, b), zbr_EpsL(a, b), zbr_EpsG(a, b), zbr_EpsNE(a, b), zbr_EpsGE(a, b), zbr_EpsLE(a, b)}, e, l, g);
}

// The tolerance in force, recovered through the predicates.
bool EpsIs(double e) {
  return zbr_EpsE(e) && !zbr_EpsE(Above(e)) && zbr_EpsE2(e * e) && !zbr_EpsE2(Above(e * e));
}

TEST(Tolerance, ClosedBandOpenOutside) {
  ExpectPredicates(kEps, true, false, false);
  ExpectPredicates(-kEps, true, false, false);
  ExpectPredicates(Above(kEps), false, false, true);
  ExpectPredicates(Below(-kEps), false, true, false);
  ExpectPredicates2(kEps2, true, false, false);
  ExpectPredicates2(-kEps2, true, false, false);
  ExpectPredicates2(Above(kEps2), false, false, true);
  ExpectPredicates2(Below(-kEps2), false, true, false);
  const double b = 1.0;
  ExpectPredicates(b + kEps, b, true, false, false);
  ExpectPredicates(b - kEps, b, true, false, false);
  ExpectPredicates(Above(b + kEps), b, false, false, true);
  ExpectPredicates(Below(b - kEps), b, false, true, false);
}

TEST(Tolerance, NaNFailsEveryStrictTest) {
  ExpectPredicates(kNaN, false, false, false);
  ExpectPredicates2(kNaN, false, false, false);
  ExpectPredicates(kNaN, 1.0, false, false, false);
  ExpectPredicates(1.0, kNaN, false, false, false);
}

TEST(Tolerance, SettingTakesTheMagnitude) {
  const ZBR_TmpEps keep(kEps);
  zbrSetEps(-0.001);
  EXPECT_TRUE(EpsIs(0.001));
  zbrSetEps(0.0);
  ExpectPredicates(0.0, true, false, false);
  ExpectPredicates(-0.0, true, false, false);
  ExpectPredicates(5e-324, false, false, true);
  ExpectPredicates(-5e-324, false, true, false);
  zbrSetEps(kInf);
  ExpectPredicates(1e308, true, false, false);
  zbrSetEps(kNaN);
  ExpectPredicates(0.0, false, false, false);
}

TEST(Tolerance, GuardsNestAndRestore) {
  ASSERT_TRUE(EpsIs(kEps));
  {
    const ZBR_TmpEps outer(-0.5);
    EXPECT_TRUE(EpsIs(0.5));
    {
      const ZBR_ScaleEps scaled(-10.0);
      EXPECT_TRUE(EpsIs(5.0));
      const ZBR_TmpEps inner(1e-9);
      EXPECT_TRUE(EpsIs(1e-9));
    }
    EXPECT_TRUE(EpsIs(0.5));
  }
  EXPECT_TRUE(EpsIs(kEps));
}

TEST(Tolerance, AssignedGuardRestoresWhatTheOtherSaved) {
  ASSERT_TRUE(EpsIs(kEps));
  {
    ZBR_TmpEps first(0.25);
    const ZBR_TmpEps second(0.125);  // saved 0.25
    first = second;
  }
  EXPECT_TRUE(EpsIs(0.25));
  zbrSetEps(kEps);
}

}  // namespace
