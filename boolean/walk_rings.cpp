#include "boolean/walk_rings.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "core/constants.h"

namespace zbr {

int WalkExponent(const Box& bounds) {
  constexpr int kExponent = 12;
  constexpr int kDigitsAboveRounding = 3;  // binary
  const double side = std::max(bounds.xmax - bounds.xmin, bounds.ymax - bounds.ymin);
  const double reach = std::max({std::fabs(bounds.xmin), std::fabs(bounds.xmax), std::fabs(bounds.ymin), std::fabs(bounds.ymax)});
  const int finest = std::ilogb(kBooleanEps) - kDigitsAboveRounding - (std::ilogb(reach) - std::numeric_limits<double>::digits + 1);
  return std::min(kExponent - std::ilogb(side), finest);
}

WalkScale::WalkScale(const Box& bounds) {
  constexpr int kLeastExponent = 2;  // of the extent in units in which the tolerance is kBooleanEps
  constexpr int kMost = 200;         // fourth powers of lengths are far from overflow
  const double side = std::max(bounds.xmax - bounds.xmin, bounds.ymax - bounds.ymin);
  if (!(side > 0.0 && side < std::numeric_limits<double>::infinity())) return;
  const int exponent = WalkExponent(bounds);
  isUsable = std::ilogb(side) + exponent >= kLeastExponent && std::abs(exponent) <= kMost;
  if (!isUsable) return;
  eps = std::ldexp(kBooleanEps, -exponent);
  least = std::ldexp(kBooleanEps, -2 * exponent);
  width = OverlayTolerance(bounds, 0.0);
  longest = 2.0 * side;
}

bool WalkRings::Load(const RegionInput& input, const WalkScale& scale) {
  rings_.clear();
  rings_.reserve(input.rings().size());
  const double eps2 = scale.eps * scale.eps;
  for (const int side : {0, 1}) {
    edges_[side] = 0;
    for (RingSpan points : input.operand(static_cast<std::size_t>(side))) {
      while (points.size() > 1 && points.back().Distance2(points.front()) <= eps2) points = points.first(points.size() - 1);
      if (points.size() < 3) return false;
      rings_.push_back({points, edges_[side], false, false, false});
      edges_[side] += rings_.back().size();
    }
    if (side == 0) countA_ = static_cast<std::uint32_t>(rings_.size());
  }
  if (!Index(eps2)) {
    DropRepeats(eps2);
    if (!Index(eps2)) return false;
  }
  for (WalkedRing& ring : rings_) {
    const double twiceArea = TwiceArea(ring.points);
    if (!(std::fabs(twiceArea) > 2.0 * scale.least)) return false;
    ring.isReversed = twiceArea < 0.0;
  }
  return true;
}

bool WalkRings::HaveRepeats(double eps2) const {
  return std::any_of(rings_.begin(), rings_.end(), [eps2](const WalkedRing& ring) {
    const auto areOne = [eps2](const ZBR_PT& p, const ZBR_PT& q) { return p.Distance2(q) <= eps2; };
    return std::adjacent_find(ring.points.begin(), ring.points.end(), areOne) != ring.points.end();
  });
}

// False when some edge is no longer than the tolerance.
bool WalkRings::Index(double eps2) {
  if (AreSmall()) return !HaveRepeats(eps2);
  std::vector<IndexedRing>& indexed = index_.StartRings();
  indexed.reserve(rings_.size());
  const auto add = [&](std::uint32_t r) {
    const WalkedRing& ring = rings_[r];
    indexed.push_back({Box(), ring.points.data(), ring.size(), 0, ring.size(), r, false});
  };
  if (rings_.size() < EdgeIndex::kMinRingsToReorder) {
    for (std::uint32_t r = 0; r < rings_.size(); ++r) add(r);
  } else {
    std::vector<ZBR_PT> centres;
    centres.reserve(rings_.size());
    for (const WalkedRing& ring : rings_) centres.push_back(BoxOfRing(ring.points).Center());
    for (const std::uint32_t r : SpatialOrder(centres)) add(r);
  }
  index_.Build(0.0, eps2);
  return std::none_of(indexed.begin(), indexed.end(), [](const IndexedRing& ring) { return ring.hasRepeats; });
}

// Leaves points out that lie on the one before them. Rings that become too short keep theirs.
void WalkRings::DropRepeats(double eps2) {
  cleaned_.clear();
  cleaned_.reserve(rings_.size());  // spans of what is in them are handed out
  edges_[0] = edges_[1] = 0;
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    WalkedRing& ring = rings_[r];
    std::vector<ZBR_PT> points;
    for (const ZBR_PT& p : ring.points) {
      if (points.empty() || points.back().Distance2(p) > eps2) points.push_back(p);
    }
    while (points.size() > 1 && points.back().Distance2(points.front()) <= eps2) points.pop_back();
    if (points.size() > 2 && points.size() < ring.points.size()) ring.points = cleaned_.emplace_back(std::move(points));
    std::uint32_t& edges = edges_[SideOf(r)];
    ring.firstEdge = edges;
    edges += ring.size();
  }
}

bool WalkRings::IsLeafOdd(std::uint32_t leaf, const ZBR_PT& p) const {
  bool isOdd = false;
  index_.VisitEdges(leaf, [&](const ZBR_PT& from, const ZBR_PT& to) { isOdd ^= IsLeftOf(p, from, to); });
  return isOdd;
}

}  // namespace zbr
