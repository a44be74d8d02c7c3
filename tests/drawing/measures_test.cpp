// Sizes of regions against closed forms, and against the same shape drawn as a spline.
#include <gtest/gtest.h>
#include <zbr-drawing/affine.h>
#include <zbr-drawing/contours.h>
#include <zbr-drawing/measures.h>

#include <cmath>
#include <memory>

namespace {

using namespace zbr::drawing;

constexpr double kPi = 3.141592653589793;

Path Ellipse(double a, double b) {
  Path path;
  Curve curve;
  curve.u.Set(a, 0);
  curve.v.Set(0, b);
  curve.t1 = 2 * kPi;
  path.points = {curve.At(0)};
  path.curves = {curve};
  path.closed = true;
  return path;
}

// The same as a rational spline of four quarters.
Path EllipseAsSpline(double a, double b) {
  auto spline = std::make_shared<Spline>();
  spline->degree = 2;
  spline->control = {{a, 0}, {a, b}, {0, b}, {-a, b}, {-a, 0}, {-a, -b}, {0, -b}, {a, -b}, {a, 0}};
  const double w = std::sqrt(0.5);
  spline->weights = {1, w, 1, w, 1, w, 1, w, 1};
  spline->knots = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
  Path path;
  Curve curve;
  curve.t1 = 4;
  curve.spline = spline;
  path.points = {{a, 0}};
  path.curves = {curve};
  path.closed = true;
  return path;
}

CurvedRegion RegionOf(const std::vector<Path>& paths, const Affine& map) {
  Drawing drawing;
  drawing.paths = paths;
  for (Path& path : drawing.paths) Map(path, map);
  const Extent extent = ExtentOf(drawing);
  return CurvedShape(MakeRegion(MakeContours(std::move(drawing), WithDefaults({-1, -1}, extent))));
}

void ExpectClose(double value, double expected, double digits = 1e-12) {
  EXPECT_NEAR(value, expected, digits * std::abs(expected));
}

// A ring between an ellipse and a circle in it, turned and far away: moments about the centroid are those in place, turned.
TEST(Measures, RingsFarFromTheOriginAsArcsAndAsSplines) {
  const double a = 5, b = 3, r = 1;
  const double area = kPi * (a * b - r * r), ix = kPi / 4 * (a * b * b * b - 1), iy = kPi / 4 * (b * a * a * a - 1);
  const double degrees = 30, c = std::cos(kPi / 6), s = std::sin(kPi / 6);
  const Affine map = Affine::Move({3000, -2000}).After(Affine::Turn(degrees));
  for (const bool isSpline : {false, true}) {
    const Path outer = isSpline ? EllipseAsSpline(a, b) : Ellipse(a, b), hole = isSpline ? EllipseAsSpline(r, r) : Ellipse(r, r);
    const CurvedRegion region = RegionOf({outer, hole}, map);
    const RegionMeasures measures = MeasuresOf(region);
    ExpectClose(measures.area, area);
    EXPECT_EQ(measures.area, region.Area());
    ExpectClose(measures.perimeter, 25.526998863398124 + 2 * kPi);  // 4 a E(1 - b b / a a)
    ExpectClose(measures.centroid.x(), 3000);
    ExpectClose(measures.centroid.y(), -2000);
    ExpectClose(measures.ix, ix * c * c + iy * s * s, 1e-10);
    ExpectClose(measures.iy, iy * c * c + ix * s * s, 1e-10);
    ExpectClose(measures.ixy, (iy - ix) * s * c, 1e-10);
    const Extent box = TrueExtentOf(region);
    ExpectClose(box.xmax - 3000, std::hypot(a * c, b * s), 1e-11);
    ExpectClose(box.ymin + 2000, -std::hypot(a * s, b * c), 1e-11);
  }
}

TEST(Measures, StraightEdgesAndAnArc) {
  Path half = Ellipse(2, 2);
  half.curves[0].t1 = kPi;
  half.points.push_back({-2, 0});
  const CurvedRegion region = RegionOf({half}, {});
  const RegionMeasures measures = MeasuresOf(region);
  ExpectClose(measures.area, 2 * kPi);
  ExpectClose(measures.perimeter, 4 + 2 * kPi);
  ExpectClose(measures.centroid.y(), 8 / (3 * kPi));
  ExpectClose(measures.ix, 2 * kPi - 2 * kPi * measures.centroid.y() * measures.centroid.y(), 1e-11);
  EXPECT_EQ(TrueExtentOf(region).ymin, 0);
}

// A curve with next to no width: its length is that of the way to and fro.
TEST(Measures, LengthOfANearlyFlatEllipse) {
  ExpectClose(MeasuresOf(RegionOf({Ellipse(1, 1e-5)}, {})).perimeter, 4, 1e-8);
}

TEST(Measures, NothingAndNoArea) {
  EXPECT_EQ(MeasuresOf(CurvedRegion()).perimeter, 0);
  CurvedRegion flat;
  flat.rings.AddRing({{1, 1}, {3, 1}});
  const RegionMeasures measures = MeasuresOf(flat);
  EXPECT_EQ(measures.perimeter, 4);
  EXPECT_EQ(measures.centroid.x(), 2);
  EXPECT_EQ(measures.ix, 0);
}

}  // namespace
