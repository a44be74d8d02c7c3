// Idea: cut the segment wherever the boundary crosses it or has a vertex on it. Between two cuts nothing changes: the stretch lies
// inside, outside or along the boundary as a whole, and one point of it tells which. So nothing depends on how often, and from
// which side, several edges meet the segment at one place. A stretch along the boundary may still come away from it within the
// tolerance, and past the end of the edge lie anywhere; so it is cut once more beside vertices that are near. Only where the
// boundary does nothing but cross the segment, steeply and away from vertices, are points saved: each such crossing changes sides.
#include "segments/region_cutter.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

double SizeOf(const ZBR_PT& p) {
  return std::max(std::fabs(p.x()), std::fabs(p.y()));
}

bool IsOn(ZBR_POLY_INSIDE at) {
  return at == ZBR_PI_ON_EDGE || at == ZBR_PI_ON_VERTEX;
}

}  // namespace

RegionCutter::RegionCutter(std::span<const std::shared_ptr<ZBR_LOOP>> region, double eps) : eps_(eps), locator_(RingsOf(region)) {
  for (const std::span<const ZBR_PT> ring : RingsOf(region)) {
    for (const ZBR_PT& p : ring) size_ = std::max(size_, SizeOf(p));
  }
}

namespace {

// Tolerances that an edge's ends keep from the segment, for its crossing to be plain. An edge that two places of a stretch are
// found on keeps less, as it does not cross the stretch.
constexpr double kWellAway = 4.0;
constexpr double kNoise = 16.0 * std::numeric_limits<double>::epsilon();  // the least of that, in sizes of coordinates
constexpr double kSteep = 0.125;                                          // sine of the angle of a plain crossing at least
// How often that distance a stretch is long whose side is inferred from the one before: at that angle, more than twice what an edge
// keeps within the tolerance.
constexpr double kLongStretch = 8.0;

}  // namespace

void RegionCutter::FindCuts(const ZBR_PT& a, const ZBR_PT& b) {
  plain_ = true;
  away_ = std::max(kWellAway * eps_, kNoise * std::max({size_, SizeOf(a), SizeOf(b)}));
  locator_.EdgesNear(a, b, away_, [&](const ZBR_PT& p, const ZBR_PT& q) { CutAtEdge(a, b, p, q); });
  std::sort(cuts_.begin(), cuts_.end());
  std::sort(near_.begin(), near_.end());
}

// Crossings are told by the signs of exact sides, so that an edge near the segment's line counts on one side or the other; its ends
// then are cuts as well, and the stretches between them, along the edge.
void RegionCutter::CutAtEdge(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& p, const ZBR_PT& q) {
  double t = 0.0;
  if (IsOnSegment(p, a, b, away_ * away_, nullptr, &t))
    (IsOnSegment(p, a, b, eps_ * eps_, nullptr, &t) ? cuts_ : near_).push_back(t);
  const ZBR_PT d = b - a;
  const double sideP = Cross(d, p - a);
  const double sideQ = Cross(d, q - a);
  const double length = d.Length();
  const bool isAway = std::min(std::fabs(sideP), std::fabs(sideQ)) > away_ * length;
  if ((sideP > 0.0) == (sideQ > 0.0)) {
    plain_ &= isAway;
    return;
  }
  plain_ &= isAway && std::fabs(sideP - sideQ) >= kSteep * length * p.Distance(q);
  const double sideA = Cross(q - p, a - p);
  const double sideB = Cross(q - p, b - p);
  if ((sideA > 0.0) != (sideB > 0.0)) cuts_.push_back(sideA / (sideA - sideB));
}

// Drops cuts closer than `least` to the one before or to the segment's ends.
void RegionCutter::KeepApart(double least) {
  double last = 0.0;
  const std::size_t dropped = std::erase_if(cuts_, [&](double t) {
    if (!(t - last > least) || !(1.0 - t > least)) return true;
    last = t;
    return false;
  });
  plain_ &= dropped == 0;
}

ZBR_POLY_INSIDE RegionCutter::LocateAt(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1, double share) const {
  return Locate(a + (b - a) * (t0 + (t1 - t0) * share));
}

// A place on the boundary says little alone: the stretch may just pass it. It runs along the boundary if another place does, too.
ZBR_POLY_INSIDE RegionCutter::LocateStretch(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1) const {
  constexpr double kAnother = 0.3125;
  const ZBR_POLY_INSIDE middle = LocateAt(a, b, t0, t1, 0.5);
  return IsOn(middle) ? LocateAt(a, b, t0, t1, kAnother) : middle;
}

// A stretch that is on the boundary in the middle, or may be on a part of it. It may come away from it beside the vertices near it.
void RegionCutter::AddRun(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1, double least) {
  const auto add = [&](double from, double to) {
    const ZBR_POLY_INSIDE place = LocateStretch(a, b, from, to);
    AddPiece(from, to, place == ZBR_PI_IN || IsOn(place));
  };
  double from = t0;
  for (auto t = std::upper_bound(near_.begin(), near_.end(), t0); t != near_.end() && t1 - *t > least; ++t) {
    if (!(*t - from > least)) continue;
    add(from, *t);
    from = *t;
  }
  add(from, t1);
}

void RegionCutter::AddPiece(double t0, double t1, bool inside) {
  if (!pieces_.empty() && pieces_.back().inside == inside) {
    pieces_.back().t1 = t1;
  } else {
    pieces_.push_back({t0, t1, inside});
  }
}

std::span<const CutPiece> RegionCutter::Cut(const ZBR_PT3& a, const ZBR_PT3& b) {
  pieces_.clear();
  if (!IsFinite(a) || !IsFinite(b)) {
    pieces_.push_back({0.0, 1.0, false});
    return pieces_;
  }
  cuts_.clear();
  near_.clear();
  const double length = a.xy().Distance(b.xy());
  const double least = eps_ / length;
  if (length > eps_) {
    FindCuts(a.xy(), b.xy());
    KeepApart(least);
  }
  cuts_.push_back(1.0);
  ZBR_POLY_INSIDE place = ZBR_PI_UNKNOWN;  // of the last stretch, if it is sure to be off the boundary
  double from = 0.0;
  for (const double to : cuts_) {
    const bool isLong = (to - from) * length > kLongStretch * away_;
    if (plain_ && isLong && (place == ZBR_PI_IN || place == ZBR_PI_OUT)) {
      place = place == ZBR_PI_IN ? ZBR_PI_OUT : ZBR_PI_IN;
    } else {
      place = LocateAt(a.xy(), b.xy(), from, to, 0.5);
    }
    if (IsOn(place) || !near_.empty()) {
      AddRun(a.xy(), b.xy(), from, to, least);
    } else {
      AddPiece(from, to, place == ZBR_PI_IN);
    }
    if (!isLong) place = ZBR_PI_UNKNOWN;
    from = to;
  }
  return pieces_;
}

}  // namespace zbr
