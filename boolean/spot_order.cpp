// Which of several crossings at one place of a polygon comes first along it.
//
// Walking along polygon M through a place X where other boundaries pass, the crossings must come in the order in which the walk
// would meet those boundaries if they were pulled apart a little. Positions cannot tell, they are equal. Two crossings of opposite
// direction are told apart by what lies between them: if both belong to one polygon, by the sign of the area that it encloses
// between them; if they belong to different polygons, by whether material lies between (an outer loop and its hole, or two holes of
// one loop) or void (two loops). Three and more are ranked by their arms. The boundaries do not cross each other, so near X they
// are chords of a small disk that M divides into left and right: the one whose left arm is nearest to the direction that M comes
// from is met first, and its right arm is nearest too. Arms that run along M itself are nearest or farthest.
//
//        left arms  1  2   3          M walks from `back` to `front`;
//                    \ |  /           ranks by the clockwise angle from `back` to the left arm,
//        back ------- X -------> front    then by the counter-clockwise angle to the right arm
//                    / |  \                                                                       .
#include "boolean/spot_order.h"

#include <algorithm>
#include <cmath>

#include "boolean/cross_sort.h"
#include "boolean/polygons.h"
#include "core/planar_inline.h"

namespace zbr {

namespace {

// The two directions in which a ring leaves the point at boundary parameter `pos`.
struct Arms {
  ZBR_PT back;
  ZBR_PT front;
};

Arms ArmsAt(const ZBR_LOOP& loop, double pos, const ZBR_PT& at) {
  const std::vector<ZBR_PT>& p = loop.pt();
  const std::size_t n = p.size();
  if (n < 2 || !(pos >= 0.0 && pos <= static_cast<double>(n))) return {};
  const double eps2 = t_tolerance.eps2;
  const auto edge = static_cast<std::size_t>(std::floor(pos)) % n;
  // Vertices at the point itself give no direction; a ring holds others, or it would have no crossing.
  const auto firstApart = [&](std::size_t k, std::size_t step) {
    for (std::size_t tries = 0; tries < n && SamePoint(p[k], at, eps2); ++tries) k = (k + step) % n;
    return p[k] - at;
  };
  return {firstApart(edge, n - 1), firstApart((edge + 1) % n, 1)};
}

// Clockwise turn from `from` to `to` as a number that ascends from 0 to 4 with the angle. A turn of (almost) nothing is 0, not 4.
double ClockwiseTurn(const ZBR_PT& from, const ZBR_PT& to) {
  const double scale = std::sqrt(from.Length2() * to.Length2());
  if (!(scale > 0.0)) return 0.0;
  const double c = from.InnerProduct(to) / scale;
  const double s = Cross(to, from) / scale;
  if (WithinTol(s, t_tolerance.eps) && c > 0.0) return 0.0;
  return s >= 0.0 ? 1.0 - c : 3.0 + c;
}

struct RankedCrossing {
  int index;
  double left;   // turn from M's back arm to the arm on M's left
  double right;  // turn the other way to the arm on M's right
};

ZBR_PT Mirrored(const ZBR_PT& v) {
  return ZBR_PT(v.x(), -v.y());
}

// Whether the other boundary, walked forward, passes to the left of the polygon of `side`.
bool PassesLeft(const ZBR_CROSS& c, int side) {
  return (c.dir == ZBR_CROSS_TO_LEFT) == (side == 0);
}

void RankByArms(std::vector<ZBR_CROSS>& crosses, std::span<const int> spot, int side, const LoopList& own, const LoopList& other) {
  std::vector<RankedCrossing> ranked;
  for (const int i : spot) {
    const ZBR_CROSS& c = crosses[static_cast<std::size_t>(i)];
    const ZBR_LOOP* main = PolygonAt(own, Side(c, side).loop);
    const ZBR_LOOP* crossing = PolygonAt(other, Side(c, 1 - side).loop);
    if (main == nullptr || crossing == nullptr) return;
    const ZBR_PT back = ArmsAt(*main, Side(c, side).pos, c.pt).back;
    const Arms arms = ArmsAt(*crossing, Side(c, 1 - side).pos, c.pt);
    const bool toLeft = PassesLeft(c, side);
    const ZBR_PT& left = toLeft ? arms.front : arms.back;
    const ZBR_PT& right = toLeft ? arms.back : arms.front;
    ranked.push_back({i, ClockwiseTurn(back, left), ClockwiseTurn(Mirrored(back), Mirrored(right))});
  }
  std::stable_sort(ranked.begin(), ranked.end(), [](const RankedCrossing& x, const RankedCrossing& y) {
    return x.left != y.left ? x.left < y.left : x.right < y.right;
  });
  int rank = 0;
  for (const RankedCrossing& r : ranked) Side(crosses[static_cast<std::size_t>(r.index)], side).order = ++rank;
}

// Signed area that one polygon of `other` encloses between two crossings with the same place of `side`.
double AreaBetween(const ZBR_CROSS& c1, const ZBR_CROSS& c2, int side, const ZBR_LOOP& polygon) {
  const ZBR_CROSS* from = c1.dir == ZBR_CROSS_TO_LEFT ? &c1 : &c2;
  const ZBR_CROSS* to = from == &c1 ? &c2 : &c1;
  if (side == 1) std::swap(from, to);
  return polygon.get_area(from->pt, to->pt, Side(*from, 1 - side).pos, Side(*to, 1 - side).pos);
}

bool HasPlace(const ZBR_LOOP* polygon, const ZBR_CROSS_AB& at) {
  return polygon != nullptr && at.pos >= 0.0 && at.pos <= static_cast<double>(polygon->pt().size());
}

enum class Between { kMaterial, kVoid, kNothing };

Between WhatLiesBetween(const ZBR_CROSS& c1, const ZBR_CROSS& c2, int side, const LoopList& other) {
  const ZBR_CROSS_AB& o1 = Side(c1, 1 - side);
  const ZBR_CROSS_AB& o2 = Side(c2, 1 - side);
  if (o1.loop.value != o2.loop.value) return o1.loop.loop() == o2.loop.loop() ? Between::kMaterial : Between::kVoid;
  const ZBR_LOOP* polygon = PolygonAt(other, o1.loop);
  const double area = HasPlace(polygon, o1) && HasPlace(polygon, o2) ? AreaBetween(c1, c2, side, *polygon) : 0.0;
  if (WithinTol(area, t_tolerance.eps)) return Between::kNothing;
  return area > 0.0 ? Between::kMaterial : Between::kVoid;
}

void OrderPair(ZBR_CROSS& c1, ZBR_CROSS& c2, int side, Between between) {
  const bool isFirstLeft = PassesLeft(c1, side);
  const bool swap = isFirstLeft == (between == Between::kMaterial);
  Side(c1, side).order = swap ? 2 : 1;
  Side(c2, side).order = swap ? 1 : 2;
}

}  // namespace

bool OrderSpot(std::vector<ZBR_CROSS>& crosses, std::span<const int> spot, int side, const LoopList& own, const LoopList& other,
               bool otherTouches, std::vector<std::pair<int, int>>& dropped) {
  bool isTie = false;
  Between between = Between::kNothing;  // of the last two in `left`
  std::vector<int> left;                // what no neighbour cancels
  left.reserve(spot.size());
  for (const int i : spot) {
    ZBR_CROSS& cur = crosses[static_cast<std::size_t>(i)];
    ZBR_CROSS* prev = left.empty() ? nullptr : &crosses[static_cast<std::size_t>(left.back())];
    left.push_back(i);
    if (prev == nullptr || prev->dir == cur.dir) continue;
    isTie = true;
    between = WhatLiesBetween(*prev, cur, side, other);
    if (between != Between::kNothing) continue;
    prev->valid = false;
    cur.valid = false;
    dropped.emplace_back(left[left.size() - 2], i);
    left.resize(left.size() - 2);
  }
  if (!isTie) return false;
  if (left.size() > 2) {
    RankByArms(crosses, left, side, own, other);
  } else if (left.size() == 2) {
    ZBR_CROSS& c1 = crosses[static_cast<std::size_t>(left[0])];
    ZBR_CROSS& c2 = crosses[static_cast<std::size_t>(left[1])];
    // The area that a ring encloses between two passages of one place tells nothing where it touches itself.
    const bool arePassages = otherTouches && Side(c1, 1 - side).loop.value == Side(c2, 1 - side).loop.value;
    // Two of one direction are left when the one between them went with a neighbour.
    if (arePassages) {
      RankByArms(crosses, left, side, own, other);
    } else if (c1.dir != c2.dir)
      OrderPair(c1, c2, side, spot.size() == 2 ? between : WhatLiesBetween(c1, c2, side, other));
  }
  return true;
}

}  // namespace zbr
