// Regions of drawings: rings, union of polygons, loops.
#include <zbr-drawing/region.h>

#include <zbr-drawing/failure.h>

#include <cstddef>
#include <utility>

namespace zbr::drawing {
namespace {

bool HasPolygons(const Contours& contours) {
  return !contours.rings.empty() && contours.rings.front().polygon >= 0;
}

// The rings of each polygon as a region.
std::vector<ZBR_REGION> PolygonsOf(const Contours& contours) {
  std::vector<ZBR_REGION> polygons;
  int current = -1;
  for (const Ring& ring : contours.rings) {
    if (polygons.empty() || ring.polygon != current) polygons.emplace_back();
    current = ring.polygon;
    polygons.back().AddRing(ring.points);
  }
  return polygons;
}

// The polygons with what their edges stand for.
std::vector<CurvedRegion> PartsOf(const CurvedRegion& whole, const std::vector<ZBR_REGION>& polygons) {
  std::vector<CurvedRegion> parts;
  auto first = whole.origins.begin();
  for (const ZBR_REGION& polygon : polygons) {
    const auto end = first + static_cast<std::ptrdiff_t>(polygon.point_count());
    parts.push_back({polygon, std::vector<EdgeOrigin>(first, end), whole.curves, whole.pens});
    first = end;
  }
  return parts;
}

// The number of the first ring of each polygon does not matter: the place is told by the check, which looks at all rings.
void Require(const ZBR_REGION_STATUS& status, const std::string& file) {
  if (status.code == ZBR_REGION_TOO_LARGE) throw Failure(file, "too many points");
  if (status.code != ZBR_REGION_OK) throw Failure(file, "coordinates are out of range");
}

// Faults that change what is bounded. Rings of different polygons may meet in any way.
std::vector<ZBR_REGION_FAULT> MeetingsIn(const Contours& contours, const ZBR_REGION& rings) {
  constexpr std::size_t kMost = 1000;  // one is enough to warn, but polygons that only meet each other use some up
  std::vector<ZBR_REGION_FAULT> faults;
  Require(zbrCheckRegion(rings.view(), faults, kMost), contours.file);
  std::erase_if(faults, [&](const ZBR_REGION_FAULT& fault) {
    const Ring& ring = contours.rings[static_cast<std::size_t>(fault.ring_a)];
    if (fault.kind == ZBR_FAULT_NOT_FINITE) FailAt(contours.file, ring.line, "coordinates are out of range");
    return fault.ring_b < 0 || ring.polygon != contours.rings[static_cast<std::size_t>(fault.ring_b)].polygon;
  });
  return faults;
}

}  // namespace

ZBR_REGION RingsOf(const Contours& contours) {
  ZBR_REGION rings;
  for (const Ring& ring : contours.rings) rings.AddRing(ring.points);
  return rings;
}

Region MakeRegion(const Contours& contours, ZBR_FILL_RULE rule) {
  Region region;
  region.rings = RingsOf(contours);
  region.curves = contours.curves;
  region.pens = contours.pens;
  for (const Ring& ring : contours.rings) region.origins.insert(region.origins.end(), ring.origins.begin(), ring.origins.end());
  region.fill = rule;
  region.faults = MeetingsIn(contours, region.rings);
  if (!HasPolygons(contours)) return region;
  const std::vector<ZBR_REGION> polygons = PolygonsOf(contours);
  std::vector<ZBR_REGION_VIEW> views;
  for (const ZBR_REGION& polygon : polygons) views.push_back(polygon.view());
  ZBR_REGION_OPTIONS options;
  options.fill_a = rule;
  options.canonical = true;
  options.sources = region.HasCurves();
  ZBR_REGION covered;
  Require(zbrCoverRegions(views.data(), views.size(), 1, covered, options), contours.file);
  if (region.HasCurves()) {
    const std::vector<CurvedRegion> parts = PartsOf(region, polygons);
    std::vector<const CurvedRegion*> operands;
    for (const CurvedRegion& part : parts) operands.push_back(&part);
    static_cast<CurvedRegion&>(region) = Traced(std::move(covered), operands);
  } else {
    region.rings = std::move(covered);
  }
  region.fill = ZBR_FILL_EVEN_ODD;
  region.isValid = true;
  return region;
}

ZBR_REGION ValidShape(const Region& region) {
  if (region.isValid) return region.rings;
  ZBR_REGION_OPTIONS options;
  options.fill_a = region.fill;
  options.canonical = true;
  ZBR_REGION shape;
  zbrMakeValidRegion(region.rings.view(), shape, options);
  return shape;
}

CurvedRegion CurvedShape(const Region& region) {
  if (region.isValid) return region;
  if (!region.HasCurves()) return {ValidShape(region), {}, region.curves, region.pens};
  ZBR_REGION_OPTIONS options;
  options.fill_a = region.fill;
  options.canonical = true;
  options.sources = true;
  ZBR_REGION shape;
  zbrMakeValidRegion(region.rings.view(), shape, options);
  return Traced(std::move(shape), {&region});
}

Layer MakeLayer(const std::string& name, const ZBR_REGION& shape) {
  return {name, zbrLoopsOfRegion(shape.view()), shape.area(), {}, 0};
}

Layer MakeLayer(const std::string& name, const CurvedRegion& shape) {
  Layer layer{name, zbrLoopsOfRegion(shape.rings.view()), shape.Area(), {}, 0};
  if (shape.HasCurves()) layer.outlines = OutlinesOf(shape, &layer.beside);
  layer.pens = shape.pens;
  return layer;
}

const char* NameOf(ZBR_REGION_FAULT_KIND kind) {
  switch (kind) {
    case ZBR_FAULT_CROSSING:
      return "crossing";
    case ZBR_FAULT_OVERLAP:
      return "overlap";
    case ZBR_FAULT_FOLD:
      return "fold";
    case ZBR_FAULT_REPEATED_POINT:
      return "repeated_point";
    case ZBR_FAULT_NO_AREA:
      return "no_area";
    default:
      return "not_finite";
  }
}

std::size_t CountHoles(const LoopList& loops) {
  std::size_t count = 0;
  for (const auto& outer : loops) count += outer->children().size();
  return count;
}

std::size_t CountVertices(const LoopList& loops) {
  std::size_t count = 0;
  ForEachRing(loops, [&](const ZBR_LOOP& loop) { count += loop.pt().size(); });
  return count;
}

}  // namespace zbr::drawing
