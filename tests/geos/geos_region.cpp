#include "geos/geos_region.h"

#include <algorithm>
#include <cmath>
#include <string>

Geos::Geometry Geos::Line(const std::vector<ZBR_PT>& ring, bool asRing) const {
  const auto n = static_cast<unsigned>(ring.size());
  GEOSCoordSequence* points = GEOSCoordSeq_create_r(context_, n + 1, 2);
  for (unsigned i = 0; i <= n; ++i) GEOSCoordSeq_setXY_r(context_, points, i, ring[i % n].x(), ring[i % n].y());
  return Own(asRing ? GEOSGeom_createLinearRing_r(context_, points) : GEOSGeom_createLineString_r(context_, points));
}

Geos::Geometry Geos::Polygon(const std::vector<ZBR_PT>& ring) const {
  Geometry line = Line(ring, true);
  if (!line) return line;
  Geometry polygon = Own(GEOSGeom_createPolygon_r(context_, line.release(), nullptr, 0));
  if (polygon && GEOSisValid_r(context_, polygon.get()) != 1) polygon = Own(GEOSMakeValid_r(context_, polygon.get()));
  return polygon;
}

Geos::Geometry Geos::EvenOdd(const std::vector<Ring>& rings) const {
  Geometry all = Own(GEOSGeom_createEmptyPolygon_r(context_));
  for (const Ring& ring : rings) {
    if (ring.size() < 3) continue;
    const Geometry part = Polygon(ring);
    if (!part || !all) return nullptr;
    all = Own(GEOSSymDifference_r(context_, all.get(), part.get()));
  }
  return all;
}

Geos::Geometry Geos::Polygons(const std::vector<Ring>& rings, const std::vector<std::size_t>& ends) const {
  if (std::any_of(rings.begin(), rings.end(), [](const Ring& ring) { return ring.size() < 3; })) return nullptr;
  std::vector<GEOSGeometry*> parts;
  std::size_t i = 0;
  for (const std::size_t end : ends) {
    GEOSGeometry* const outer = Line(rings[i], true).release();
    std::vector<GEOSGeometry*> holes;
    for (++i; i < end; ++i) holes.push_back(Line(rings[i], true).release());
    parts.push_back(GEOSGeom_createPolygon_r(context_, outer, holes.data(), static_cast<unsigned>(holes.size())));
  }
  const auto count = static_cast<unsigned>(parts.size());
  return Own(GEOSGeom_createCollection_r(context_, GEOS_MULTIPOLYGON, parts.data(), count));
}

Ring Geos::ReadRing(const GEOSGeometry* line, bool counterClockwise) const {
  const GEOSCoordSequence* const points = GEOSGeom_getCoordSeq_r(context_, line);
  unsigned n = 0;
  char turn = 0;
  GEOSCoordSeq_getSize_r(context_, points, &n);
  GEOSCoordSeq_isCCW_r(context_, points, &turn);
  Ring ring;
  for (unsigned i = 0; i + 1 < n; ++i) {
    double x = 0.0;
    double y = 0.0;
    GEOSCoordSeq_getXY_r(context_, points, i, &x, &y);
    ring.emplace_back(x, y);
  }
  if ((turn == 1) != counterClockwise) std::reverse(ring.begin(), ring.end());
  return ring;
}

void Geos::Read(const Geometry& g, std::vector<Ring>& rings, std::vector<std::size_t>& ends) const {
  for (int i = 0; i < GEOSGetNumGeometries_r(context_, g.get()); ++i) {
    const GEOSGeometry* const part = GEOSGetGeometryN_r(context_, g.get(), i);
    if (GEOSGeomTypeId_r(context_, part) != GEOS_POLYGON || GEOSisEmpty_r(context_, part) != 0) continue;
    rings.push_back(ReadRing(GEOSGetExteriorRing_r(context_, part), true));
    for (int k = 0; k < GEOSGetNumInteriorRings_r(context_, part); ++k) {
      rings.push_back(ReadRing(GEOSGetInteriorRingN_r(context_, part, k), false));
    }
    ends.push_back(rings.size());
  }
}

Geos::Geometry Geos::Operate(ZBR_BOOLEAN_OPE op, const Geometry& a, const Geometry& b) const {
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return Own(GEOSDifference_r(context_, a.get(), b.get()));
    case ZBR_BOOL_B_MINUS_A:
      return Own(GEOSDifference_r(context_, b.get(), a.get()));
    case ZBR_BOOL_OR:
      return Own(GEOSUnion_r(context_, a.get(), b.get()));
    case ZBR_BOOL_AND:
      return Own(GEOSIntersection_r(context_, a.get(), b.get()));
    case ZBR_BOOL_XOR:
      return Own(GEOSSymDifference_r(context_, a.get(), b.get()));
  }
  return nullptr;
}
