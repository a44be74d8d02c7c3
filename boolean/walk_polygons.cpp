// Idea: a hole lies in the smallest outer ring around it. Mostly there is only one that can be, by its box; otherwise a point of
// the hole is located in them.
#include "boolean/walk_polygons.h"

#include <algorithm>
#include <cmath>

#include "boolean/region_input.h"
#include "core/box_tree.h"
#include "loops/include.h"

namespace zbr {

void WalkPolygons::Start(std::size_t mostPoints) {
  points_.clear();
  points_.reserve(mostPoints);
  rings_.clear();
  groupBegin_ = 0;
}

// The area of a narrow ring is its width times half the way around it, which is only measured where it may matter.
bool WalkPolygons::EndRing(const WalkScale& scale) {
  const std::uint32_t begin = rings_.empty() ? 0 : rings_.back().end;
  rings_.push_back({begin, static_cast<std::uint32_t>(points_.size()), 0.0, kOuter});
  const RingSpan ring = PointsOf(rings_.back());
  rings_.back().twiceArea = TwiceArea(ring);
  const double twiceArea = std::fabs(rings_.back().twiceArea);
  const double widest = scale.width * scale.longest * static_cast<double>(ring.size());
  return twiceArea > 2.0 * scale.least && (twiceArea > widest || twiceArea > scale.width * Perimeter(ring));
}

bool WalkPolygons::Nest(double eps) {
  std::uint32_t lastOuter = kOuter;
  std::size_t outerCount = 0;
  for (std::size_t r = groupBegin_; r < rings_.size(); ++r) {
    if (rings_[r].twiceArea < 0.0) continue;
    lastOuter = static_cast<std::uint32_t>(r);
    ++outerCount;
  }
  if (outerCount == rings_.size() - groupBegin_) return true;
  if (outerCount == 0) return false;
  if (outerCount == 1) {
    for (std::size_t r = groupBegin_; r < rings_.size(); ++r) {
      if (r != lastOuter) rings_[r].outer = lastOuter;
    }
    return true;
  }
  std::vector<std::uint32_t> outers;
  outers.reserve(outerCount);
  for (std::size_t r = groupBegin_; r < rings_.size(); ++r) {
    if (rings_[r].twiceArea > 0.0) outers.push_back(static_cast<std::uint32_t>(r));
  }
  return NestAmong(outers, eps);
}

bool WalkPolygons::NestAmong(const std::vector<std::uint32_t>& outers, double eps) {
  std::vector<Box> boxes;
  std::vector<ZBR_PT> centres;
  std::vector<LoopProbe> probes;
  boxes.reserve(outers.size());
  centres.reserve(outers.size());
  probes.reserve(outers.size());
  for (const std::uint32_t r : outers) {
    boxes.push_back(BoxOfRing(PointsOf(rings_[r])));
    centres.push_back(boxes.back().Center());
    probes.emplace_back(PointsOf(rings_[r]), boxes.back());
  }
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  BoxTree tree;
  const std::span<Box> leaves = tree.StartLeaves(outers.size());
  for (std::size_t k = 0; k < order.size(); ++k) leaves[k] = boxes[order[k]];
  tree.BuildInner();
  IncludeScratch scratch;
  std::vector<std::uint32_t> candidates;
  for (std::size_t r = groupBegin_; r < rings_.size(); ++r) {
    Made& hole = rings_[r];
    if (hole.twiceArea > 0.0) continue;
    const ZBR_PT& p = points_[hole.begin];
    candidates.clear();
    tree.Walk([&p](const Box& box, int, std::uint32_t) { return box.Contains(p); },
              [&](std::uint32_t leaf) {
                candidates.push_back(order[leaf]);
                return true;
              });
    for (const std::uint32_t c : candidates) {
      if (hole.outer != kOuter && rings_[outers[c]].twiceArea >= rings_[hole.outer].twiceArea) continue;
      const ZBR_POLY_INSIDE at = candidates.size() == 1 ? ZBR_PI_IN : probes[c].At(p, eps, scratch);
      if (at == ZBR_PI_IN) hole.outer = outers[c];
      if (at != ZBR_PI_IN && at != ZBR_PI_OUT) return false;
    }
    if (hole.outer == kOuter) return false;
  }
  return true;
}

void WalkPolygons::Write(ZBR_REGION& region) {
  next_.assign(rings_.size(), kOuter);
  last_.assign(rings_.size(), kOuter);
  std::size_t polygonCount = 0;
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    const std::uint32_t outer = rings_[r].outer;
    polygonCount += outer == kOuter ? 1 : 0;
    if (outer == kOuter) continue;
    next_[last_[outer] == kOuter ? outer : last_[outer]] = r;
    last_[outer] = r;
  }
  const ZBR_REGION_ACCESS::Lists lists = ZBR_REGION_ACCESS::Restart(region, points_.size(), rings_.size(), polygonCount);
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    if (rings_[r].outer != kOuter) continue;
    for (std::uint32_t k = r; k != kOuter; k = next_[k]) {
      const RingSpan points = PointsOf(rings_[k]);
      lists.points.insert(lists.points.end(), points.begin(), points.end());
      lists.ringOffsets.push_back(static_cast<std::int32_t>(lists.points.size()));
    }
    lists.polygonOffsets.push_back(static_cast<std::int32_t>(lists.ringOffsets.size()) - 1);
  }
}

}  // namespace zbr
