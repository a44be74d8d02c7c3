// What several regions cover, and repair of one.
//
// Idea: regions that are valid, their outer rings counter-clockwise and their holes clockwise, wind once around what they cover. So
// each is made valid by itself, which costs nothing for a ring that is simple, and then the winding number of a place is the number
// of regions that cover it. Their union is walked along crossings where these are certain; otherwise all are arranged at once.
#include <algorithm>
#include <cmath>
#include <optional>

#include <zbr/region.h>

#include "boolean/counted_rings.h"
#include "boolean/region_input.h"
#include "boolean/union_walk.h"
#include "core/box_tree.h"
#include "core/rings.h"
#include "loops/nesting.h"

namespace zbr {
namespace {

// Of the work, for the progress: up to where rings are counted, and up to where neighbours are united.
constexpr double kShareOfCounting = 0.4;
constexpr double kShareOfNeighbours = 0.7;

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

// Puts holes, which are clockwise, to the outer rings that they lie in. Nothing when some lies in none.
std::optional<FlatRegion> PolygonsOf(const FlatRegion& flat, double tolerance) {
  const std::vector<RingSpan> rings = flat.Rings();
  const NestedRings nested(rings, tolerance);
  std::vector<bool> isHole;
  for (const RingSpan& ring : rings) isHole.push_back(TwiceArea(ring) < 0.0);
  std::vector<std::vector<std::uint32_t>> holes(rings.size());
  for (std::size_t k = 0; k < rings.size(); ++k) {
    if (!isHole[nested.order[k]]) continue;
    if (nested.parents[k] == kNoParent || isHole[nested.order[nested.parents[k]]]) return std::nullopt;
    holes[nested.order[nested.parents[k]]].push_back(nested.order[k]);
  }
  FlatRegion region;
  for (std::uint32_t r = 0; r < rings.size(); ++r) {
    if (isHole[r]) continue;
    AppendRings(flat, r, r + 1, region);
    for (const std::uint32_t hole : holes[r]) AppendRings(flat, hole, hole + 1, region);
    region.polygonEnds.push_back(static_cast<std::uint32_t>(region.ringEnds.size()));
  }
  return region;
}

// The union of many, neighbours first: what lies inside the union of a few goes at once and is not crossed with all the others, a
// few fit in the cache, and where one crossing is not certain only these few are arranged.
class ManyUnited {
 public:
  ManyUnited(const CountedRings& counted, double tolerance, RegionProgress& progress)
      : counted_(counted), tolerance_(tolerance), progress_(progress) {}

  // Nothing when the caller stopped it.
  std::optional<FlatRegion> Run() {
    std::vector<Part> parts = UniteNeighbours();
    for (double share = kShareOfNeighbours; parts.size() > 1 && !isStopped_; share += 0.5 * (1.0 - share)) {
      constexpr std::size_t kPartsTogether = 64;
      std::vector<Part> united;
      for (std::size_t first = 0; first < parts.size(); first += kPartsTogether) {
        Group group;
        for (std::size_t k = first; k < std::min(first + kPartsTogether, parts.size()); ++k) {
          group.Add(parts[k].rings, 0, static_cast<std::uint32_t>(parts[k].rings.ringEnds.size()), parts[k].areApart);
        }
        united.push_back(United(group, share));
      }
      parts = std::move(united);
    }
    if (isStopped_) return std::nullopt;
    if (parts.empty()) return FlatRegion();
    if (parts.front().wasArranged) return std::move(parts.front().rings);
    std::optional<FlatRegion> region = PolygonsOf(parts.front().rings, tolerance_);
    if (region) return region;
    wasExact_ = true;
    return CoverOf(parts.front().rings, 1, tolerance_);
  }
  bool WasExact() const { return wasExact_; }

 private:
  // What some regions cover. Walked rings are apart, but are no polygons yet.
  struct Part {
    FlatRegion rings;
    bool wasArranged = false;
    bool areApart = true;
  };

  struct Group {
    FlatRegion rings;
    std::vector<std::uint32_t> ends;
    bool areApart = true;

    void Add(const FlatRegion& from, std::uint32_t first, std::uint32_t last, bool isApart) {
      AppendRings(from, first, last, rings);
      ends.push_back(static_cast<std::uint32_t>(rings.ringEnds.size()));
      areApart = areApart && isApart;
    }
  };

  std::vector<Part> UniteNeighbours() {
    constexpr std::size_t kTogether = 200;
    const FlatRegion& all = counted_.region();
    const std::vector<std::uint32_t>& ends = counted_.ends();
    const auto begin = [&](std::uint32_t i) { return i == 0 ? 0 : ends[i - 1]; };
    std::vector<ZBR_PT> centres;
    for (std::uint32_t i = 0; i < ends.size(); ++i) {
      Box box;
      for (std::uint32_t r = begin(i); r < ends[i]; ++r) box.Add(BoxOfRing(all.Ring(r)));
      centres.push_back(begin(i) == ends[i] ? ZBR_PT() : box.Center());
    }
    const std::vector<std::uint32_t> order = SpatialOrder(centres);
    std::vector<Part> parts;
    for (std::size_t first = 0; first < order.size() && !isStopped_; first += kTogether) {
      Group group;
      for (std::size_t k = first; k < std::min(first + kTogether, order.size()); ++k)
        group.Add(all, begin(order[k]), ends[order[k]], counted_.AreApart(order[k]));
      parts.push_back(United(
          group, std::lerp(kShareOfCounting, kShareOfNeighbours, static_cast<double>(first) / static_cast<double>(order.size()))));
    }
    return parts;
  }

  Part United(const Group& group, double share) {
    isStopped_ = isStopped_ || !progress_.GoesOn(share);
    Part part;
    if (isStopped_) return part;
    const bool withSources = !group.rings.sourceEnds.empty();
    std::optional<FlatRegion> walked;
    if (group.areApart) walked = WalkUnion({group.rings, group.ends}, tolerance_, withSources);
    if (walked) {
      if (withSources) TraceBack(group.rings, *walked);
      part.rings = std::move(*walked);
    } else {
      wasExact_ = true;
      part.wasArranged = true;
      part.rings = CoverOf(group.rings, 1, tolerance_);
      part.areApart = AreSimple(part.rings.Rings(), tolerance_);
    }
    return part;
  }

  const CountedRings& counted_;
  double tolerance_;
  RegionProgress& progress_;
  bool isStopped_ = false;
  bool wasExact_ = false;
};

void Cover(const RegionInput& input, int times, ZBR_REGION& result, const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status,
           RegionProgress& progress) {
  constexpr std::size_t kEvery = 256;  // regions
  const double tolerance = input.ToleranceFor(options);
  CountedRings counted(tolerance, options.fill_a, options.sources);
  for (std::size_t i = 0; i < input.operands(); ++i) {
    counted.Add(input.operand(i));
    const double share = kShareOfCounting * static_cast<double>(i) / static_cast<double>(input.operands());
    if (i % kEvery == 0 && !progress.GoesOn(share)) return;
  }
  ManyUnited many(counted, tolerance, progress);
  std::optional<FlatRegion> flat = times == 1 ? many.Run() : CoverOf(counted.region(), times, tolerance);
  status.exact = times != 1 || many.WasExact() || counted.WasExact();
  if (flat) ZBR_REGION_ACCESS::SetResult(result, std::move(*flat), input, options, status);
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
  if (!isDone) {
    input.ScaleUp();
    zbr::Cover(input, std::max(times, 1), result, options, status, progress);
    ZBR_REGION_ACCESS::Scale(result, input.ExponentBack());
  }
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
  const auto isFilled = [&](zbr::Winding w) { return zbr::IsFilled(options.fill_a, w.of[0]); };
  return zbr::FormOfOne(
      rings, result, options,
      [](const zbr::RegionInput& input, double tolerance) {
        return zbr::Overlay(input.rings(), input.rings().size(), tolerance, tolerance);
      },
      [&](const zbr::Overlay& overlay) { return overlay.Region(isFilled, options.sources); });
}
