// Circles fitted to points that are off: no circle nearby is closer to them.
#include "drawing/curves/circle_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace zbr::drawing;

double SumOfSquares(const Circle& circle, const std::vector<ZBR_PT3>& points) {
  double sum = 0.0;
  for (const ZBR_PT3& p : points) sum += std::pow((p - circle.centre).Length() - circle.radius, 2);
  return sum;
}

TEST(CircleFit, NoCircleNearbyIsCloser) {
  for (const double angle : {0.3, 1.0, 3.0, 6.0}) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
      std::mt19937 engine(seed);
      const auto random = [&] { return static_cast<double>(engine()) / 4294967296.0; };
      const ZBR_PT3 x(0.6, 0.0, 0.8), y(0.0, 1.0, 0.0), centre(3, -2, 5);
      std::vector<ZBR_PT3> points;
      for (int i = 0; i <= 30; ++i) {
        const double t = 1.0 + angle * i / 30.0, radius = 10.0 + 1e-3 * (random() - 0.5);
        points.push_back(centre + x * (radius * std::cos(t)) + y * (radius * std::sin(t)));
      }
      const Circle fitted = FitCircle(points);
      const double least = SumOfSquares(fitted, points);
      EXPECT_LT(least, SumOfSquares({centre, fitted.axis, 10.0}, points)) << "angle " << angle << ", seed " << seed;
      for (int k = 0; k < 40; ++k) {
        const ZBR_PT3 off = x * (1e-3 * (random() - 0.5)) + y * (1e-3 * (random() - 0.5));
        const Circle nearby{fitted.centre + off, fitted.axis, fitted.radius + 1e-3 * (random() - 0.5)};
        EXPECT_GE(SumOfSquares(nearby, points), least) << "angle " << angle << ", seed " << seed;
      }
    }
  }
}

}  // namespace
