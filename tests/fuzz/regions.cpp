// Regions as flat arrays of any doubles, with offsets that lead anywhere now and then: what is refused gives nothing, and what is
// taken gives regions that stay what they are when they are made valid once more, and whose areas add up.
#include <zbr/region.h>

#include "fuzz/rings.h"

namespace {

struct Arrays {
  explicit Arrays(Bytes& bytes, bool wild) {
    for (const Ring& ring : AnyRings(bytes, wild)) {
      for (const ZBR_PT& p : ring) xy.insert(xy.end(), {p.x(), p.y()});
      rings.push_back(static_cast<std::int32_t>(xy.size() / 2));
    }
    std::int32_t& any = rings[static_cast<std::size_t>(bytes.Below(4)) % rings.size()];
    if (bytes.Below(16) == 15) any = static_cast<std::int32_t>(bytes.Word(4));
    polygons = {0, bytes.Below(8) == 7 ? 1000 : static_cast<std::int32_t>(rings.size()) - 1};
    withPolygons = bytes.Flag();
  }
  ZBR_REGION_VIEW View() const {
    return {xy.data(), xy.size() / 2, rings.data(), rings.size() - 1, withPolygons ? polygons.data() : nullptr, 1};
  }
  std::vector<double> xy;
  std::vector<std::int32_t> rings{0};
  std::vector<std::int32_t> polygons;
  bool withPolygons = false;
};

void Check(const ZBR_REGION_STATUS& status, const ZBR_REGION& region, bool wild) {
  Require(status.code == ZBR_REGION_OK || (region.empty() && status.operand >= 0), "what is refused is empty and says where");
  for (const ZBR_PT& p : region.points()) Require(std::isfinite(p.x()) && std::isfinite(p.y()), "points are finite");
  Require(region.sources().empty() || region.source_offsets().size() == region.point_count() + 1, "every edge has sources");
  ZBR_REGION again;
  Require(zbrMakeValidRegion(region.view(), again).code == ZBR_REGION_OK, "a result is an operand");
  if (wild) return;
  Require(region.area() >= 0.0 && std::abs(again.area() - region.area()) <= 1e-6, "what is valid stays as it is");
  Require(IsRegion(RingsOf(region)), "rings wind once around the region", [&] { return ToText(zbrLoopsOfRegion(region.view())); });
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const bool wild = bytes.Flag();
  const Arrays arrays[] = {Arrays(bytes, wild), Arrays(bytes, wild)};
  const ZBR_REGION_VIEW views[] = {arrays[0].View(), arrays[1].View()};
  ZBR_REGION_OPTIONS options;
  options.fill_a = options.fill_b = static_cast<ZBR_FILL_RULE>(bytes.Below(4));
  options.sources = bytes.Flag();
  options.canonical = bytes.Flag();
  if (bytes.Below(4) == 3) options.tolerance = std::ldexp(1.0, -bytes.Below(40));
  ZBR_REGION results[5], valid[2], united, simple;
  const ZBR_REGION_STATUS status = zbrCombineRegions(views[0], views[1], kOps.data(), results, 5, options);
  for (const ZBR_REGION& result : results) Check(status, result, wild);
  for (int k = 0; k < 2; ++k) Check(zbrMakeValidRegion(views[k], valid[k], options), valid[k], wild);
  Check(zbrCoverRegions(views, 2, 1 + bytes.Below(2), simple, options), simple, wild);
  Check(zbrCoverRegions(views, 2, 1, united, options), united, wild);
  Check(zbrSimplifyRegion(views[0], bytes.Below(2) * 0.125, simple, options), simple, wild);
  std::vector<std::int32_t> depths, parents;
  const bool nests = zbrNestRegion(views[0], depths, parents).code == ZBR_REGION_OK;
  Require(depths.size() == (nests ? views[0].ring_count : 0), "every ring has a depth");
  if (wild || status.code != ZBR_REGION_OK || options.tolerance > 1e-6) return;
  const double both = valid[0].area() + valid[1].area();
  Require(std::abs(results[2].area() + results[3].area() - both) < 1e-2, "areas add up");
  Require(std::abs(united.area() - results[2].area()) < 1e-2, "the union of many is that of two");
}
