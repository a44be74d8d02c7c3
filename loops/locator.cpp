// Point location in logarithmic time, with the answers of the linear test.
//
// Idea: a ray from the point is followed down the hierarchy. The leaves it passes hold every edge that can count for it, every vertex it
// can graze, and every vertex and edge that the point can be on, since the ray starts there.
// Why the answer is the same: on-vertex and on-edge are decided by the same tests on the same edges. For inside and outside the
// linear test chooses its quadrant by counting vertices; here the quadrant with the nearest way out is taken, where fewest edges are
// met. The choice cannot matter: a ray counts only if it stays clear of every vertex, and then its parity is the ring's. That rests
// on rounding errors being far smaller than eps; where coordinates are too large for that, the rings are scanned linearly.
// The verdict "unknown" takes the rays of all slopes in all quadrants being abandoned: the same set of rays in any order.
#include "loops/locator.h"

#include <cmath>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "loops/point_in_loop.h"

namespace zbr {

namespace {

constexpr double kUnitRoundoff = 0x1p-53;
// Offsets from a line are sums of a few rounded products, so their error stays below this many units of the coordinates' size.
constexpr double kOffsetErrorUnits = 8.0;
// Linear scanning starts where that error comes within this factor of eps.
constexpr double kSafety = 4.0;

int QuadrantOfNearestExit(const ZBR_PT& p, const Box& box) {
  const bool right = box.xmax - p.x() <= p.x() - box.xmin;
  const bool up = box.ymax - p.y() <= p.y() - box.ymin;
  return up ? (right ? 0 : 1) : (right ? 3 : 2);
}

bool IsFinite(std::span<const ZBR_PT> ring) {
  return std::all_of(ring.begin(), ring.end(), [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); });
}

}  // namespace

// One ray from the point: what it has met so far.
struct RingLocator::RayScan {
  ZBR_PT p;
  double eps;
  double rayEps;
  int quadrant;
  double slope;
  double offset;  // of the ray's line: y = slope * x + offset
  bool grazed = false;
  bool odd = false;
  bool onEdge = false;
  bool onVertex = false;

  RayScan(const ZBR_PT& point, double tolerance, int q, double steepness)
      : p(point),
        eps(tolerance),
        rayEps(std::fabs(tolerance * kRayEpsScale)),
        quadrant(q),
        slope(QuadrantX(q) == QuadrantY(q) ? steepness : -steepness),
        offset(point.y() - slope * point.x()) {}

  double OffsetOf(const ZBR_PT& v) const { return v.y() - slope * v.x() - offset; }

  // Whether the ray, widened by `margin`, meets the box.
  bool Meets(const Box& b, double margin) const {
    const bool right = QuadrantX(quadrant) > 0;
    const bool up = QuadrantY(quadrant) > 0;
    const double x0 = slope > 0.0 ? b.xmin : b.xmax;
    const double x1 = slope > 0.0 ? b.xmax : b.xmin;
    return ((right ? b.xmax - p.x() : p.x() - b.xmin) >= -margin) & ((up ? b.ymax - p.y() : p.y() - b.ymin) >= -margin) &
           (b.ymax - slope * x0 - offset >= -margin) & (b.ymin - slope * x1 - offset <= margin);
  }

  void Edge(const ZBR_PT& u, const ZBR_PT& v) {
    const ZBR_POS_PT_PT pu = PositionOf(u, p, eps);
    const ZBR_POS_PT_PT pv = PositionOf(v, p, eps);
    if (pv.xPos == 0 && pv.yPos == 0) onVertex = true;
    if (IsBehindQuadrant(pu, pv, quadrant)) return;
    if (!onEdge && !IsBesidePoint(pu, pv)) onEdge = IsOnSegment(p, u, v, eps * eps, nullptr, nullptr);
    const double h0 = OffsetOf(u);
    const double h1 = OffsetOf(v);
    grazed |= WithinTol(h0, rayEps) || WithinTol(h1, rayEps);
    if ((h0 > 0.0) == (h1 > 0.0)) return;
    const double x = u.x() + h0 / (h0 - h1) * (v.x() - u.x());
    odd ^= QuadrantX(quadrant) > 0 ? x - rayEps > p.x() : p.x() - rayEps > x;
  }
};

RingLocator::RingLocator(std::span<const std::span<const ZBR_PT>> rings) {
  std::vector<IndexedRing> indexed;
  indexed.reserve(rings.size());
  for (const std::span<const ZBR_PT>& ring : rings) {
    if (ring.size() < 3) continue;
    const auto n = static_cast<std::uint32_t>(ring.size());
    indexed.push_back({ring.data(), n, n - 1, n, 0, false});
  }
  index_.Build(std::move(indexed), 0.0, 0.0);
  if (!index_.tree().empty()) box_ = index_.tree().Level(index_.tree().TopLevel())[0];
  reach_ = std::max({std::fabs(box_.xmin), std::fabs(box_.ymin), std::fabs(box_.xmax), std::fabs(box_.ymax)});
  // Boxes pass NaN over; the linear scan knows what to make of it.
  if (!std::all_of(rings.begin(), rings.end(), IsFinite)) reach_ = std::numeric_limits<double>::infinity();
}

bool RingLocator::IsFarBeyondRounding(const ZBR_PT& p, double eps) const {
  const double size = std::max({reach_, std::fabs(p.x()), std::fabs(p.y())});
  return size * (kSafety * kOffsetErrorUnits * kUnitRoundoff) < eps;
}

ZBR_POLY_INSIDE RingLocator::Locate(const ZBR_PT& p, double eps) const {
  if (index_.tree().empty()) return ZBR_PI_OUT;
  if (!IsFarBeyondRounding(p, eps)) return ScanRings(p, eps);
  if (IsOutsideBox(p, box_, eps)) return ZBR_PI_OUT;
  const double margin = 2.0 * eps;  // covers the snapping band (the slope is at most 1) and, as just checked, rounding
  const int nearest = QuadrantOfNearestExit(p, box_);
  for (int k = 0; k < 4; ++k) {
    for (int s = 0; s < kRaySlopes; ++s) {
      RayScan scan(p, eps, (nearest + k) % 4, RaySlope(s));
      index_.tree().Walk([&](const Box& box) { return scan.Meets(box, margin); },
                         [&](std::uint32_t leaf) {
                           ScanLeaf(leaf, scan);
                           return !scan.onVertex;
                         });
      if (scan.onVertex) return ZBR_PI_ON_VERTEX;
      if (scan.onEdge) return ZBR_PI_ON_EDGE;
      if (!scan.grazed) return scan.odd ? ZBR_PI_IN : ZBR_PI_OUT;
    }
  }
  return ZBR_PI_UNKNOWN;
}

void RingLocator::ScanLeaf(std::uint32_t leaf, RayScan& scan) const {
  const EdgeIndex::Leaf& at = index_.leaf(leaf);
  const IndexedRing& ring = index_.rings()[at.ring];
  const std::uint32_t last = index_.LastSlot(at);
  std::uint32_t u = ring.Vertex(at.first);
  for (std::uint32_t slot = at.first; slot < last; ++slot) {
    const std::uint32_t v = ring.Next(u);
    scan.Edge(ring.points[u], ring.points[v]);
    u = v;
  }
}

// The linear test, ring by ring, combined: on a vertex of any ring, else on an edge of any, else the parity of the rings around.
ZBR_POLY_INSIDE RingLocator::ScanRings(const ZBR_PT& p, double eps) const {
  std::vector<ZBR_POS_PT_PT> pos;
  bool onEdge = false;
  bool unknown = false;
  bool odd = false;
  for (const IndexedRing& indexed : index_.rings()) {
    const std::span<const ZBR_PT> ring(indexed.points, indexed.n);
    if (IsOutsideBox(p, BoundsOf(ring), eps)) continue;
    pos.resize(ring.size());
    std::size_t used = 0;
    const ZBR_POLY_INSIDE at = PointInRing(p, ring, eps, pos.data(), used);
    if (at == ZBR_PI_ON_VERTEX) return at;
    onEdge |= at == ZBR_PI_ON_EDGE;
    unknown |= at == ZBR_PI_UNKNOWN;
    odd ^= at == ZBR_PI_IN;
  }
  if (onEdge) return ZBR_PI_ON_EDGE;
  if (unknown) return ZBR_PI_UNKNOWN;
  return odd ? ZBR_PI_IN : ZBR_PI_OUT;
}

void RingLocator::VerticesOnSegment(const ZBR_PT& a, const ZBR_PT& b, double eps, std::vector<double>& params) const {
  const Box near = BoxOfSegment(a, b).Widened(eps);
  index_.tree().Walk([&](const Box& box) { return Overlap(box, near); },
                     [&](std::uint32_t leaf) {
                       const EdgeIndex::Leaf& at = index_.leaf(leaf);
                       const IndexedRing& ring = index_.rings()[at.ring];
                       for (std::uint32_t slot = at.first; slot < index_.LastSlot(at); ++slot) {
                         double t = 0.0;
                         if (IsOnSegment(ring.points[ring.Vertex(slot)], a, b, eps * eps, nullptr, &t) && 0.0 < t && t < 1.0) {
                           params.push_back(t);
                         }
                       }
                       return true;
                     });
}

}  // namespace zbr

// The locator's own copy of the rings, and the index over it.
class ZBR_LOOP_LOCATOR::Impl {
 public:
  explicit Impl(const std::vector<const ZBR_LOOP*>& loops) : locator_(Copy(loops)) {}
  ZBR_POLY_INSIDE Locate(const ZBR_PT& p) const { return locator_.Locate(p, zbr::t_tolerance.eps); }

 private:
  std::span<const std::span<const ZBR_PT>> Copy(const std::vector<const ZBR_LOOP*>& loops) {
    std::size_t total = 0;
    for (const ZBR_LOOP* loop : loops) total += loop->pt().size();
    points_.reserve(total);
    for (const ZBR_LOOP* loop : loops) {
      points_.insert(points_.end(), loop->pt().begin(), loop->pt().end());
      rings_.emplace_back(points_.data() + points_.size() - loop->pt().size(), loop->pt().size());
    }
    return rings_;
  }

  std::vector<ZBR_PT> points_;
  std::vector<std::span<const ZBR_PT>> rings_;
  zbr::RingLocator locator_;  // refers to the two above: declared, and so built, last
};

namespace {

std::vector<const ZBR_LOOP*> RingsOf(const std::vector<std::shared_ptr<ZBR_LOOP>>& region) {
  std::vector<const ZBR_LOOP*> rings;
  for (const std::shared_ptr<ZBR_LOOP>& loop : region) {
    rings.push_back(loop.get());
    for (const std::shared_ptr<ZBR_LOOP>& hole : loop->children()) rings.push_back(hole.get());
  }
  return rings;
}

}  // namespace

ZBR_LOOP_LOCATOR::ZBR_LOOP_LOCATOR(const ZBR_LOOP& loop)
    : impl_(std::make_shared<const Impl>(std::vector<const ZBR_LOOP*>{&loop})) {}
ZBR_LOOP_LOCATOR::ZBR_LOOP_LOCATOR(const std::vector<std::shared_ptr<ZBR_LOOP>>& region)
    : impl_(std::make_shared<const Impl>(RingsOf(region))) {}
ZBR_LOOP_LOCATOR::~ZBR_LOOP_LOCATOR() = default;
ZBR_LOOP_LOCATOR::ZBR_LOOP_LOCATOR(const ZBR_LOOP_LOCATOR& o) = default;
ZBR_LOOP_LOCATOR& ZBR_LOOP_LOCATOR::operator=(const ZBR_LOOP_LOCATOR& o) = default;

ZBR_POLY_INSIDE ZBR_LOOP_LOCATOR::IsInside(const ZBR_PT& pt) const {
  return impl_->Locate(pt);
}
