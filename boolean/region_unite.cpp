// What several regions cover, and repair of one.
//
// Idea: regions that are valid, their outer rings counter-clockwise and their holes clockwise, wind once around what they cover. So
// each is made valid by itself, which costs nothing for a ring that is simple, and then all are arranged at once: the winding
// number of a place is the number of regions that cover it.
#include <algorithm>

#include <zbr/region.h>

#include "boolean/region_input.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "loops/edge_index.h"
#include "loops/simplicity.h"

namespace zbr {
namespace {

double TwiceArea(RingSpan ring) {
  double twice = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) twice += Cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
  return twice;
}

bool IsSimpleRing(RingSpan ring, double tolerance) {
  if (ring.size() < 3) return false;
  const ToleranceScope scope(tolerance);
  Box box;
  for (const ZBR_PT& p : ring) box.Add(p);
  const auto n = static_cast<std::uint32_t>(ring.size());
  EdgeIndex index;
  index.Build({{box, ring.data(), n, 0, n, 0, false}}, 0.0, tolerance * tolerance);
  return SimplicityOf(index, 0.0) == Simplicity::kSimple;
}

// The rings of all regions as they are to be counted, with their sources in the rings that were given.
class CountedRings {
 public:
  CountedRings(double tolerance, ZBR_FILL_RULE rule, bool withSources)
      : tolerance_(tolerance), rule_(rule), withSources_(withSources) {}

  void Add(std::span<const RingSpan> rings) {
    if (rings.size() == 1 && IsSimpleRing(rings[0], tolerance_)) {
      AddSimple(rings[0]);
    } else if (!rings.empty()) {
      const Overlay overlay(rings, rings.size(), tolerance_, tolerance_);
      AddFlat(overlay.Region([this](Winding w) { return IsFilled(rule_, w.of[0]); }, withSources_));
    }
    for (const RingSpan& ring : rings) firstEdge_ += static_cast<std::uint32_t>(ring.size());
  }

  const FlatRegion& region() const { return region_; }

 private:
  void EndRing() { region_.ringEnds.push_back(static_cast<std::uint32_t>(region_.points.size())); }

  void AddSource(const FlatSource& source) { region_.sources.push_back(source); }
  void EndEdge() { region_.sourceEnds.push_back(static_cast<std::uint32_t>(region_.sources.size())); }

  void AddSimple(RingSpan ring) {
    const bool isPositive = TwiceArea(ring) > 0.0;
    if (!IsFilled(rule_, isPositive ? 1 : -1)) return;
    const auto n = static_cast<std::uint32_t>(ring.size());
    for (std::uint32_t i = 0; i < n; ++i) {
      region_.points.push_back(ring[isPositive ? i : n - 1 - i]);
      if (!withSources_) continue;
      AddSource(isPositive ? FlatSource{firstEdge_ + i, 0.0, 1.0} : FlatSource{firstEdge_ + (2 * n - 2 - i) % n, 1.0, 0.0});
      EndEdge();
    }
    EndRing();
  }

  void AddFlat(const FlatRegion& flat) {
    std::uint32_t point = 0;
    std::uint32_t source = 0;
    for (const std::uint32_t end : flat.ringEnds) {
      for (; point < end; ++point) {
        region_.points.push_back(flat.points[point]);
        if (!withSources_) continue;
        for (; source < flat.sourceEnds[point]; ++source) {
          const FlatSource& s = flat.sources[source];
          AddSource({firstEdge_ + s.edge, s.t0, s.t1});
        }
        EndEdge();
      }
      EndRing();
    }
  }

  double tolerance_;
  ZBR_FILL_RULE rule_;
  bool withSources_;
  std::uint32_t firstEdge_ = 0;  // of the next region
  FlatRegion region_;
};

void Cover(const RegionInput& input, int times, ZBR_REGION& result, const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status,
           RegionProgress& progress) {
  constexpr std::size_t kEvery = 256;  // regions
  constexpr double kShareOfCounting = 0.4;
  const double tolerance = input.ToleranceFor(options);
  CountedRings counted(tolerance, options.fill_a, options.sources);
  for (std::size_t i = 0; i < input.operands(); ++i) {
    counted.Add(input.operand(i));
    const double share = kShareOfCounting * static_cast<double>(i) / static_cast<double>(input.operands());
    if (i % kEvery == 0 && !progress.GoesOn(share)) return;
  }
  std::vector<RingSpan> rings;
  for (std::size_t r = 0; r < counted.region().ringEnds.size(); ++r) rings.push_back(counted.region().Ring(r));
  const Overlay overlay(rings, rings.size(), tolerance, tolerance);
  status.exact = true;
  FlatRegion flat = overlay.Region([times](Winding w) { return w.of[0] >= times; }, options.sources);
  if (options.sources) TraceBack(counted.region(), flat);
  ZBR_REGION_ACCESS::Set(result, std::move(flat), input, options);
}

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrCoverRegions(const ZBR_REGION_VIEW* regions, std::size_t count, int times, ZBR_REGION& result,
                                  const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  zbr::RegionInput input;
  zbr::RegionProgress progress(options, status);
  bool isDone = !progress.GoesOn(0.0);
  for (std::size_t i = 0; i < count && !isDone; ++i) isDone = !input.Add(regions[i], status);
  if (!isDone) zbr::Cover(input, std::max(times, 1), result, options, status, progress);
  if (status.code != ZBR_REGION_OK) result.Clear();
  return status;
}

ZBR_REGION zbrUniteRegions(const std::vector<ZBR_REGION>& regions, const ZBR_REGION_OPTIONS& options) {
  std::vector<ZBR_REGION_VIEW> views;
  views.reserve(regions.size());
  for (const ZBR_REGION& region : regions) views.push_back(region.view());
  ZBR_REGION result;
  zbrCoverRegions(views.data(), views.size(), 1, result, options);
  return result;
}

ZBR_REGION_STATUS zbrMakeValidRegion(const ZBR_REGION_VIEW& rings, ZBR_REGION& result, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  zbr::RegionInput input;
  if (input.Add(rings, status)) {
    const double tolerance = input.ToleranceFor(options);
    const zbr::Overlay overlay(input.rings(), input.rings().size(), tolerance, tolerance);
    status.exact = true;
    zbr::FlatRegion flat = overlay.Region([&](zbr::Winding w) { return zbr::IsFilled(options.fill_a, w.of[0]); }, options.sources);
    ZBR_REGION_ACCESS::Set(result, std::move(flat), input, options);
  } else {
    result.Clear();
  }
  return status;
}
