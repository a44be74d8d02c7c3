// Idea: to arrange the edges of a ring takes some hundred times as long as to look at all pairs of them while they are few, as they
// are where thousands of screws and boxes are cut. Edges are apart where both ends of one lie on one side of the other, or beyond
// an end of it. All distances are so much larger than the tolerance of regions that rounding decides nothing.
#include "drawing/sections/simple_ring.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "drawing/points.h"

namespace zbr::drawing {
namespace {

constexpr std::size_t kMostPoints = 64;
// As a part of the largest coordinate: a thousand times the tolerance of regions.
constexpr double kClear = 1e-9;

struct Edge {
  ZBR_PT from, unit;
  double length = 0.0;

  // Whether both points are on one side of the line through the edge, or of one of those across its ends.
  bool IsApartFrom(const ZBR_PT& p, const ZBR_PT& q, double clear) const {
    const double a = unit.OuterProduct(p - from), b = unit.OuterProduct(q - from);
    if (std::min(a, b) > clear || std::max(a, b) < -clear) return true;
    const double s = unit.InnerProduct(p - from), t = unit.InnerProduct(q - from);
    return std::min(s, t) > length + clear || std::max(s, t) < -clear;
  }
  bool IsApartFrom(const ZBR_PT& p, double clear) const { return IsApartFrom(p, p, clear); }
};

// Neighbours meet in a point, and elsewhere only if the far end of one lies on the other.
bool IsSimple(const std::vector<ZBR_PT>& ring, double clear) {
  const std::size_t n = ring.size();
  std::vector<Edge> edges(n);
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT along = ring[(i + 1) % n] - ring[i];
    const double length = along.Length();
    if (!(length > clear)) return false;
    edges[i] = {ring[i], along * (1.0 / length), length};
  }
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT &next = ring[(i + 1) % n], &after = ring[(i + 2) % n];
    if (!edges[i].IsApartFrom(after, clear) || !edges[(i + 1) % n].IsApartFrom(ring[i], clear)) return false;
    for (std::size_t j = i + 2; j < n && (j + 1) % n != i; ++j) {
      const ZBR_PT &p = ring[j], &q = ring[(j + 1) % n];
      if (!edges[i].IsApartFrom(p, q, clear) && !edges[j].IsApartFrom(ring[i], next, clear)) return false;
    }
  }
  return true;
}

}  // namespace

// Regions have outer rings counter-clockwise. They begin with the edge from the first point, by x and then y, to the lesser of its
// neighbours.
bool SetSimpleRegion(const std::vector<ZBR_PT>& ring, ZBR_REGION& region) {
  if (ring.size() < 3 || ring.size() > kMostPoints) return false;
  double largest = 0.0, area = 0.0, length = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const ZBR_PT &p = ring[i], &q = ring[(i + 1) % ring.size()];
    if (!std::isfinite(p.x()) || !std::isfinite(p.y())) return false;
    largest = std::max({largest, std::fabs(p.x()), std::fabs(p.y())});
    area += (p - ring[0]).OuterProduct(q - ring[0]);
    length += p.Distance(q);
  }
  const double clear = kClear * largest;
  constexpr double kUsual = 1e100;  // squares are far from either end of the range
  if (!(largest < kUsual && largest > 1 / kUsual && std::fabs(area) > clear * length) || !IsSimple(ring, clear)) return false;
  std::vector<ZBR_PT> points = ring;
  if (area < 0) std::reverse(points.begin(), points.end());
  std::rotate(points.begin(), std::min_element(points.begin(), points.end(), IsLess), points.end());
  if (IsLess(points.back(), points[1])) std::rotate(points.begin(), points.end() - 1, points.end());
  region.Clear();
  region.AddRing(points, true);
  return true;
}

}  // namespace zbr::drawing
