// Leaving out what results hold only because of rounding.
//
// Where edges of both drawings lie on one line but for rounding, as in drawings that were turned, they cross at flat angles. What
// they enclose there can be as long as an edge and narrower than the tolerance: rings of no width, or spikes on rings.
#include <zbr-drawing/result.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/regions/pinches.h"

namespace zbr::drawing {
namespace {

using Points = std::vector<ZBR_PT>;

bool SamePlace(const ZBR_PT& p, const ZBR_PT& q) {
  return p.x() == q.x() && p.y() == q.y();
}

// Whether b does nothing for the way from a to c: it repeats a point, or the way goes out to b and back, the shorter leg within the
// tolerance of the longer.
bool IsVoid(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& c) {
  if (SamePlace(a, b) || SamePlace(b, c)) return true;
  const ZBR_PT u = a - b, v = c - b;
  return u.InnerProduct(v) > 0 && std::abs(u.OuterProduct(v)) <= kTolerance * std::sqrt(std::max(u.Length2(), v.Length2()));
}

// Leaves out one void point after the other; each may make one of its neighbours void. The first `kept` points are free of them but
// for their ends.
void DropVoidPoints(Points& points) {
  std::size_t first = 0, kept = 0;
  for (const ZBR_PT p : points) {
    while (kept > 1 && IsVoid(points[kept - 2], points[kept - 1], p)) --kept;
    points[kept++] = p;
  }
  while (kept - first > 2) {
    if (IsVoid(points[kept - 2], points[kept - 1], points[first])) {
      --kept;
    } else if (IsVoid(points[kept - 1], points[first], points[first + 1])) {
      ++first;
    } else {
      break;
    }
  }
  points.resize(kept);
  points.erase(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(first));
}

// The area of a narrow ring is its width times half the way around it.
bool IsSliver(const Points& points) {
  if (points.size() < 3) return true;
  double area = 0.0, length = 0.0;  // twice the area
  for (std::size_t i = 0; i < points.size(); ++i) {
    const ZBR_PT& next = points[(i + 1) % points.size()];
    area += (points[i] - points[0]).OuterProduct(next - points[0]);
    length += points[i].Distance(next);
  }
  return std::abs(area) <= kTolerance * length;
}

// An outer ring takes its holes, which are no wider, with it.
void DropSlivers(LoopList& loops) {
  std::erase_if(loops, [](const auto& loop) {
    DropVoidPoints(loop->pt());
    loop->Reset();
    DropSlivers(loop->children());
    return IsSliver(loop->pt());
  });
}

}  // namespace

Layer MakeResult(const std::string& name, LoopList loops, const Frame& frame) {
  DropSlivers(loops);
  ForEachRing(loops, [](ZBR_LOOP& ring) { ring.Setup(); });
  const double area = frame.AreaOut(ZBR_LOOP::get_area(loops));  // before coordinates are rounded
  ForEachRing(loops, [&](ZBR_LOOP& ring) {
    for (ZBR_PT& p : ring.pt()) p = frame.In(frame.Out(p));
    ring.Reset();
  });
  SplitPinches(loops);
  DropSlivers(loops);
  Layer layer = MakeLayer(name, std::move(loops), frame);
  layer.area = area;
  return layer;
}

}  // namespace zbr::drawing
