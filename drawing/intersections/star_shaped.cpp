// Idea: where all triangles turn the same way round seen from a point, the surface, drawn on a sphere around that point, covers all
// of it equally often, as nowhere it folds back. How often a single ray tells: that meets as many triangles. If it is once, no two
// triangles cover each other. Other than with a look at the bends, facets may be dented, be it by rounding or on purpose.
// Difficulty: a ray may go through an edge. Bodies are symmetrical, and rays from their middle along the axes do; so the point is
// somewhat off the middle.
#include "drawing/intersections/star_shaped.h"

#include <algorithm>
#include <cmath>

#include "drawing/intersections/border_winding.h"

namespace zbr::drawing {
namespace {

// On the grid, inside the box of the points.
GridPoint NearMiddle(std::span<const GridPoint> points) {
  GridPoint low = points[0], high = points[0];
  for (const GridPoint& p : points) {
    low = Lowest(low, p);
    high = Highest(high, p);
  }
  const auto between = [](double a, double b, double part) { return std::floor(a + part * (b - a)); };
  return {between(low.x, high.x, 0.5), between(low.y, high.y, 0.5068), between(low.z, high.z, 0.4877)};
}

// Of the ray from a point along x.
enum class Ray { kMisses, kMeets, kUnclear };

// `side` is the one of the triangle on which the point lies. What the line through it meets, ahead and behind, turns differently.
Ray MeetingOf(const GridPoint& from, const GridPoint& a, const GridPoint& b, const GridPoint& c, int side) {
  const GridPoint low = Lowest(a, Lowest(b, c)), high = Highest(a, Highest(b, c));
  if (high.x < from.x || low.y > from.y || high.y < from.y || low.z > from.z || high.z < from.z) return Ray::kMisses;
  const auto see = [](const GridPoint& p) { return PicturePoint{p.y, p.z}; };
  const int ab = ClearSide(see(a), see(b), see(from)), bc = ClearSide(see(b), see(c), see(from)),
            ca = ClearSide(see(c), see(a), see(from));
  if (ab == side || bc == side || ca == side) return Ray::kMisses;
  return ab * bc * ca == 0 ? Ray::kUnclear : Ray::kMeets;
}

}  // namespace

bool IsStarShaped(const std::vector<GridPoint>& points, std::uint32_t first, std::uint32_t count,
                  std::span<const std::array<std::uint32_t, 3>> corners) {
  const GridPoint middle = NearMiddle(std::span(points).subspan(first, count));
  int side = 0, met = 0;
  for (const auto& c : corners) {
    const GridPoint &p = points[c[0]], &q = points[c[1]], &r = points[c[2]];
    const int here = PlaneThrough(p, q, r).SideIfClear(middle);
    if (side == 0) side = here;
    if (here == 0 || here != side) return false;
    const Ray ray = MeetingOf(middle, p, q, r, side);
    if (ray == Ray::kUnclear) return false;
    if (ray == Ray::kMeets && ++met > 1) return false;
  }
  return met == 1;
}

}  // namespace zbr::drawing
