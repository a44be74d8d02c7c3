// Workloads as GEOS geometries, with ownership.
#pragma once

#include <geos_c.h>

#include <memory>
#include <vector>

#include "peer.h"
#include "workloads.h"

namespace bench {

struct GeosDeleter {
  GEOSContextHandle_t handle;
  void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(handle, geometry); }
};

using GeosGeometry = std::unique_ptr<GEOSGeometry, GeosDeleter>;

// A GEOS context; it outlives the geometries made with it.
class GeosContext {
 public:
  GeosContext();
  ~GeosContext();
  GeosContext(const GeosContext&) = delete;
  GeosContext& operator=(const GeosContext&) = delete;

  GEOSContextHandle_t handle() const { return handle_; }
  // Takes over what a GEOS call returned. Null, its sign of failure, becomes a std::runtime_error with GEOS's message.
  GeosGeometry Own(GEOSGeometry* geometry) const;

 private:
  struct Message;
  GEOSContextHandle_t handle_;
  std::unique_ptr<Message> message_;
};

// A multipolygon of the region.
GeosGeometry MakeGeometry(const GeosContext& geos, const Region& region);

// The rings as a collection of closed lines.
GeosGeometry MakeLines(const GeosContext& geos, const std::vector<Ring>& rings);

// The rings as polygons of their own, which may overlap: a multipolygon that is not valid, but can be united.
GeosGeometry MakePolygons(const GeosContext& geos, const std::vector<Ring>& rings);

// An open line of at least two points.
GeosGeometry MakeLine(const GeosContext& geos, const std::vector<ZBR_PT>& line);

// Area and rings of a polygon or a collection of polygons.
Summary Summarise(const GeosContext& geos, const GEOSGeometry* geometry);

}  // namespace bench
