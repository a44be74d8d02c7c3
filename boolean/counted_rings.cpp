#include "boolean/counted_rings.h"

#include <algorithm>
#include <numeric>

#include "arrangement/overlay.h"
#include "boolean/polygons.h"
#include "boolean/region_input.h"
#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "loops/convex_ring.h"
#include "loops/edge_index.h"
#include "loops/nesting.h"
#include "loops/simplicity.h"

namespace zbr {
namespace {

// Of rings that are simple and apart: which lie in an odd number of others.
std::vector<bool> HolesAmong(std::span<const RingSpan> rings, double tolerance) {
  std::vector<bool> isHole(rings.size(), false);
  if (rings.size() == 1) return isHole;
  const NestedRings nested(rings, tolerance);
  for (std::size_t k = 0; k < nested.order.size(); ++k) {
    if (nested.parents[k] != kNoParent) isHole[nested.order[k]] = !isHole[nested.order[nested.parents[k]]];
  }
  return isHole;
}

}  // namespace

bool AreSimple(std::span<const RingSpan> rings, double tolerance) {
  if (std::any_of(rings.begin(), rings.end(), [](const RingSpan& ring) { return ring.size() < 3; })) return false;
  const ToleranceScope scope(tolerance);
  if (rings.size() == 1 && IsClearlyConvex(rings[0], kSurelyOff * tolerance)) return true;
  std::vector<IndexedRing> indexed;
  for (const RingSpan& ring : rings) {
    const auto n = static_cast<std::uint32_t>(ring.size());
    indexed.push_back({BoxOfRing(ring), ring.data(), n, 0, n, 0, false});
  }
  EdgeIndex index;
  index.Build(std::move(indexed), 0.0, tolerance * tolerance);
  // Points that repeat, and what crosses between them, are for the arrangement to put right.
  if (std::any_of(index.rings().begin(), index.rings().end(), [](const IndexedRing& ring) { return ring.hasRepeats; }))
    return false;
  return SimplicityOf(index, 0.0) == Simplicity::kSimple;
}

NestedRings::NestedRings(std::span<const RingSpan> rings, double tolerance) : order(rings.size()) {
  const ToleranceScope scope(tolerance);
  LoopList loops;
  for (const RingSpan& ring : rings) {
    loops.push_back(LoopOf(ring, 0));
    if (loops.back()->area() < 0.0) loops.back()->reverse();
  }
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t i, std::uint32_t j) { return loops[i]->area() > loops[j]->area(); });
  LoopList sorted;
  for (const std::uint32_t r : order) sorted.push_back(loops[r]);
  parents = NestLoops(sorted, tolerance);
}

void CountedRings::Add(std::span<const RingSpan> rings) {
  bool areApart = true;
  // A ring whose last point repeats the first, to the bit, has one edge less that counts, the last one.
  RingSpan single = rings.size() == 1 ? rings[0] : RingSpan();
  if (single.size() > 1 && AreIdentical(single.front(), single.back())) single = single.first(single.size() - 1);
  const std::span<const RingSpan> open = rings.size() == 1 ? std::span<const RingSpan>(&single, 1) : rings;
  if (IsCountedSimply(open) && AreSimple(open, tolerance_)) {
    AddSimple(open);
  } else if (!rings.empty()) {
    const Overlay overlay(rings, rings.size(), tolerance_, tolerance_);
    const FlatRegion flat = overlay.Region([this](Winding w) { return IsFilled(rule_, w.of[0]); }, withSources_);
    areApart = AreSimple(flat.Rings(), tolerance_);
    wasExact_ = true;
    AddFlat(flat);
  }
  areApart_.push_back(areApart);
  for (const RingSpan& ring : rings) firstEdge_ += static_cast<std::uint32_t>(ring.size());
  ends_.push_back(static_cast<std::uint32_t>(region_.ringEnds.size()));
}

// Whether the rule asks no more of simple rings than how deep they are nested.
bool CountedRings::IsCountedSimply(std::span<const RingSpan> rings) const {
  return rings.size() == 1 || (rings.size() > 1 && rule_ == ZBR_FILL_EVEN_ODD);
}

// Rings that are simple and apart.
void CountedRings::AddSimple(std::span<const RingSpan> rings) {
  if (rings.size() == 1 && !IsFilled(rule_, TwiceArea(rings[0]) > 0.0 ? 1 : -1)) return;
  std::uint32_t firstEdge = firstEdge_;
  const std::vector<bool> isHole = HolesAmong(rings, tolerance_);
  for (std::size_t r = 0; r < rings.size(); ++r) {
    AddTurned(rings[r], !isHole[r], firstEdge);
    firstEdge += static_cast<std::uint32_t>(rings[r].size());
  }
}

void CountedRings::AddTurned(RingSpan ring, bool isCounterClockwise, std::uint32_t firstEdge) {
  const bool isKept = (TwiceArea(ring) > 0.0) == isCounterClockwise;
  const auto n = static_cast<std::uint32_t>(ring.size());
  for (std::uint32_t i = 0; i < n; ++i) {
    region_.points.push_back(ring[isKept ? i : n - 1 - i]);
    if (!withSources_) continue;
    AddSource(isKept ? FlatSource{firstEdge + i, 0.0, 1.0} : FlatSource{firstEdge + (2 * n - 2 - i) % n, 1.0, 0.0});
    EndEdge();
  }
  EndRing();
}

void CountedRings::AddFlat(const FlatRegion& flat) {
  std::uint32_t point = 0;
  std::uint32_t source = 0;
  for (const std::uint32_t end : flat.ringEnds) {
    for (; point < end; ++point) {
      region_.points.push_back(flat.points[point]);
      if (!withSources_) continue;
      for (; source < flat.sourceEnds[point]; ++source) {
        const FlatSource& s = flat.sources[source];
        AddSource({firstEdge_ + s.edge, s.t0, s.t1});
      }
      EndEdge();
    }
    EndRing();
  }
}

}  // namespace zbr
