// Workloads as GEOS geometries.

#include "geos_geometry.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace bench {

struct GeosContext::Message {
  std::string text;
};

namespace {

GEOSCoordSequence* MakePoints(const GeosContext& geos, const std::vector<ZBR_PT>& line, bool closed) {
  std::vector<double> xy;
  xy.reserve(2 * line.size() + 2);
  const auto append = [&](const ZBR_PT& p) {
    xy.push_back(p.x());
    xy.push_back(p.y());
  };
  for (const ZBR_PT& p : line) append(p);
  if (closed) append(line.front());
  return GEOSCoordSeq_copyFromBuffer_r(geos.handle(), xy.data(), static_cast<unsigned int>(xy.size() / 2), 0, 0);
}

GeosGeometry MakeRing(const GeosContext& geos, const Ring& ring) {
  return geos.Own(GEOSGeom_createLinearRing_r(geos.handle(), MakePoints(geos, ring, true)));
}

std::vector<GeosGeometry> MakeRings(const GeosContext& geos, const std::vector<Ring>& rings) {
  std::vector<GeosGeometry> made;
  made.reserve(rings.size());
  for (const Ring& ring : rings) made.push_back(MakeRing(geos, ring));
  return made;
}

// Gives the parts away, as the calls that build on them ask.
std::vector<GEOSGeometry*> Release(std::vector<GeosGeometry>& parts) {
  std::vector<GEOSGeometry*> released;
  released.reserve(parts.size());
  for (GeosGeometry& part : parts) released.push_back(part.release());
  return released;
}

GeosGeometry MakePolygon(const GeosContext& geos, const Polygon& polygon) {
  GeosGeometry outer = MakeRing(geos, polygon.outer);
  std::vector<GeosGeometry> holes = MakeRings(geos, polygon.holes);
  const auto count = static_cast<unsigned int>(holes.size());
  return geos.Own(GEOSGeom_createPolygon_r(geos.handle(), outer.release(), Release(holes).data(), count));
}

GeosGeometry Collect(const GeosContext& geos, int type, std::vector<GeosGeometry> parts) {
  const auto count = static_cast<unsigned int>(parts.size());
  return geos.Own(GEOSGeom_createCollection_r(geos.handle(), type, Release(parts).data(), count));
}

double RingArea(const GeosContext& geos, const GEOSGeometry* line) {
  const GEOSCoordSequence* points = GEOSGeom_getCoordSeq_r(geos.handle(), line);
  unsigned int size = 0;
  GEOSCoordSeq_getSize_r(geos.handle(), points, &size);
  std::vector<double> xy(2 * static_cast<std::size_t>(size));
  GEOSCoordSeq_copyToBuffer_r(geos.handle(), points, xy.data(), 0, 0);
  Ring ring;
  ring.reserve(size);
  for (std::size_t i = 0; i < xy.size(); i += 2) ring.emplace_back(xy[i], xy[i + 1]);
  return std::abs(Area(ring));
}

}  // namespace

GeosContext::GeosContext() : handle_(GEOS_init_r()), message_(std::make_unique<Message>()) {
  GEOSContext_setErrorMessageHandler_r(
      handle_, [](const char* text, void* message) { static_cast<Message*>(message)->text = text; }, message_.get());
}

GeosContext::~GeosContext() {
  GEOS_finish_r(handle_);
}

GeosGeometry GeosContext::Own(GEOSGeometry* geometry) const {
  if (geometry == nullptr) throw std::runtime_error("GEOS: " + message_->text);
  return GeosGeometry(geometry, GeosDeleter{handle_});
}

GeosGeometry MakeGeometry(const GeosContext& geos, const Region& region) {
  std::vector<GeosGeometry> polygons;
  for (const Polygon& polygon : region) polygons.push_back(MakePolygon(geos, polygon));
  return Collect(geos, GEOS_MULTIPOLYGON, std::move(polygons));
}

GeosGeometry MakeLines(const GeosContext& geos, const std::vector<Ring>& rings) {
  return Collect(geos, GEOS_GEOMETRYCOLLECTION, MakeRings(geos, rings));
}

GeosGeometry MakePolygons(const GeosContext& geos, const std::vector<Ring>& rings) {
  std::vector<GeosGeometry> polygons;
  polygons.reserve(rings.size());
  for (const Ring& ring : rings) polygons.push_back(MakePolygon(geos, {ring, {}}));
  return Collect(geos, GEOS_MULTIPOLYGON, std::move(polygons));
}

GeosGeometry MakeLine(const GeosContext& geos, const std::vector<ZBR_PT>& line) {
  return geos.Own(GEOSGeom_createLineString_r(geos.handle(), MakePoints(geos, line, false)));
}

Summary Summarise(const GeosContext& geos, const GEOSGeometry* geometry) {
  Summary summary;
  const int parts = GEOSGetNumGeometries_r(geos.handle(), geometry);
  for (int i = 0; i < parts; ++i) {
    const GEOSGeometry* part = GEOSGetGeometryN_r(geos.handle(), geometry, i);
    if (GEOSisEmpty_r(geos.handle(), part) != 0 || GEOSGeomTypeId_r(geos.handle(), part) != GEOS_POLYGON) continue;
    summary.Add(RingArea(geos, GEOSGetExteriorRing_r(geos.handle(), part)));
    const int holes = GEOSGetNumInteriorRings_r(geos.handle(), part);
    for (int k = 0; k < holes; ++k) summary.Add(-RingArea(geos, GEOSGetInteriorRingN_r(geos.handle(), part, k)));
  }
  return summary;
}

}  // namespace bench
