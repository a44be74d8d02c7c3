// What several regions cover, and repair of one.
//
// Idea: regions that are valid, their outer rings counter-clockwise and their holes clockwise, wind once around what they cover. So
// each is made valid by itself, which costs nothing for a ring that is simple, and then all are arranged at once: the winding
// number of a place is the number of regions that cover it.
#include <algorithm>

#include <zbr/region.h>

#include "boolean/region_input.h"
#include "core/box_tree.h"
#include "core/rings.h"
#include "core/tolerance_state.h"
#include "loops/edge_index.h"
#include "loops/simplicity.h"

namespace zbr {
namespace {

bool IsSimpleRing(RingSpan ring, double tolerance) {
  if (ring.size() < 3) return false;
  const ToleranceScope scope(tolerance);
  const auto n = static_cast<std::uint32_t>(ring.size());
  EdgeIndex index;
  index.Build({{BoxOfRing(ring), ring.data(), n, 0, n, 0, false}}, 0.0, tolerance * tolerance);
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
    ends_.push_back(static_cast<std::uint32_t>(region_.ringEnds.size()));
  }

  const FlatRegion& region() const { return region_; }
  // By region that was added: the end of its rings.
  const std::vector<std::uint32_t>& ends() const { return ends_; }

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
  std::vector<std::uint32_t> ends_;
};

// Appends rings of one region, with their sources, to another.
void AppendRings(const FlatRegion& from, std::uint32_t firstRing, std::uint32_t lastRing, FlatRegion& to) {
  for (std::uint32_t r = firstRing; r < lastRing; ++r) {
    const std::uint32_t begin = r == 0 ? 0 : from.ringEnds[r - 1];
    for (std::uint32_t i = begin; i < from.ringEnds[r]; ++i) {
      to.points.push_back(from.points[i]);
      if (from.sourceEnds.empty()) continue;
      to.sources.insert(to.sources.end(), from.sources.begin() + (i == 0 ? 0 : from.sourceEnds[i - 1]),
                        from.sources.begin() + from.sourceEnds[i]);
      to.sourceEnds.push_back(static_cast<std::uint32_t>(to.sources.size()));
    }
    to.ringEnds.push_back(static_cast<std::uint32_t>(to.points.size()));
  }
}

FlatRegion CoverOf(const FlatRegion& counted, int times, double tolerance) {
  const std::vector<RingSpan> rings = counted.Rings();
  const Overlay overlay(rings, rings.size(), tolerance, tolerance);
  const bool withSources = !counted.sourceEnds.empty();
  FlatRegion region = overlay.Region([times](Winding w) { return w.of[0] >= times; }, withSources);
  if (withSources) TraceBack(counted, region);
  return region;
}

// The union of many, neighbours first: what lies inside the union of a few goes at once and is not crossed with all the others, and
// a few fit in the cache.
FlatRegion UnionOf(const CountedRings& counted, double tolerance) {
  constexpr std::size_t kTogether = 200;
  const FlatRegion& all = counted.region();
  const std::vector<std::uint32_t>& ends = counted.ends();
  const auto begin = [&](std::uint32_t i) { return i == 0 ? 0 : ends[i - 1]; };
  std::vector<ZBR_PT> centres;
  for (std::uint32_t i = 0; i < ends.size(); ++i) {
    Box box;
    for (std::uint32_t r = begin(i); r < ends[i]; ++r) box.Add(BoxOfRing(all.Ring(r)));
    centres.push_back(begin(i) == ends[i] ? ZBR_PT() : box.Center());
  }
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  std::vector<FlatRegion> parts;
  for (std::size_t first = 0; first < order.size(); first += kTogether) {
    FlatRegion group;
    for (std::size_t k = first; k < std::min(first + kTogether, order.size()); ++k)
      AppendRings(all, begin(order[k]), ends[order[k]], group);
    parts.push_back(CoverOf(group, 1, tolerance));
  }
  while (parts.size() > 1) {
    constexpr std::size_t kPartsTogether = 64;
    std::vector<FlatRegion> united;
    for (std::size_t first = 0; first < parts.size(); first += kPartsTogether) {
      FlatRegion group;
      for (std::size_t k = first; k < std::min(first + kPartsTogether, parts.size()); ++k) {
        AppendRings(parts[k], 0, static_cast<std::uint32_t>(parts[k].ringEnds.size()), group);
      }
      united.push_back(CoverOf(group, 1, tolerance));
    }
    parts = std::move(united);
  }
  return parts.empty() ? FlatRegion() : std::move(parts.front());
}

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
  status.exact = true;
  FlatRegion flat = times == 1 ? UnionOf(counted, tolerance) : CoverOf(counted.region(), times, tolerance);
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
  zbr::RegionProgress progress(options, status);
  if (!input.Add(rings, status) || !progress.GoesOn(0.0)) {
    result.Clear();
    return status;
  }
  const double tolerance = input.ToleranceFor(options);
  const zbr::Overlay overlay(input.rings(), input.rings().size(), tolerance, tolerance);
  status.exact = true;
  constexpr double kShareOfSearch = 0.6;
  if (!progress.GoesOn(kShareOfSearch)) {
    result.Clear();
    return status;
  }
  zbr::FlatRegion flat = overlay.Region([&](zbr::Winding w) { return zbr::IsFilled(options.fill_a, w.of[0]); }, options.sources);
  ZBR_REGION_ACCESS::Set(result, std::move(flat), input, options);
  return status;
}
