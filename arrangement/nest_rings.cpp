// From rings to a region: nesting, slivers, points without meaning.
//
// Nesting compares areas and distances with one absolute tolerance. It therefore sees the rings moved to the origin and scaled to a
// fixed size, and before any point is removed, so that rings that touch have vertices there that are equal to the bit; the true
// points are put in place afterwards.
#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "arrangement/loop_builder.h"
#include "arrangement/ring_shape.h"
#include "core/box.h"
#include "core/planar_inline.h"
#include "core/rings.h"
#include "core/tolerance_state.h"

namespace zbr {
namespace {

using Points = std::vector<ZBR_PT>;

// Distance from a straight line up to which a point on it counts as such, relative to the size of the coordinates: rounding errors
// of a few units in the last place.
constexpr double kStraight = 1e-15;
// The rings' larger side while they are nested is 2^19 or up to twice that: then no area counts as none that a grid of 2^30 nodes
// can hold, with either tolerance.
constexpr int kNestingExponent = 19;

// Takes from rings the points that say nothing about their shape.
class RingShape {
 public:
  RingShape(const Box& box, double width)
      : straight_(std::min(
            kStraight * std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)}), width)),
        width_(width) {}

  std::vector<std::uint32_t> Simplify(const Points& ring) const { return SimplifiedRing(ring, width_, straight_); }

 private:
  double straight_;
  double width_;
};

bool IsNarrow(const Points& ring, double width) {
  return ring.size() < 3 || !(std::fabs(TwiceArea(ring)) > width * Perimeter(ring));
}

Points PointsOf(const Ring& ring, std::span<const ZBR_PT> points) {
  Points list(ring.size());
  std::transform(ring.begin(), ring.end(), list.begin(), [&](std::uint32_t v) { return points[v]; });
  return list;
}

Box BoxOf(std::span<const Ring> rings, std::span<const ZBR_PT> points) {
  Box box;
  for (const Ring& ring : rings) {
    for (const std::uint32_t v : ring) box.Add(points[v]);
  }
  return box;
}

// Loops of the rings' shape, moved to the origin and scaled.
LoopList ScaledLoops(std::span<const Ring> rings, std::span<const ZBR_PT> places) {
  const Box box = BoxOf(rings, places);
  const int exponent = kNestingExponent - std::ilogb(std::max(box.xmax - box.xmin, box.ymax - box.ymin));
  const ZBR_PT centre = box.Center();
  LoopList loops;
  for (const Ring& ring : rings) {
    loops.push_back(std::make_shared<ZBR_LOOP>());
    for (const ZBR_PT& p : PointsOf(ring, places)) {
      loops.back()->pt().emplace_back(std::ldexp(p.x() - centre.x(), exponent), std::ldexp(p.y() - centre.y(), exponent));
    }
  }
  return loops;
}

// Those of the loops in `all`, which has the traces' order, as the nested loops follow each other.
std::vector<LoopTrace> InOrderOf(const LoopList& nested, const LoopList& all, std::vector<LoopTrace>& traces) {
  std::unordered_map<const ZBR_LOOP*, LoopTrace*> traceOf;
  for (std::size_t i = 0; i < all.size(); ++i) traceOf[all[i].get()] = &traces[i];
  std::vector<LoopTrace> ordered;
  ordered.reserve(all.size());
  for (const auto& outer : nested) {
    ordered.push_back(std::move(*traceOf.at(outer.get())));
    for (const auto& hole : outer->children()) ordered.push_back(std::move(*traceOf.at(hole.get())));
  }
  return ordered;
}

}  // namespace

LoopList NestRings(std::span<const Ring> rings, std::span<const ZBR_PT> places, std::span<const ZBR_PT> points, double width,
                   double touch, std::vector<LoopTrace>* traces) {
  const RingShape shape(BoxOf(rings, points), width);
  std::vector<Ring> wide;
  std::vector<Points> shapes;
  std::vector<LoopTrace> found;
  for (std::uint32_t r = 0; r < rings.size(); ++r) {
    const Points ring = PointsOf(rings[r], points);
    std::vector<std::uint32_t> corners = shape.Simplify(ring);
    Points kept = PointsAt(ring, corners);
    if (IsNarrow(kept, width)) continue;
    wide.push_back(rings[r]);
    shapes.push_back(std::move(kept));
    if (traces != nullptr) found.push_back({r, std::move(corners), false});
  }
  if (traces != nullptr) traces->clear();
  if (wide.empty()) return {};
  LoopList loops = ScaledLoops(wide, places);
  const LoopList all = loops;
  {
    const ToleranceScope scope(std::ldexp(touch, kNestingExponent + 1));
    zbrMakeLoopTree(loops);
  }
  for (std::size_t i = 0; i < all.size(); ++i) {
    if ((TwiceArea(shapes[i]) > 0.0) != (all[i]->area() > 0.0)) {
      std::reverse(shapes[i].begin(), shapes[i].end());
      if (traces != nullptr) {
        std::reverse(found[i].kept.begin(), found[i].kept.end());
        found[i].runsBack = true;
      }
    }
    all[i]->pt() = std::move(shapes[i]);
    all[i]->Reset();
    all[i]->Setup();
  }
  if (traces != nullptr) *traces = InOrderOf(loops, all, found);
  return loops;
}

}  // namespace zbr
