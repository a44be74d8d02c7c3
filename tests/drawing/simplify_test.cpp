// Fewer points within a tolerance: what is left is valid, near, and nests as before.
#include <gtest/gtest.h>
#include <zbr-drawing/contours.h>
#include <zbr-drawing/region.h>

#include <cmath>
#include <cstdlib>
#include <random>

namespace {

using namespace zbr::drawing;

double DistanceTo(const ZBR_REGION& region, const ZBR_PT& p) {
  double nearest = 1e300;
  for (std::size_t r = 0; r < region.ring_count(); ++r) {
    const int first = region.ring_offsets()[r], end = region.ring_offsets()[r + 1];
    for (int i = first; i < end; ++i) {
      const ZBR_PT& a = region.points()[static_cast<std::size_t>(i)];
      const ZBR_PT d = region.points()[static_cast<std::size_t>(i + 1 < end ? i + 1 : first)] - a;
      const double part = std::clamp((p - a).InnerProduct(d) / d.Length2(), 0.0, 1.0);
      nearest = std::min(nearest, p.Distance(a + d * part));
    }
  }
  return nearest;
}

// A star of many points, and within it smaller ones that nearly touch it.
TEST(Simplified, RandomStarsStayValidAndNear) {
  const char* const scale = std::getenv("ZBR_TEST_SCALE");
  const int runs = scale != nullptr ? 60 * std::atoi(scale) : 60;
  std::size_t before = 0, after = 0, kept = 0;
  for (int seed = 0; seed < runs; ++seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    const auto between = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); };
    Drawing drawing;
    for (const double radius : {10.0, 9.4, 5.0, 0.3}) {
      Path& ring = drawing.paths.emplace_back();
      ring.closed = true;
      constexpr int kPoints = 60;
      const double shift = radius < 1 ? 9.8 : 0.0;
      for (int i = 0; i < kPoints; ++i) {
        const double angle = 2 * 3.141592653589793 * i / kPoints, r = radius * between(0.97, 1.0);
        ring.points.emplace_back(shift + r * std::cos(angle), r * std::sin(angle));
      }
    }
    const CurvedRegion region = CurvedShape(MakeRegion(MakeContours(drawing, {})));
    const double tolerance = between(0.01, 1.0);
    const CurvedRegion simplified = Simplified(region, tolerance);
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(simplified.rings.view(), faults);
    ASSERT_TRUE(faults.empty()) << seed;
    std::vector<std::int32_t> depths, depthsBefore, parents, parentsBefore;
    zbrNestRegion(region.rings.view(), depthsBefore, parentsBefore);
    zbrNestRegion(simplified.rings.view(), depths, parents);
    ASSERT_EQ(parents, parentsBefore) << seed;
    for (const ZBR_PT& p : region.rings.points()) ASSERT_LE(DistanceTo(simplified.rings, p), tolerance) << seed;
    before += region.rings.point_count();
    after += simplified.rings.point_count();
    for (std::size_t r = 0; r < parents.size(); ++r) {
      const auto count = [&](const CurvedRegion& of) { return of.rings.ring_offsets()[r + 1] - of.rings.ring_offsets()[r]; };
      kept += count(region) == count(simplified) ? 1 : 0;
    }
  }
  EXPECT_LT(after, before * 2 / 3);
  EXPECT_GT(kept, 0U) << "no ring was ever at fault";
}

TEST(Simplified, CurvesStay) {
  Drawing drawing;
  Path& path = drawing.paths.emplace_back();
  path.closed = true;
  path.points = {{0, 0}, {5, 0.01}, {10, 0}, {10, 4}, {5, 4.01}, {0, 4}};
  Curve arc;
  arc.centre.Set(10, 2);
  arc.u.Set(2, 0);
  arc.v.Set(0, 2);
  arc.at = 2;
  arc.t0 = -1.5707963267948966;
  arc.t1 = 1.5707963267948966;
  path.curves = {arc};
  const CurvedRegion region = CurvedShape(MakeRegion(MakeContours(drawing, {1e-3, 0})));
  const std::vector<Path> outlines = OutlinesOf(Simplified(region, 0.1));
  ASSERT_EQ(outlines.size(), 1U);
  EXPECT_EQ(outlines[0].points.size(), 4U);
  ASSERT_EQ(outlines[0].curves.size(), 1U);
  EXPECT_EQ(outlines[0].curves[0].u.Length(), 2);
}

}  // namespace
