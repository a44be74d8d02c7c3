// On which side of a plane a point lies, never in doubt.
//
// Points are put on a grid so fine that a model in double precision hardly notices: whole numbers of up to 50 binary digits.
// Differences of their coordinates are exact then, the determinant of three of them is computed with a known error, and where
// that error could change the sign it is summed up exactly as an expansion (Shewchuk 1997). The numbers neither overflow nor
// vanish.
#pragma once

#include <zbr/spatial.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace zbr::drawing {

// Whole numbers; a type of its own, so that points off the grid are not taken for it.
struct GridPoint {
  double x = 0.0, y = 0.0, z = 0.0;
};

inline GridPoint Lowest(const GridPoint& a, const GridPoint& b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}
inline GridPoint Highest(const GridPoint& a, const GridPoint& b) {
  return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

// Rounding of the nine products and five sums of a determinant of differences, in parts of the sum of the absolute values; rounded
// up.
inline constexpr double kDeterminantError = 8.0 / 9007199254740992.0;  // 8 * 2^-53

// The points on the grid, relative to a point near their middle.
std::vector<GridPoint> OnGrid(const std::vector<ZBR_PT3>& points, const ZBR_PT3& low, const ZBR_PT3& high);

// Six times the volume of the tetrahedron, positive when a, b, c are counter-clockwise seen from d. The sign is exact, and so is a
// zero; the value is good to a few digits where it is hardly larger than the rounding of its terms, else to nearly all.
double Volume6(const GridPoint& a, const GridPoint& b, const GridPoint& c, const GridPoint& d);

// The plane through three points, for asking on which side several points lie. Most are far from it, and that is seen with a third
// of the work.
class PlaneThrough {
 public:
  PlaneThrough(const GridPoint& a, const GridPoint& b, const GridPoint& c) : a_(a) {
    const double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z, vx = c.x - a.x, vy = c.y - a.y, vz = c.z - a.z;
    Set(uy * vz, uz * vy, normal_.x, error_.x);
    Set(uz * vx, ux * vz, normal_.y, error_.y);
    Set(ux * vy, uy * vx, normal_.z, error_.z);
  }

  // The sign of Volume6, or 0 where rounding does not let it be told.
  int SideIfClear(const GridPoint& d) const {
    const double x = d.x - a_.x, y = d.y - a_.y, z = d.z - a_.z;
    const double value = x * normal_.x + y * normal_.y + z * normal_.z;
    const double error = std::abs(x) * error_.x + std::abs(y) * error_.y + std::abs(z) * error_.z;
    return (value > error) - (value < -error);
  }

  // Whether nothing was rounded and the point lies in the plane, as points of faces across an axis do.
  bool IsSurelyOn(const GridPoint& d) const {
    const auto isNothing = [](double distance, double error) { return (distance == 0) | (error == 0); };
    const double x = d.x - a_.x, y = d.y - a_.y, z = d.z - a_.z;
    return isNothing(x, error_.x) && isNothing(y, error_.y) && isNothing(z, error_.z);
  }

  // The CrossSign of the plane's sides, or 0 in doubt.
  int CrossSignIfClear() const {
    for (const auto& [normal, error] : {std::pair(normal_.x, error_.x), {normal_.y, error_.y}, {normal_.z, error_.z}}) {
      if (error != 0) return (normal > error) - (normal < -error);
    }
    return 0;
  }

  // The cross product of two sides, and how far it is off at most.
  const GridPoint& Normal() const { return normal_; }
  const GridPoint& NormalError() const { return error_; }

 private:
  static void Set(double p, double q, double& normal, double& error) {
    normal = p - q;
    error = kDeterminantError * (std::abs(p) + std::abs(q));
  }

  GridPoint a_;
  GridPoint normal_, error_;  // and what rounding does to a volume, for each component of the point's distance
};

// The sign of the first component of u x v that is not 0, in the order x, y, z, where u = b - a and v = d - c; 0 for parallels.
// This is the sign of the product with a direction that leans from x towards y by less than anything, and towards z by less still.
int CrossSign(const GridPoint& a, const GridPoint& b, const GridPoint& c, const GridPoint& d);

inline int SignOf(double x) {
  return (x > 0) - (x < 0);
}

}  // namespace zbr::drawing
