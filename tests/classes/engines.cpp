#include "classes/engines.h"

#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <memory>

#ifdef ZBR_HAVE_CLIPPER
#include <polyclipping/clipper.hpp>
#endif

namespace {

void Close(Region& region) {
  region.ends.push_back(region.rings.size());
}

// ---- this library

LoopList ToLoops(const Region& region) {
  if (region.ends.empty()) return Nest(region.rings);
  LoopList loops;
  std::size_t first = 0;
  for (const std::size_t end : region.ends) {
    loops.push_back(MakeLoop(region.rings[first]));
    loops.back()->level() = 0;
    for (std::size_t i = first + 1; i < end; ++i) {
      loops.back()->children().push_back(MakeLoop(region.rings[i]));
      loops.back()->children().back()->level() = 1;
    }
    first = end;
  }
  return loops;
}

Answer CombineLoops(const Region& a, const Region& b, ZBR_BOOLEAN_OPE op) {
  LoopList loops;
  zbrBooleanLoops(ToLoops(a), ToLoops(b), op, loops);
  Answer answer;
  for (const auto& loop : loops) {
    answer.region.rings.push_back(loop->pt());
    for (const auto& hole : loop->children()) answer.region.rings.push_back(hole->pt());
    Close(answer.region);
  }
  return answer;
}

// ---- GEOS

struct DestroyGeometry {
  void operator()(GEOSGeometry* g) const;
};
using Geometry = std::unique_ptr<GEOSGeometry, DestroyGeometry>;

GEOSContextHandle_t Context() {
  static const std::unique_ptr<GEOSContextHandle_HS, void (*)(GEOSContextHandle_t)> context(GEOS_init_r(), GEOS_finish_r);
  return context.get();
}

void DestroyGeometry::operator()(GEOSGeometry* g) const {
  GEOSGeom_destroy_r(Context(), g);
}

GEOSGeometry* MakeRing(const Ring& ring) {
  const auto n = static_cast<unsigned>(ring.size());
  GEOSCoordSequence* const points = GEOSCoordSeq_create_r(Context(), n + 1, 2);
  for (unsigned i = 0; i <= n; ++i) GEOSCoordSeq_setXY_r(Context(), points, i, ring[i % n].x(), ring[i % n].y());
  return GEOSGeom_createLinearRing_r(Context(), points);
}

// Null when a ring has fewer than three points.
Geometry MakePolygon(const Region& region, std::size_t first, std::size_t end) {
  std::vector<GEOSGeometry*> rings;
  for (std::size_t i = first; i < end; ++i) {
    rings.push_back(region.rings[i].size() < 3 ? nullptr : MakeRing(region.rings[i]));
  }
  if (std::find(rings.begin(), rings.end(), nullptr) == rings.end()) {
    return Geometry(GEOSGeom_createPolygon_r(Context(), rings[0], rings.data() + 1, static_cast<unsigned>(rings.size() - 1)));
  }
  for (GEOSGeometry* ring : rings) GEOSGeom_destroy_r(Context(), ring);
  return nullptr;
}

Geometry MakePolygons(const Region& region) {
  std::vector<GEOSGeometry*> parts;
  std::size_t first = 0;
  for (const std::size_t end : region.ends) {
    parts.push_back(MakePolygon(region, first, end).release());
    first = end;
  }
  const bool complete = std::find(parts.begin(), parts.end(), nullptr) == parts.end();
  if (complete) {
    const auto count = static_cast<unsigned>(parts.size());
    return Geometry(GEOSGeom_createCollection_r(Context(), GEOS_MULTIPOLYGON, parts.data(), count));
  }
  for (GEOSGeometry* part : parts) GEOSGeom_destroy_r(Context(), part);
  return nullptr;
}

bool IsValid(const Geometry& g) {
  return g && GEOSisValid_r(Context(), g.get()) == 1;
}

// The even-odd region of the rings: what an odd number of them enclose.
Geometry MakeGeometry(const Region& region) {
  if (!region.ends.empty()) {
    if (Geometry polygons = MakePolygons(region); IsValid(polygons)) return polygons;
  }
  Geometry all(GEOSGeom_createEmptyPolygon_r(Context()));
  for (std::size_t i = 0; i < region.rings.size(); ++i) {
    Geometry ring = MakePolygon(region, i, i + 1);
    if (!ring) continue;
    if (!IsValid(ring)) ring.reset(GEOSMakeValid_r(Context(), ring.get()));
    if (ring) all.reset(GEOSSymDifference_r(Context(), all.get(), ring.get()));
    if (!ring || !all) return nullptr;
  }
  return all;
}

Ring ReadRing(const GEOSGeometry* line, bool counterClockwise) {
  const GEOSCoordSequence* const points = GEOSGeom_getCoordSeq_r(Context(), line);
  unsigned n = 0;
  GEOSCoordSeq_getSize_r(Context(), points, &n);
  Ring ring;
  for (unsigned i = 0; i + 1 < n; ++i) {
    double x = 0.0;
    double y = 0.0;
    GEOSCoordSeq_getXY_r(Context(), points, i, &x, &y);
    ring.emplace_back(x, y);
  }
  char turns = 0;
  GEOSCoordSeq_isCCW_r(Context(), points, &turns);
  if ((turns == 1) != counterClockwise) std::reverse(ring.begin(), ring.end());
  return ring;
}

Geometry CombineGeometries(const Geometry& a, const Geometry& b, ZBR_BOOLEAN_OPE op) {
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return Geometry(GEOSDifference_r(Context(), a.get(), b.get()));
    case ZBR_BOOL_B_MINUS_A:
      return Geometry(GEOSDifference_r(Context(), b.get(), a.get()));
    case ZBR_BOOL_OR:
      return Geometry(GEOSUnion_r(Context(), a.get(), b.get()));
    case ZBR_BOOL_AND:
      return Geometry(GEOSIntersection_r(Context(), a.get(), b.get()));
    case ZBR_BOOL_XOR:
      return Geometry(GEOSSymDifference_r(Context(), a.get(), b.get()));
  }
  return nullptr;
}

Answer CombineGeos(const Region& a, const Region& b, ZBR_BOOLEAN_OPE op) {
  const Geometry first = MakeGeometry(a);
  const Geometry second = MakeGeometry(b);
  const Geometry both = first && second ? CombineGeometries(first, second, op) : nullptr;
  Answer answer;
  answer.failed = !both;
  for (int i = 0; both && i < GEOSGetNumGeometries_r(Context(), both.get()); ++i) {
    const GEOSGeometry* const part = GEOSGetGeometryN_r(Context(), both.get(), i);
    if (GEOSGeomTypeId_r(Context(), part) != GEOS_POLYGON || GEOSisEmpty_r(Context(), part) != 0) continue;
    answer.region.rings.push_back(ReadRing(GEOSGetExteriorRing_r(Context(), part), true));
    for (int k = 0; k < GEOSGetNumInteriorRings_r(Context(), part); ++k) {
      answer.region.rings.push_back(ReadRing(GEOSGetInteriorRingN_r(Context(), part, k), false));
    }
    Close(answer.region);
  }
  return answer;
}

// ---- Clipper

#ifdef ZBR_HAVE_CLIPPER

// The largest coordinate takes 52 bits.
int ExponentFor(const Region& a, const Region& b) {
  double largest = 0x1p-500;
  for (const Region* region : {&a, &b}) {
    for (const Ring& ring : region->rings) {
      for (const ZBR_PT& p : ring) largest = std::max({largest, std::abs(p.x()), std::abs(p.y())});
    }
  }
  return 52 - (std::ilogb(largest) + 1);
}

ClipperLib::Paths ToPaths(const Region& region, int exponent) {
  ClipperLib::Paths paths;
  for (const Ring& ring : region.rings) {
    ClipperLib::Path& path = paths.emplace_back();
    for (const ZBR_PT& p : ring) {
      path.emplace_back(std::llround(std::ldexp(p.x(), exponent)), std::llround(std::ldexp(p.y(), exponent)));
    }
  }
  return paths;
}

void AppendPath(const ClipperLib::Path& path, int exponent, Region& region) {
  Ring& ring = region.rings.emplace_back();
  for (const ClipperLib::IntPoint& p : path) {
    ring.emplace_back(std::ldexp(static_cast<double>(p.X), -exponent), std::ldexp(static_cast<double>(p.Y), -exponent));
  }
}

void AppendOuters(const ClipperLib::PolyNode& parent, int exponent, Region& region) {
  for (const ClipperLib::PolyNode* outer : parent.Childs) {
    AppendPath(outer->Contour, exponent, region);
    for (const ClipperLib::PolyNode* hole : outer->Childs) AppendPath(hole->Contour, exponent, region);
    Close(region);
    for (const ClipperLib::PolyNode* hole : outer->Childs) AppendOuters(*hole, exponent, region);
  }
}

Answer CombineClipper(const Region& a, const Region& b, ZBR_BOOLEAN_OPE op) {
  static constexpr ClipperLib::PolyFillType kFills[] = {ClipperLib::pftEvenOdd, ClipperLib::pftNonZero, ClipperLib::pftPositive,
                                                        ClipperLib::pftNegative};
  static constexpr ClipperLib::ClipType kTypes[] = {ClipperLib::ctDifference, ClipperLib::ctDifference, ClipperLib::ctUnion,
                                                    ClipperLib::ctIntersection, ClipperLib::ctXor};
  const int exponent = ExponentFor(a, b);
  const bool swapped = op == ZBR_BOOL_B_MINUS_A;
  const Region& subject = swapped ? b : a;
  const Region& clip = swapped ? a : b;
  Answer answer;
  try {
    ClipperLib::Clipper clipper;
    clipper.AddPaths(ToPaths(subject, exponent), ClipperLib::ptSubject, true);
    clipper.AddPaths(ToPaths(clip, exponent), ClipperLib::ptClip, true);
    ClipperLib::PolyTree tree;
    answer.failed = !clipper.Execute(kTypes[op], tree, kFills[subject.fill], kFills[clip.fill]);
    AppendOuters(tree, exponent, answer.region);
  } catch (const ClipperLib::clipperException&) {
    answer.failed = true;
  }
  return answer;
}

#endif

}  // namespace

const std::vector<Engine>& Engines() {
  static const std::vector<Engine> engines = {
      {"loops", CombineLoops, false, true},
      {"geos", CombineGeos, false, false},
#ifdef ZBR_HAVE_CLIPPER
      {"clipper", CombineClipper, true, false},
#endif
  };
  return engines;
}

bool IsValidRegion(const Region& region) {
  return IsValid(MakePolygons(region));
}

bool HasValidPolygons(const Region& region) {
  std::size_t first = 0;
  for (const std::size_t end : region.ends) {
    if (!IsValid(MakePolygon(region, first, end))) return false;
    first = end;
  }
  return true;
}
