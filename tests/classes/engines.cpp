#include "classes/engines.h"

#include <algorithm>
#include <cmath>

#include "geos/geos_region.h"

#ifdef ZBR_HAVE_CLIPPER
#include <polyclipping/clipper.hpp>
#endif

namespace {

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
  std::vector<ZBR_CROSS> crosses;
  ZBR_BOOLEAN_STATUS status;
  zbrBooleanLoops(ToLoops(a), ToLoops(b), &op, &loops, 1, crosses, status);
  Answer answer;
  answer.fellBack = status.exact;
  for (const auto& loop : loops) {
    answer.region.rings.push_back(loop->pt());
    for (const auto& hole : loop->children()) answer.region.rings.push_back(hole->pt());
    answer.region.ends.push_back(answer.region.rings.size());
  }
  return answer;
}

ZBR_REGION ToFlat(const Region& region) {
  ZBR_REGION flat;
  auto end = region.ends.begin();
  for (std::size_t i = 0; i < region.rings.size(); ++i) {
    const bool starts = end == region.ends.end() || i == 0 || i == *end;
    if (starts && i > 0 && end != region.ends.end()) ++end;
    flat.AddRing(region.rings[i], starts);
  }
  return flat;
}

// Asked for sources, it arranges every pair.
template <bool withSources>
Answer CombineRegions(const Region& a, const Region& b, ZBR_BOOLEAN_OPE op) {
  static_assert(int{ZBR_FILL_EVEN_ODD} == kFillEvenOdd && int{ZBR_FILL_NON_ZERO} == kFillNonZero &&
                int{ZBR_FILL_POSITIVE} == kFillPositive && int{ZBR_FILL_NEGATIVE} == kFillNegative);
  ZBR_REGION_OPTIONS options;
  options.sources = withSources;
  options.fill_a = static_cast<ZBR_FILL_RULE>(a.fill);
  options.fill_b = static_cast<ZBR_FILL_RULE>(b.fill);
  ZBR_REGION result;
  const ZBR_REGION_STATUS status = zbrCombineRegions(ToFlat(a).view(), ToFlat(b).view(), &op, &result, 1, options);
  Answer answer;
  answer.failed = status.code != ZBR_REGION_OK;
  answer.fellBack = status.exact;
  answer.region.rings = RingsOf(result);
  answer.region.ends.assign(result.polygon_offsets().begin() + 1, result.polygon_offsets().end());
  return answer;
}

// ---- GEOS

const Geos& TheGeos() {
  static const Geos geos;
  return geos;
}

// Polygons that GEOS itself would take, as they are.
Geos::Geometry ToGeometry(const Region& region) {
  Geos::Geometry polygons = region.ends.empty() ? nullptr : TheGeos().Polygons(region.rings, region.ends);
  return TheGeos().IsValid(polygons) ? std::move(polygons) : TheGeos().EvenOdd(region.rings);
}

Answer CombineGeos(const Region& a, const Region& b, ZBR_BOOLEAN_OPE op) {
  const Geos::Geometry first = ToGeometry(a);
  const Geos::Geometry second = ToGeometry(b);
  const Geos::Geometry both = first && second ? TheGeos().Operate(op, first, second) : nullptr;
  Answer answer;
  answer.failed = !both;
  if (both) TheGeos().Read(both, answer.region.rings, answer.region.ends);
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
    region.ends.push_back(region.rings.size());
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
      {"regions", CombineRegions<false>, true, false},
      {"arranged", CombineRegions<true>, true, false},
      {"geos", CombineGeos, false, false},
#ifdef ZBR_HAVE_CLIPPER
      {"clipper", CombineClipper, true, false},
#endif
  };
  return engines;
}

bool IsValid(const Region& region, bool eachAlone) {
  if (!eachAlone) return TheGeos().IsValid(TheGeos().Polygons(region.rings, region.ends));
  auto first = region.rings.begin();
  for (const std::size_t end : region.ends) {
    const std::vector<Ring> polygon(first, region.rings.begin() + static_cast<std::ptrdiff_t>(end));
    if (!TheGeos().IsValid(TheGeos().Polygons(polygon, {polygon.size()}))) return false;
    first += static_cast<std::ptrdiff_t>(polygon.size());
  }
  return true;
}
