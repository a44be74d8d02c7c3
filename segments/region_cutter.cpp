// Idea: cut the segment wherever the boundary crosses it or has a vertex on it. Between two cuts nothing changes: the stretch lies
// inside, outside or along the boundary as a whole, and one point of it tells which. So nothing depends on how often, and from
// which side, several edges meet the segment at one place.
#include "segments/region_cutter.h"

#include <algorithm>
#include <cmath>

#include "core/planar_inline.h"

namespace zbr {
namespace {

using Rings = std::vector<std::span<const ZBR_PT>>;

Rings RingsOf(std::span<const std::shared_ptr<ZBR_LOOP>> region) {
  Rings rings;
  const auto add = [&rings](const std::shared_ptr<ZBR_LOOP>& loop) {
    if (loop != nullptr) rings.emplace_back(loop->pt());
  };
  for (const std::shared_ptr<ZBR_LOOP>& loop : region) {
    if (loop == nullptr) continue;
    add(loop);
    for (const std::shared_ptr<ZBR_LOOP>& hole : loop->children()) add(hole);
  }
  return rings;
}

bool IsFinite(const ZBR_PT3& p) {
  return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

bool IsOn(ZBR_POLY_INSIDE at) {
  return at == ZBR_PI_ON_EDGE || at == ZBR_PI_ON_VERTEX;
}

}  // namespace

RegionCutter::RegionCutter(std::span<const std::shared_ptr<ZBR_LOOP>> region, double eps) : eps_(eps), locator_(RingsOf(region)) {}

// Crossings are told by the signs of exact sides, so that an edge near the segment's line counts on one side or the other; its ends
// then are cuts as well, and the stretches between them, along the edge.
void RegionCutter::FindCuts(const ZBR_PT& a, const ZBR_PT& b) {
  cuts_.clear();
  const ZBR_PT d = b - a;
  locator_.EdgesNear(a, b, eps_, [&](const ZBR_PT& p, const ZBR_PT& q) {
    double t = 0.0;
    if (IsOnSegment(p, a, b, eps_ * eps_, nullptr, &t)) cuts_.push_back(t);
    if ((Cross(d, p - a) > 0.0) == (Cross(d, q - a) > 0.0)) return;
    const double sa = Cross(q - p, a - p);
    const double sb = Cross(q - p, b - p);
    if ((sa > 0.0) != (sb > 0.0)) cuts_.push_back(sa / (sa - sb));
  });
  std::sort(cuts_.begin(), cuts_.end());
}

// Drops cuts closer than `least` to the one before or to the segment's ends.
void RegionCutter::KeepApart(double least) {
  double last = 0.0;
  std::erase_if(cuts_, [&](double t) {
    if (!(t - last > least) || !(1.0 - t > least)) return true;
    last = t;
    return false;
  });
}

// A place on the boundary says little alone: the stretch may just pass it. It runs along the boundary if another place does, too.
bool RegionCutter::IsStretchInside(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1) const {
  const auto at = [&](double share) { return Locate(a + (b - a) * (t0 + (t1 - t0) * share)); };
  ZBR_POLY_INSIDE place = at(0.5);
  if (IsOn(place)) place = at(0.3125);
  return place == ZBR_PI_IN || IsOn(place);
}

std::span<const CutPiece> RegionCutter::Cut(const ZBR_PT3& a, const ZBR_PT3& b) {
  pieces_.clear();
  if (!IsFinite(a) || !IsFinite(b)) {
    pieces_.push_back({0.0, 1.0, false});
    return pieces_;
  }
  cuts_.clear();
  const double length = a.xy().Distance(b.xy());
  if (length > eps_) {
    FindCuts(a.xy(), b.xy());
    KeepApart(eps_ / length);
  }
  cuts_.push_back(1.0);
  double from = 0.0;
  for (const double to : cuts_) {
    const bool inside = IsStretchInside(a.xy(), b.xy(), from, to);
    if (!pieces_.empty() && pieces_.back().inside == inside) {
      pieces_.back().t1 = to;
    } else {
      pieces_.push_back({from, to, inside});
    }
    from = to;
  }
  return pieces_;
}

}  // namespace zbr
