// Taking rings apart at vertices that they visit more than once.
//
// A ring is walked with the points so far on a stack. When the walk comes back to a point that is still on it, what lies above is a
// ring of its own, which is cut off.
#include "drawing/regions/pinches.h"

#include <bit>
#include <functional>
#include <map>
#include <utility>

namespace zbr::drawing {
namespace {

using Points = std::vector<ZBR_PT>;

std::pair<double, double> KeyOf(const ZBR_PT& p) {
  return {p.x(), p.y()};
}

// The usual ring does not. A table of places by hash tells so several times faster than sorting.
bool VisitsTwice(const Points& points) {
  constexpr auto kFree = static_cast<std::size_t>(-1);
  const std::size_t mask = std::bit_ceil(2 * points.size() + 1) - 1;
  std::vector<std::size_t> table(mask + 1, kFree);
  const std::hash<double> hash;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const std::size_t mixed = (hash(points[i].x()) * 0x9E3779B97F4A7C15U + hash(points[i].y())) * 0xBF58476D1CE4E5B9U;
    std::size_t place = (mixed >> 32U) & mask;
    for (; table[place] != kFree; place = (place + 1) & mask) {
      if (KeyOf(points[table[place]]) == KeyOf(points[i])) return true;
    }
    table[place] = i;
  }
  return false;
}

std::shared_ptr<ZBR_LOOP> MakeLoop(Points points) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt() = std::move(points);
  return loop;
}

void AppendSimpleRings(const Points& points, LoopList& rings) {
  Points open;
  std::map<std::pair<double, double>, std::size_t> place;  // of each point in `open`
  for (const ZBR_PT& p : points) {
    const auto [at, isNew] = place.try_emplace(KeyOf(p), open.size());
    if (isNew) {
      open.push_back(p);
      continue;
    }
    const std::size_t first = at->second;
    for (std::size_t i = first + 1; i < open.size(); ++i) place.erase(KeyOf(open[i]));
    rings.push_back(MakeLoop(Points(open.begin() + static_cast<std::ptrdiff_t>(first), open.end())));
    open.resize(first + 1);
  }
  rings.push_back(MakeLoop(std::move(open)));
}

}  // namespace

void SplitPinches(LoopList& nested) {
  bool any = false;
  ForEachRing(nested, [&any](const ZBR_LOOP& loop) { any = any || VisitsTwice(loop.pt()); });
  if (!any) return;
  LoopList rings;
  ForEachRing(nested, [&rings](const ZBR_LOOP& loop) { AppendSimpleRings(loop.pt(), rings); });
  nested = std::move(rings);
  Nest(nested);
}

}  // namespace zbr::drawing
