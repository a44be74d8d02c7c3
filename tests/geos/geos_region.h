// Regions as GEOS geometries: an independent answer for random and foreign input.
#pragma once

#include <geos_c.h>

#include <array>
#include <memory>

#include "support/shapes.h"

// One GEOS context; geometries made with it must not outlive it.
class Geos {
 public:
  struct Destroy {
    GEOSContextHandle_t context = nullptr;
    void operator()(GEOSGeometry* g) const { GEOSGeom_destroy_r(context, g); }
  };
  using Geometry = std::unique_ptr<GEOSGeometry, Destroy>;

  Geos() : context_(GEOS_init_r()) {}
  ~Geos() { GEOS_finish_r(context_); }
  Geos(const Geos&) = delete;
  Geos& operator=(const Geos&) = delete;

  // What an odd number of the rings encloses. Null when GEOS cannot.
  Geometry EvenOdd(const std::vector<Ring>& rings) const;
  // Polygons as they are, valid or not: rings up to ends[k] belong to polygon k, its outer ring first, then its holes. Null when a
  // ring has fewer than three points.
  Geometry Polygons(const std::vector<Ring>& rings, const std::vector<std::size_t>& ends) const;
  // The same back: outer rings counter-clockwise, holes clockwise. What is not an area is left out.
  void Read(const Geometry& g, std::vector<Ring>& rings, std::vector<std::size_t>& ends) const;
  bool IsValid(const Geometry& g) const { return g && GEOSisValid_r(context_, g.get()) == 1; }
  Geometry Operate(ZBR_BOOLEAN_OPE op, const Geometry& a, const Geometry& b) const;

 private:
  Geometry Own(GEOSGeometry* g) const { return Geometry(g, Destroy{context_}); }
  Geometry Line(const std::vector<ZBR_PT>& ring, bool asRing) const;
  Geometry Polygon(const std::vector<ZBR_PT>& ring) const;
  Ring ReadRing(const GEOSGeometry* line, bool counterClockwise) const;

  GEOSContextHandle_t context_;
};
