// Regions: arrays in, arrays out.
#include <zbr-drawing/frame.h>
#include <zbr-drawing/region.h>
#include <zbr/tolerance.h>

#include <cmath>

#include "web/bindings/exchange.h"
#include "web/bindings/exports.h"

static_assert(sizeof(ZBR_REGION_VIEW) == 6 * sizeof(std::uint32_t), "JavaScript writes these records");
static_assert(sizeof(ZBR_EDGE_SOURCE) == 32 && sizeof(ZBR_REGION_FAULT) == 40, "and reads these");

namespace zbr::web {
namespace {

ZBR_REGION_OPTIONS OptionsOf(const double* numbers) {
  ZBR_REGION_OPTIONS options;
  options.tolerance = numbers[0];
  options.fill_a = static_cast<ZBR_FILL_RULE>(numbers[1]);
  options.fill_b = static_cast<ZBR_FILL_RULE>(numbers[2]);
  options.sources = numbers[3] != 0;
  options.canonical = numbers[4] != 0;
  if (numbers[5] != 0) options.progress = MayGoOn;
  return options;
}

// A copy that knows areas. Offsets are to be checked before.
ZBR_REGION Copied(const ZBR_REGION_VIEW& view) {
  ZBR_REGION region;
  std::vector<ZBR_PT> ring;
  for (std::size_t r = 0; r < view.ring_count; ++r) {
    ring.clear();
    for (std::int32_t i = view.ring_offsets[r]; i < view.ring_offsets[r + 1]; ++i)
      ring.emplace_back(view.xy[2 * i], view.xy[2 * i + 1]);
    region.AddRing(ring);
  }
  return region;
}

// The polygons from `first` up to `end` of a view, with offsets that begin with 0 as a view's must.
struct Part {
  std::vector<std::int32_t> rings, polygons;
  ZBR_REGION_VIEW view;
};

Part PartOf(const ZBR_REGION_VIEW& all, std::int32_t first, std::int32_t end) {
  Part part;
  const std::int32_t ring = all.polygon_offsets[first], ringEnd = all.polygon_offsets[end];
  const std::int32_t point = all.ring_offsets[ring];
  for (std::int32_t r = ring; r <= ringEnd; ++r) part.rings.push_back(all.ring_offsets[r] - point);
  for (std::int32_t p = first; p <= end; ++p) part.polygons.push_back(all.polygon_offsets[p] - ring);
  part.view = {all.xy + 2 * point,   static_cast<std::size_t>(part.rings.back()),
               part.rings.data(),    part.rings.size() - 1,
               part.polygons.data(), part.polygons.size() - 1};
  return part;
}

bool Ascend(const std::int32_t* offsets, std::size_t count, std::size_t last) {
  if (offsets == nullptr || offsets[0] != 0) return false;
  for (std::size_t i = 0; i < count; ++i) {
    if (offsets[i + 1] < offsets[i]) return false;
  }
  return static_cast<std::size_t>(offsets[count]) == last;
}

// The library looks at each part by itself, and does not see that offsets between them are wrong.
void CheckParts(const ZBR_REGION_VIEW& all, const std::int32_t* parts, std::size_t count, int operand) {
  if (!Ascend(parts, count, all.polygon_count) || !Ascend(all.polygon_offsets, all.polygon_count, all.ring_count) ||
      !Ascend(all.ring_offsets, all.ring_count, all.point_count)) {
    ZBR_REGION_STATUS status;
    status.code = ZBR_REGION_BAD_OFFSETS;
    status.operand = operand;
    Demand(status);
  }
}

std::vector<Part> PartsOf(const ZBR_REGION_VIEW& all, const std::int32_t* parts, std::size_t count) {
  std::vector<Part> list;
  for (std::size_t i = 0; i < count; ++i) list.push_back(PartOf(all, parts[i], parts[i + 1]));
  return list;
}

std::vector<ZBR_REGION_VIEW> ViewsOf(const std::vector<Part>& parts) {
  std::vector<ZBR_REGION_VIEW> views;
  for (const Part& part : parts) views.push_back(part.view);
  return views;
}

// Results one behind the other.
void GiveTogether(const std::vector<ZBR_REGION>& results, Exchange& out) {
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> rings{0}, polygons{0}, parts{0};
  for (const ZBR_REGION& r : results) {
    const std::int32_t point = rings.back(), ring = polygons.back();
    points.insert(points.end(), r.points().begin(), r.points().end());
    for (std::size_t i = 0; i < r.ring_count(); ++i) rings.push_back(point + r.ring_offsets()[i + 1]);
    for (std::size_t i = 0; i < r.polygon_count(); ++i) polygons.push_back(ring + r.polygon_offsets()[i + 1]);
    parts.push_back(static_cast<std::int32_t>(polygons.size() - 1));
  }
  out.Give(std::move(points));
  out.Give(std::move(rings));
  out.Give(std::move(polygons));
  out.Give(std::move(parts));
}

}  // namespace
}  // namespace zbr::web

using namespace zbr::web;

int zbrwCombine(const ZBR_REGION_VIEW* ab, const std::int32_t* ops, int count, const double* options) {
  return Answer([&](Exchange& out) {
    std::vector<ZBR_BOOLEAN_OPE> codes;
    for (int k = 0; k < count; ++k) codes.push_back(static_cast<ZBR_BOOLEAN_OPE>(ops[k]));
    std::vector<ZBR_REGION> results(codes.size());
    Demand(zbrCombineRegions(ab[0], ab[1], codes.data(), results.data(), count, OptionsOf(options)));
    for (ZBR_REGION& result : results) out.Give(std::move(result));
  });
}

int zbrwCover(const ZBR_REGION_VIEW* regions, std::size_t count, int times, const double* options) {
  return Answer([&](Exchange& out) {
    ZBR_REGION result;
    Demand(zbrCoverRegions(regions, count, times, result, OptionsOf(options)));
    out.Give(std::move(result));
  });
}

int zbrwMakeValid(const ZBR_REGION_VIEW* rings, const double* options) {
  return Answer([&](Exchange& out) {
    ZBR_REGION result;
    Demand(zbrMakeValidRegion(*rings, result, OptionsOf(options)));
    out.Give(std::move(result));
  });
}

int zbrwSimplify(const ZBR_REGION_VIEW* rings, double tolerance, const double* options) {
  return Answer([&](Exchange& out) {
    ZBR_REGION result;
    Demand(zbrSimplifyRegion(*rings, tolerance, result, OptionsOf(options)));
    out.Give(std::move(result));
  });
}

int zbrwTraceFaces(const ZBR_REGION_VIEW* lines, const double* options) {
  return Answer([&](Exchange& out) {
    ZBR_REGION cells;
    Demand(zbrTraceFaces(*lines, cells, OptionsOf(options)));
    out.Give(std::move(cells));
  });
}

int zbrwCheck(const ZBR_REGION_VIEW* rings, std::size_t most) {
  return Answer([&](Exchange& out) {
    std::vector<ZBR_REGION_FAULT> faults;
    Demand(zbrCheckRegion(*rings, faults, most));
    std::string kinds;
    for (const ZBR_REGION_FAULT& fault : faults) kinds.append(NameOf(fault.kind)).append(1, '\n');
    out.Give(std::move(faults));
    out.Give(std::move(kinds));
  });
}

int zbrwMeasure(const ZBR_REGION_VIEW* region) {
  return Answer([&](Exchange& out) {
    if (!Ascend(region->ring_offsets, region->ring_count, region->point_count)) {
      ZBR_REGION_STATUS status;
      status.code = ZBR_REGION_BAD_OFFSETS;
      Demand(status);
    }
    const ZBR_REGION copy = Copied(*region);
    std::vector<double> numbers(6);
    numbers[0] = copy.area();
    numbers[1] = copy.perimeter();
    copy.GetBounds(numbers[2], numbers[3], numbers[4], numbers[5]);
    out.Give(std::move(numbers));
  });
}

int zbrwLocate(const ZBR_REGION_VIEW* region, const double* points, std::size_t count, const double* options) {
  return Answer([&](Exchange& out) {
    ZBR_REGION valid;
    Demand(zbrMakeValidRegion(*region, valid, OptionsOf(options)));
    Extent extent;
    for (const ZBR_PT& p : valid.points()) extent.Add(p);
    const Frame frame = Frame::For(extent);
    const ZBR_TmpEps hold(kTolerance);
    const ZBR_LOOP_LOCATOR locator(frame.In(valid));
    std::vector<std::int8_t> places(count);
    for (std::size_t i = 0; i < count; ++i) {
      const ZBR_PT p = frame.In(ZBR_PT(points[2 * i], points[2 * i + 1]));
      const bool isFar = !std::isfinite(p.x()) || !std::isfinite(p.y());
      const ZBR_POLY_INSIDE place = isFar ? ZBR_PI_OUT : locator.IsInside(p);
      places[i] = place == ZBR_PI_IN ? 1 : place == ZBR_PI_ON_EDGE || place == ZBR_PI_ON_VERTEX ? 0 : -1;
    }
    out.Give(std::move(places));
  });
}

int zbrwCombinePairs(const ZBR_REGION_VIEW* ab, const std::int32_t* partsA, const std::int32_t* partsB, std::size_t count, int op,
                     const double* options) {
  return Answer([&](Exchange& out) {
    CheckParts(ab[0], partsA, count, 0);
    CheckParts(ab[1], partsB, count, 1);
    const std::vector<Part> a = PartsOf(ab[0], partsA, count), b = PartsOf(ab[1], partsB, count);
    const std::vector<ZBR_REGION_VIEW> viewsA = ViewsOf(a), viewsB = ViewsOf(b);
    std::vector<ZBR_REGION> results(count);
    Demand(zbrCombineRegionPairs(viewsA.data(), viewsB.data(), count, static_cast<ZBR_BOOLEAN_OPE>(op), results.data(),
                                 OptionsOf(options)));
    GiveTogether(results, out);
  });
}
