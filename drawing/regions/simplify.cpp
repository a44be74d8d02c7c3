// Fewer points for the straight parts of a region's boundary.
//
// Idea: between two points that stay, the point furthest from the straight way stays, too, if it is further than the tolerance
// (Douglas and Peucker). What that does to other rings is looked at afterwards: rings at fault get all their points back, until
// there are no faults. Since a ring that moved may come to lie in another one without meeting any, the nesting is compared, too.
#include <zbr-drawing/region.h>

#include <algorithm>
#include <utility>

#include "drawing/points.h"

namespace zbr::drawing {
namespace {

// The points of a ring, and what its edges stand for, if anything does.
struct Ring {
  const ZBR_PT* points;
  const EdgeOrigin* origins;  // null where nothing has curves
  std::size_t count;

  const ZBR_PT& At(std::size_t i) const { return points[i % count]; }
  bool IsEnd(std::size_t i) const {
    if (origins == nullptr) return false;
    const EdgeOrigin &before = origins[(i + count - 1) % count], &after = origins[i];
    return before.curve >= 0 || after.curve >= 0 || before.pen != after.pen;
  }
};

double Distance(const ZBR_PT& p, const ZBR_PT& from, const ZBR_PT& to) {
  return p.Distance(from + (to - from) * NearestPart(p, from, to));
}

class RingSimplifier {
 public:
  RingSimplifier(const Ring& ring, double tolerance) : ring_(ring), tolerance_(tolerance), stays_(ring.count, false) {}

  std::vector<bool> Run() {
    if (ring_.count == 0) return {};
    std::vector<std::size_t> ends;
    for (std::size_t i = 0; i < ring_.count; ++i) {
      if (ring_.IsEnd(i)) ends.push_back(i);
    }
    if (ends.empty()) ends.push_back(Furthest(0, ring_.count).first % ring_.count);  // a corner, if there is any
    if (ends.size() == 1) ends.push_back(Furthest(ends[0], ends[0] + ring_.count).first % ring_.count);
    std::sort(ends.begin(), ends.end());
    for (const std::size_t i : ends) stays_[i] = true;
    for (std::size_t k = 0; k < ends.size(); ++k) Run(ends[k], k + 1 < ends.size() ? ends[k + 1] : ends[0] + ring_.count);
    if (std::count(stays_.begin(), stays_.end(), true) < 3) stays_.assign(ring_.count, true);
    return std::move(stays_);
  }

 private:
  // Between two places along the ring: the point that is furthest from the straight way, and how far it is.
  std::pair<std::size_t, double> Furthest(std::size_t first, std::size_t last) const {
    std::pair<std::size_t, double> furthest{first, 0.0};
    for (std::size_t i = first + 1; i < last; ++i) {
      const double distance = Distance(ring_.At(i), ring_.At(first), ring_.At(last));
      if (distance > furthest.second) furthest = {i, distance};
    }
    return furthest;
  }

  void Run(std::size_t first, std::size_t last) {
    std::vector<std::pair<std::size_t, std::size_t>> open{{first, last}};
    while (!open.empty()) {
      const auto [from, to] = open.back();
      open.pop_back();
      const auto [at, distance] = Furthest(from, to);
      if (!(distance > tolerance_)) continue;
      stays_[at % ring_.count] = true;
      open.insert(open.end(), {{from, at}, {at, to}});
    }
  }

  const Ring& ring_;
  double tolerance_;
  std::vector<bool> stays_;
};

class Simplifier {
 public:
  explicit Simplifier(const CurvedRegion& region) : region_(region) {}

  CurvedRegion Run(double tolerance) {
    const std::size_t count = region_.rings.ring_count();
    for (std::size_t r = 0; r < count; ++r) stays_.push_back(RingSimplifier(RingAt(r), tolerance).Run());
    isWhole_.assign(count, false);
    CurvedRegion simplified = Build();
    while (Restore(simplified)) simplified = Build();
    return simplified;
  }

 private:
  Ring RingAt(std::size_t r) const {
    const auto first = static_cast<std::size_t>(region_.rings.ring_offsets()[r]),
               end = static_cast<std::size_t>(region_.rings.ring_offsets()[r + 1]);
    return {region_.rings.points().data() + first, region_.HasCurves() ? region_.origins.data() + first : nullptr, end - first};
  }

  CurvedRegion Build() const {
    CurvedRegion built{{}, {}, region_.curves, region_.pens};
    std::size_t polygon = 0;
    for (std::size_t r = 0; r < stays_.size(); ++r) {
      const Ring ring = RingAt(r);
      std::vector<ZBR_PT> points;
      for (std::size_t i = 0; i < ring.count; ++i) {
        const bool stays = isWhole_[r] || stays_[r][i];
        if (stays) points.push_back(ring.points[i]);
        if (ring.origins == nullptr) continue;
        if (stays) {
          built.origins.push_back(ring.origins[i]);
        } else if (!points.empty()) {
          built.origins.back() = {-1, -1, 0.0, 0.0, built.origins.back().pen};
        }
      }
      if (ring.origins != nullptr && !isWhole_[r] && !stays_[r][0])
        built.origins.back() = {-1, -1, 0.0, 0.0, built.origins.back().pen};
      const bool isOuter =
          polygon < region_.rings.polygon_count() && region_.rings.polygon_offsets()[polygon] == static_cast<std::int64_t>(r);
      if (isOuter) ++polygon;
      built.rings.AddRing(points, isOuter);
    }
    return built;
  }

  void Restore(std::int32_t ring, bool& any) {
    if (ring < 0 || isWhole_[static_cast<std::size_t>(ring)]) return;
    isWhole_[static_cast<std::size_t>(ring)] = true;
    any = true;
  }

  // Gives rings that are at fault their points back. Whether there were any.
  bool Restore(const CurvedRegion& simplified) {
    bool any = false;
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(simplified.rings.view(), faults);
    for (const ZBR_REGION_FAULT& fault : faults) {
      Restore(fault.ring_a, any);
      Restore(fault.ring_b, any);
    }
    if (any) return true;
    std::vector<std::int32_t> depths, parents, depthsBefore, parentsBefore;
    zbrNestRegion(region_.rings.view(), depthsBefore, parentsBefore);
    zbrNestRegion(simplified.rings.view(), depths, parents);
    for (std::size_t r = 0; r < parents.size(); ++r) {
      if (parents[r] == parentsBefore[r]) continue;
      Restore(static_cast<std::int32_t>(r), any);
      Restore(parents[r], any);
      Restore(parentsBefore[r], any);
    }
    return any;
  }

  const CurvedRegion& region_;
  std::vector<std::vector<bool>> stays_;  // by ring and point
  std::vector<bool> isWhole_;
};

}  // namespace

CurvedRegion Simplified(const CurvedRegion& region, double tolerance) {
  return Simplifier(region).Run(tolerance);
}

}  // namespace zbr::drawing
