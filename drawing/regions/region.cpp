// Regions from rings: nesting, union of polygons, depths.
#include <zbr-drawing/region.h>

#include <zbr/boolean.h>

#include <cmath>
#include <unordered_map>
#include <utility>

#include "drawing/regions/pinches.h"

namespace zbr::drawing {
namespace {

// Whether even-odd nesting of all rings gives the same region as the union of the polygons: outer rings on level 0, holes inside
// their own outer ring.
bool PolygonsAgreeWithNesting(const Contours& contours, const LoopList& rings, const LoopList& nested) {
  std::unordered_map<const ZBR_LOOP*, int> polygonOf;
  for (std::size_t i = 0; i < rings.size(); ++i) polygonOf[rings[i].get()] = contours.rings[i].polygon;
  std::unordered_map<int, int> outerRings;
  for (const auto& outer : nested) {
    const int polygon = polygonOf[outer.get()];
    if (++outerRings[polygon] > 1) return false;
    for (const auto& hole : outer->children()) {
      if (polygonOf[hole.get()] != polygon) return false;
    }
  }
  return true;
}

// Union of the polygons, two by two, so that the work is that of a few large unions rather than of many growing ones.
LoopList UnitePolygons(const Contours& contours, const LoopList& rings) {
  std::vector<LoopList> parts;
  int current = -1;
  for (std::size_t i = 0; i < rings.size(); ++i) {
    if (parts.empty() || contours.rings[i].polygon != current) parts.emplace_back();
    current = contours.rings[i].polygon;
    parts.back().push_back(rings[i]);
  }
  for (LoopList& part : parts) {
    Nest(part);
    SplitPinches(part);
  }
  while (parts.size() > 1) {
    std::vector<LoopList> united;
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
      united.emplace_back();
      zbrBooleanLoops(parts[i], parts[i + 1], ZBR_BOOL_OR, united.back());
      SplitPinches(united.back());
    }
    if (parts.size() % 2 != 0) united.push_back(std::move(parts.back()));
    parts = std::move(united);
  }
  return parts.front();
}

bool HasPolygons(const Contours& contours) {
  return !contours.rings.empty() && contours.rings.front().polygon >= 0;
}

}  // namespace

LoopList LoopsOf(const Contours& contours, const Frame& frame) {
  LoopList loops;
  loops.reserve(contours.rings.size());
  for (const Ring& ring : contours.rings) {
    auto loop = std::make_shared<ZBR_LOOP>();
    loop->pt().reserve(ring.points.size());
    const ZBR_PT* last = ring.points.empty() ? nullptr : &ring.points.back();
    for (const ZBR_PT& p : ring.points) {
      if (p.x() != last->x() || p.y() != last->y()) loop->pt().push_back(frame.In(p));
      last = &p;
    }
    loop->Setup();
    loops.push_back(std::move(loop));
  }
  return loops;
}

Region MakeRegion(const Contours& contours, const Frame& frame) {
  constexpr std::size_t kMostContacts = 1000;  // one is enough to warn, but polygons that only meet each other use up entries
  const LoopList rings = LoopsOf(contours, frame);
  Region region;
  region.contacts = FindContacts(rings, HasPolygons(contours) ? kMostContacts : 1).list;
  region.loops = rings;
  Nest(region.loops);
  if (HasPolygons(contours) && (!region.contacts.empty() || !PolygonsAgreeWithNesting(contours, rings, region.loops))) {
    region.loops = UnitePolygons(contours, rings);
  } else {
    SplitPinches(region.loops);
  }
  if (!HasPolygons(contours)) return region;
  std::erase_if(region.contacts,
                [&](const Contact& c) { return contours.rings[c.ringA].polygon != contours.rings[c.ringB].polygon; });
  return region;
}

Layer MakeLayer(const std::string& name, LoopList loops, const Frame& frame) {
  Layer layer{name, std::move(loops), 0.0};
  ForEachRing(layer.loops, [&](ZBR_LOOP& loop) { loop.Setup(); });
  layer.area = frame.AreaOut(ZBR_LOOP::get_area(layer.loops));
  ForEachRing(layer.loops, [&](ZBR_LOOP& loop) {
    for (ZBR_PT& p : loop.pt()) p = frame.Out(p);
    loop.Reset();
    loop.Setup();
  });
  return layer;
}

void Nest(LoopList& loops) {
  zbrMakeLoopTree(loops);
  if (!loops.empty() && !(std::abs(loops.front()->area()) > kTolerance)) loops.clear();
}

// zbrMakeLoopTree tells whether a ring has an even or an odd number of rings around it: the lowest digit of its depth. Among the
// rings of the same parity the depth is half of what it was, so nesting each half again yields the next digit.
std::vector<int> NestingDepths(const LoopList& rings) {
  std::vector<int> depths(rings.size(), 0);
  std::unordered_map<const ZBR_LOOP*, std::size_t> index;
  std::vector<LoopList> groups(1);
  for (std::size_t i = 0; i < rings.size(); ++i) {
    groups.front().push_back(std::make_shared<ZBR_LOOP>(*rings[i]));
    index[groups.front().back().get()] = i;
  }
  for (int digit = 1; !groups.empty(); digit *= 2) {
    std::vector<LoopList> halves;
    for (LoopList& even : groups) {
      Nest(even);
      LoopList odd;
      for (const auto& outer : even) {
        for (const auto& hole : outer->children()) {
          odd.push_back(hole);
          depths[index[hole.get()]] += digit;
        }
      }
      if (odd.empty()) continue;  // then the others are not nested either
      halves.push_back(std::move(even));
      halves.push_back(std::move(odd));
    }
    groups = std::move(halves);
  }
  return depths;
}

LoopList RingsOf(const LoopList& loops) {
  LoopList rings;
  for (const auto& outer : loops) {
    rings.push_back(outer);
    rings.insert(rings.end(), outer->children().begin(), outer->children().end());
  }
  return rings;
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
