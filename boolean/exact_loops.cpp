#include "boolean/exact_loops.h"

#include <algorithm>
#include <cmath>

#include "core/tolerance_state.h"

namespace zbr {
namespace {

std::size_t CountRings(const std::vector<Polygon>& polygons) {
  return static_cast<std::size_t>(
      std::count_if(polygons.begin(), polygons.end(), [](const Polygon& p) { return IsFiniteRing(**p.loop); }));
}

// Null when the ring encloses nothing.
std::shared_ptr<ZBR_LOOP> WideLoopOf(RingSpan ring, int level) {
  std::shared_ptr<ZBR_LOOP> loop = LoopOf(ring, level);
  return WithinTol(loop->area(), t_tolerance.eps) ? nullptr : loop;
}

}  // namespace

void SortBySize(LoopList& loops) {
  std::stable_sort(loops.begin(), loops.end(),
                   [](const auto& a, const auto& b) { return std::fabs(a->area()) > std::fabs(b->area()); });
}

bool IsInResult(ZBR_BOOLEAN_OPE op, bool inA, bool inB) {
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return inA && !inB;
    case ZBR_BOOL_B_MINUS_A:
      return inB && !inA;
    case ZBR_BOOL_OR:
      return inA || inB;
    case ZBR_BOOL_AND:
      return inA && inB;
    case ZBR_BOOL_XOR:
      return inA != inB;
  }
  return inA || inB;
}

std::vector<RingSpan> ExactLoops::RingsOf(const std::vector<Polygon>& a, const std::vector<Polygon>& b) {
  std::vector<RingSpan> rings;
  for (const std::vector<Polygon>* family : {&a, &b}) {
    for (const Polygon& p : *family) {
      if (IsFiniteRing(**p.loop)) rings.emplace_back((**p.loop).pt());
    }
  }
  return rings;
}

ExactLoops::ExactLoops(const std::vector<Polygon>& a, const std::vector<Polygon>& b)
    : rings_(RingsOf(a, b)),
      overlay_(rings_, CountRings(a), OverlayTolerance(BoxOfRings(rings_), t_tolerance.eps), t_tolerance.eps) {}

LoopList ExactLoops::Combine(ZBR_BOOLEAN_OPE op) const {
  const FlatRegion region = overlay_.Region([op](Winding w) { return IsInResult(op, w.of[0] % 2 != 0, w.of[1] % 2 != 0); }, false);
  LoopList loops;
  std::size_t ring = 0;
  for (const std::uint32_t end : region.polygonEnds) {
    std::shared_ptr<ZBR_LOOP> outer = WideLoopOf(region.Ring(ring), 0);
    for (++ring; ring < end; ++ring) {
      std::shared_ptr<ZBR_LOOP> hole = WideLoopOf(region.Ring(ring), 1);
      if (outer != nullptr && hole != nullptr) outer->children().push_back(std::move(hole));
    }
    if (outer == nullptr) continue;
    SortBySize(outer->children());
    loops.push_back(std::move(outer));
  }
  SortBySize(loops);
  return loops;
}

}  // namespace zbr
