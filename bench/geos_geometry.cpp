// Workloads as GEOS geometries.

#include "geos_geometry.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace bench {

struct GeosContext::Message {
  std::string text;
};

namespace {

GeosGeometry MakeRing(const GeosContext& geos, const Ring& ring) {
  std::vector<double> xy;
  xy.reserve(2 * ring.size() + 2);
  const auto append = [&](const ZBR_PT& p) {
    xy.push_back(p.x());
    xy.push_back(p.y());
  };
  for (const ZBR_PT& p : ring) append(p);
  append(ring.front());
  GEOSCoordSequence* points =
      GEOSCoordSeq_copyFromBuffer_r(geos.handle(), xy.data(), static_cast<unsigned int>(ring.size() + 1), 0, 0);
  return geos.Own(GEOSGeom_createLinearRing_r(geos.handle(), points));
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

}  // namespace bench
