// Regions from and to loop lists, nesting, simplification.
#include <zbr/region.h>

#include <algorithm>
#include <cmath>

#include "arrangement/ring_shape.h"
#include "boolean/polygons.h"
#include "boolean/region_input.h"
#include "core/tolerance_state.h"
#include "loops/nesting.h"

namespace {

// Turned as its level wants it.
std::shared_ptr<ZBR_LOOP> OrientedLoopOf(zbr::RingSpan ring, int level) {
  std::shared_ptr<ZBR_LOOP> loop = zbr::LoopOf(ring, level);
  const bool isWrong = level == 0 ? loop->area() < 0.0 : loop->area() > 0.0;
  if (isWrong) loop->reverse();
  return loop;
}

}  // namespace

ZBR_REGION zbrRegionOfLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  ZBR_REGION region;
  for (const auto& outer : loops) {
    ZBR_REGION_ACCESS::AddPolygon(region, *outer, [](const ZBR_PT& p) { return p; });
  }
  return region;
}

std::vector<std::shared_ptr<ZBR_LOOP>> zbrLoopsOfRegion(const ZBR_REGION_VIEW& region) {
  std::vector<std::shared_ptr<ZBR_LOOP>> loops;
  ZBR_REGION_STATUS status;
  zbr::RegionInput input;
  if (!input.Add(region, status)) return loops;
  const bool hasPolygons = region.polygon_offsets != nullptr;
  std::size_t polygon = 0;
  for (std::size_t r = 0; r < input.rings().size(); ++r) {
    while (hasPolygons && polygon < region.polygon_count && static_cast<std::size_t>(region.polygon_offsets[polygon]) < r)
      ++polygon;
    const bool startsPolygon =
        !hasPolygons || (polygon < region.polygon_count && static_cast<std::size_t>(region.polygon_offsets[polygon]) == r);
    if (startsPolygon || loops.empty()) {
      loops.push_back(OrientedLoopOf(input.rings()[r], 0));
    } else {
      loops.back()->children().push_back(OrientedLoopOf(input.rings()[r], 1));
    }
  }
  if (!hasPolygons) zbrMakeLoopTree(loops);
  return loops;
}

ZBR_REGION_STATUS zbrSimplifyRegion(const ZBR_REGION_VIEW& rings, double tolerance, ZBR_REGION& result,
                                    const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  zbr::RegionInput input;
  ZBR_REGION simple;
  if (!input.Add(rings, status)) {
    result.Clear();
    return status;
  }
  input.ScaleUp();
  const double width = tolerance > 0.0 ? std::ldexp(tolerance, -input.ExponentBack()) : 0.0;  // not NaN
  for (const zbr::RingSpan& ring : input.rings()) {
    const std::vector<std::uint32_t> corners = zbr::SimplifiedRing(ring, 0.0, width);
    if (corners.size() > 2) simple.AddRing(zbr::PointsAt(ring, corners));
  }
  ZBR_REGION_OPTIONS withoutSources = options;
  withoutSources.sources = false;
  withoutSources.tolerance = std::ldexp(options.tolerance, -input.ExponentBack());
  status = zbrMakeValidRegion(simple.view(), result, withoutSources);
  ZBR_REGION_ACCESS::Scale(result, input.ExponentBack());
  return status;
}

ZBR_REGION_STATUS zbrNestRegion(const ZBR_REGION_VIEW& rings, std::vector<std::int32_t>& depths,
                                std::vector<std::int32_t>& parents) {
  ZBR_REGION_STATUS status;
  zbr::RegionInput input;
  depths.clear();
  parents.clear();
  if (!input.Add(rings, status)) return status;
  input.ScaleUp();
  std::vector<std::shared_ptr<ZBR_LOOP>> loops;
  for (const zbr::RingSpan& ring : input.rings()) loops.push_back(OrientedLoopOf(ring, 0));
  // Largest first, as nesting wants them; a ring without area holds none and lies in none.
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (loops[i]->pt().size() > 2 && loops[i]->area() > 0.0) order.push_back(i);
  }
  std::stable_sort(order.begin(), order.end(), [&](std::size_t i, std::size_t j) { return loops[i]->area() > loops[j]->area(); });
  std::vector<std::shared_ptr<ZBR_LOOP>> sorted;
  for (const std::size_t i : order) sorted.push_back(loops[i]);
  const double tolerance = input.ToleranceFor({});
  const zbr::ToleranceScope scope(tolerance);
  const std::vector<std::uint32_t> found = zbr::NestLoops(sorted, tolerance);
  depths.assign(loops.size(), 0);
  parents.assign(loops.size(), -1);
  for (std::size_t k = 0; k < order.size(); ++k) {
    if (found[k] == zbr::kNoParent) continue;
    parents[order[k]] = static_cast<std::int32_t>(order[found[k]]);
    depths[order[k]] = depths[order[found[k]]] + 1;  // parents are larger and come first
  }
  return status;
}
