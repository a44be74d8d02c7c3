// Signed area of a polygon, and of the part that a chord cuts off its boundary.
//
// Both are fans of triangles: from the first vertex, or from the first chord point. Taking differences first keeps the sum exact
// to the polygon's own size when it lies far from the origin.
#include <zbr/planar.h>

#include <limits>

#include "core/boundary.h"
#include "core/planar_inline.h"

namespace {

// First vertex strictly after parameter t, and last vertex strictly before it, on a ring of n points.
std::size_t VertexAfter(double t, std::size_t n) {
  const double up = std::ceil(t);
  const auto i = static_cast<std::size_t>(up) + (up == t ? 1 : 0);
  return i == n ? 0 : i;
}

std::size_t VertexBefore(double t, std::size_t n) {
  const double down = std::floor(t);
  const auto i = static_cast<std::size_t>(down);
  if (down != t) return i;
  return i == 0 ? n - 1 : i - 1;
}

}  // namespace

double ZBR_POLYGON::get_area() const {
  const std::vector<ZBR_PT>& p = points_;
  if (p.size() < 3) return 0.0;
  double sum = 0.0;
  ZBR_PT prev = p[1] - p[0];
  for (std::size_t i = 2; i < p.size(); ++i) {
    const ZBR_PT cur = p[i] - p[0];
    sum += zbr::Cross(prev, cur);
    prev = cur;
  }
  return 0.5 * sum;
}

double ZBR_POLYGON::get_area(double ta, double tb) const {
  return get_area(zbr::BoundaryPoint(points_, ta), zbr::BoundaryPoint(points_, tb), ta, tb);
}

double ZBR_POLYGON::get_area(const ZBR_PT& pa, const ZBR_PT& pb, double ta, double tb) const {
  const std::vector<ZBR_PT>& p = points_;
  const std::size_t n = p.size();
  ta = zbr::FoldedParameter(ta, n);
  tb = zbr::FoldedParameter(tb, n);
  if (ta == tb) return get_area();
  if (n < 3) return 0.0;
  if (zbr::WithinTol(ta, tb, zbr::t_tolerance.eps)) return 0.0;
  if (!zbr::IsOnBoundary(ta, n) || !zbr::IsOnBoundary(tb, n)) return std::numeric_limits<double>::quiet_NaN();

  const std::size_t first = VertexAfter(ta, n);
  const std::size_t last = VertexBefore(tb, n);
  const auto next = [n](std::size_t k) { return k + 1 == n ? 0 : k + 1; };
  if (next(last) == first && (tb == 0.0 || tb > ta)) return 0.0;

  double sum = 0.0;
  for (std::size_t k = first; k != last; k = next(k)) sum += zbr::Cross(p[k] - pa, p[next(k)] - pa);
  return 0.5 * (sum + zbr::Cross(p[last] - pa, pb - pa));
}
