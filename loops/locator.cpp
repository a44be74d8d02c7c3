// Point location in logarithmic time, with the answers of the linear test.
//
// Idea: whether a point is on a vertex or an edge is decided by the same tests as there, on the edges of the few leaves whose boxes
// hold the point. For inside and outside one ray counts edges, but not one by one: a node of the hierarchy is a chain of edges, and
// if its box does not hold the point, all its crossings with the ray's line lie on one side of the point. Then the chain crosses
// the ray oddly often exactly if its two ends lie on different sides of the line. Only nodes that hold the point are opened. Why
// passing close to a vertex does no harm here: the side of every vertex is computed once, in one way, whichever edge or chain asks,
// so the parity is that of a ring whose vertices are moved by rounding errors; and the point is farther than the tolerance from
// every edge. (The linear test gives such a ray up and tries another; where it has tried them all and answers "unknown", this one
// still decides.) Where coordinates are so large that rounding errors approach the tolerance, the rays are cast linearly.
#include "loops/locator.h"

#include <cmath>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "loops/point_in_loop.h"

namespace zbr {

namespace {

constexpr double kUnitRoundoff = 0x1p-53;
// Offsets from the ray's line are sums of a few rounded products, so their error stays below this many units of the coordinates'
// size.
constexpr double kOffsetErrorUnits = 8.0;
// Linear scanning starts where that error comes within this factor of eps.
constexpr double kSafety = 4.0;

bool IsFinite(std::span<const ZBR_PT> ring) {
  return std::all_of(ring.begin(), ring.end(), [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); });
}

// A leaf near a point, found by going straight down to the nearest box.
template <class Distance>
std::uint32_t LeafNear(const BoxTree& tree, Distance distance) {
  const auto isNearer = [&](const Box& x, const Box& y) { return distance(x) < distance(y); };
  std::uint32_t node = 0;
  for (int level = tree.TopLevel(); level > 0; --level) {
    const Box* below = tree.Level(level - 1);
    const std::uint32_t first = node * BoxTree::kFanOut;
    const std::uint32_t last = std::min(first + BoxTree::kFanOut, tree.Count(level - 1));
    node = static_cast<std::uint32_t>(std::min_element(below + first, below + last, isNearer) - below);
  }
  return node;
}

}  // namespace

// The ray from the point into the first quadrant, and what it has met so far.
struct RingLocator::RayScan {
  static constexpr double kSlope = 0.5;

  ZBR_PT p;
  double eps;
  double offset;  // of the ray's line: y = kSlope * x + offset
  bool odd = false;
  bool onEdge = false;
  bool onVertex = false;

  RayScan(const ZBR_PT& point, double tolerance) : p(point), eps(tolerance), offset(point.y() - kSlope * point.x()) {}

  bool IsAbove(const ZBR_PT& v) const { return v.y() - kSlope * v.x() - offset > 0.0; }

  // Whether the ray, widened by `margin`, meets the box.
  bool Meets(const Box& b, double margin) const {
    const double right = b.xmax - p.x();
    const double up = b.ymax - p.y();
    const double highest = b.ymax - kSlope * b.xmin - offset;
    const double lowest = b.ymin - kSlope * b.xmax - offset;
    return (right >= -margin) & (up >= -margin) & (highest >= -margin) & (lowest <= margin);
  }

  void Edge(const ZBR_PT& u, const ZBR_PT& v) {
    const ZBR_POS_PT_PT pu = PositionOf(u, p, eps);
    const ZBR_POS_PT_PT pv = PositionOf(v, p, eps);
    if (pv.xPos == 0 && pv.yPos == 0) onVertex = true;
    if (!onEdge && !IsBesidePoint(pu, pv)) onEdge = IsOnSegment(p, u, v, eps * eps, nullptr, nullptr);
    if (IsAbove(u) == IsAbove(v)) return;
    const double h0 = u.y() - kSlope * u.x() - offset;
    const double h1 = v.y() - kSlope * v.x() - offset;
    odd ^= u.x() + h0 / (h0 - h1) * (v.x() - u.x()) > p.x();
  }
};

RingLocator::RingLocator(std::span<const std::span<const ZBR_PT>> rings) {
  std::vector<IndexedRing> indexed;
  indexed.reserve(rings.size());
  for (const std::span<const ZBR_PT>& ring : rings) {
    if (ring.size() < 3) continue;
    const auto n = static_cast<std::uint32_t>(ring.size());
    indexed.push_back({BoundsOf(ring), ring.data(), n, n - 1, n, 0, false});
  }
  index_.Build(std::move(indexed), 0.0, 0.0);
  if (!index_.tree().empty()) box_ = index_.tree().Level(index_.tree().TopLevel())[0];
  reach_ = std::max({std::fabs(box_.xmin), std::fabs(box_.ymin), std::fabs(box_.xmax), std::fabs(box_.ymax)});
  // Boxes pass NaN over; the linear scan knows what to make of it.
  if (!std::all_of(rings.begin(), rings.end(), IsFinite)) reach_ = std::numeric_limits<double>::infinity();
}

double RingLocator::RoundingAt(const ZBR_PT& p) const {
  return std::max({reach_, std::fabs(p.x()), std::fabs(p.y())}) * (kOffsetErrorUnits * kUnitRoundoff);
}

// On a vertex, else on an edge, else ZBR_PI_UNKNOWN: by the linear test's own comparisons, on the edges near the point.
ZBR_POLY_INSIDE RingLocator::Snap(const ZBR_PT& p, double eps) const {
  const Box near = Box{p.x(), p.y(), p.x(), p.y()}.Widened(2.0 * eps + kSafety * RoundingAt(p));
  RayScan scan(p, eps);
  index_.tree().Walk([&](const Box& box, int, std::uint32_t) { return Overlap(box, near); },
                     [&](std::uint32_t leaf) {
                       ScanLeaf(leaf, scan);
                       return !scan.onVertex;
                     });
  return scan.onVertex ? ZBR_PI_ON_VERTEX : scan.onEdge ? ZBR_PI_ON_EDGE : ZBR_PI_UNKNOWN;
}

ZBR_POLY_INSIDE RingLocator::Locate(const ZBR_PT& p, double eps) const {
  if (index_.tree().empty()) return ZBR_PI_OUT;
  if (!std::isfinite(reach_) || !std::isfinite(p.x()) || !std::isfinite(p.y())) return ScanRings(p, eps);
  if (IsOutsideBox(p, box_, eps)) return ZBR_PI_OUT;
  if (!(RoundingAt(p) * kSafety < eps)) {
    const ZBR_POLY_INSIDE on = Snap(p, eps);
    return on != ZBR_PI_UNKNOWN ? on : ScanRings(p, eps);
  }
  const double margin = 2.0 * eps;  // covers the snapping band (the slope is less than 1) and, as just checked, rounding
  const Box near = Box{p.x(), p.y(), p.x(), p.y()}.Widened(margin);
  RayScan scan(p, eps);
  // A chain away from the point settles with its ends; the walk only opens nodes near it.
  const auto open = [&](const Box& box, int level, std::uint32_t node) {
    if (!scan.Meets(box, margin)) return false;
    if (Overlap(box, near)) return true;
    scan.odd ^= IsChainCut(level, node, scan);
    return false;
  };
  const auto scanLeaf = [&](std::uint32_t leaf) {
    ScanLeaf(leaf, scan);
    return !scan.onVertex;
  };
  index_.tree().Walk(open, scanLeaf);
  if (scan.onVertex) return ZBR_PI_ON_VERTEX;
  if (scan.onEdge) return ZBR_PI_ON_EDGE;
  return scan.odd ? ZBR_PI_IN : ZBR_PI_OUT;
}

// The distances are those of the square: the larger of the offsets along the axes.
Box RingLocator::ClearSquare(const ZBR_PT& p, double eps) const {
  if (index_.tree().empty() || !(RoundingAt(p) * (2.0 * kSafety) < eps)) return {};
  const auto distance = [&p](const Box& b) { return std::max({b.xmin - p.x(), p.x() - b.xmax, b.ymin - p.y(), p.y() - b.ymax}); };
  double nearest = std::numeric_limits<double>::infinity();
  const auto scanLeaf = [&](std::uint32_t leaf) {
    index_.VisitEdges(leaf, [&](const ZBR_PT& u, const ZBR_PT& v) {
      const ZBR_PT d = v - u;
      const double toLine = std::fabs(Cross(d, p - u)) / (std::fabs(d.x()) + std::fabs(d.y()));  // NaN where u is v
      nearest = std::min(nearest, std::max(distance(BoxOfSegment(u, v)), toLine));
    });
    return nearest > 0.0;
  };
  scanLeaf(LeafNear(index_.tree(), distance));  // what is found there spares the walk most of the nodes
  index_.tree().Walk([&](const Box& box, int, std::uint32_t) { return distance(box) < nearest; }, scanLeaf);
  const double reach = nearest - 4.0 * eps;  // twice what Locate opens around a point
  return reach > 0.0 ? Box{p.x(), p.y(), p.x(), p.y()}.Widened(reach) : Box{};
}

// Whether the ray's line parts the ends of the node's chain. Rings that lie in the node as a whole have no ends; where a node spans
// rings, the first contributes its rest and the last its beginning, which both end where their ring begins.
bool RingLocator::IsChainCut(int level, std::uint32_t node, const RayScan& scan) const {
  const std::uint32_t width = 1U << (2 * static_cast<unsigned>(level));
  const std::uint32_t leaves = index_.tree().Count(0);
  const std::uint32_t behind = leaves - node * width > width ? node * width + width : leaves;
  const EdgeIndex::Leaf& first = index_.leaf(node * width);
  const EdgeIndex::Leaf& last = index_.leaf(behind - 1);
  if (first.first == 0 && (behind == leaves || index_.leaf(behind).first == 0)) return false;  // whole rings only
  const IndexedRing& firstRing = index_.rings()[first.ring];
  const IndexedRing& lastRing = index_.rings()[last.ring];
  const std::uint32_t begin = firstRing.Vertex(first.first);
  const std::uint32_t lastSlot = index_.LastSlot(last);
  const std::uint32_t end = lastRing.Vertex(lastSlot == lastRing.slots ? 0 : lastSlot);
  bool cut = scan.IsAbove(firstRing.points[begin]) != scan.IsAbove(lastRing.points[end]);
  if (first.ring != last.ring) {
    cut ^= scan.IsAbove(firstRing.points[firstRing.start]) != scan.IsAbove(lastRing.points[lastRing.start]);
  }
  return cut;
}

void RingLocator::ScanLeaf(std::uint32_t leaf, RayScan& scan) const {
  index_.VisitEdges(leaf, [&scan](const ZBR_PT& p, const ZBR_PT& q) { scan.Edge(p, q); });
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
  EdgesNear(a, b, eps, [&](const ZBR_PT& vertex, const ZBR_PT&) {
    double t = 0.0;
    if (IsOnSegment(vertex, a, b, eps * eps, nullptr, &t) && 0.0 < t && t < 1.0) params.push_back(t);
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
