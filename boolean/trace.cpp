// Builds the loops of a result from paths of crossings.
//
// A path is a sequence of stretches, each along one polygon from one crossing to the next: the crossing's point, then the polygon's
// vertices strictly between the two positions. Points that coincide with the last one appended are left out.
// Difficulty: positions say where on the ring a crossing lies, but not how often to go round. When no vertex lies between the two
// positions the stretch is either empty or a whole turn, and which one depends on their order in walking direction; a position of 0
// stands for n where it ends a stretch.
#include "boolean/trace.h"

#include <algorithm>

#include "boolean/cross_sort.h"
#include "boolean/polygons.h"
#include "core/planar_inline.h"
#include "core/prefetch.h"

namespace zbr {

namespace {

// The vertices of a ring of n points from `first` on, `count` of them, in walking order.
struct VertexRange {
  std::size_t first = 0;
  std::size_t count = 0;
};

// The vertices next to position p on a ring of n points, p itself excluded; 0 <= p < n.
std::size_t VertexAfter(double p, std::size_t n) {
  const std::size_t after = static_cast<std::size_t>(p) + 1;
  return after == n ? 0 : after;
}

std::size_t VertexBefore(double p, std::size_t n) {
  const auto whole = static_cast<std::size_t>(p);
  if (static_cast<double>(whole) != p) return whole;
  return (whole == 0 ? n : whole) - 1;
}

VertexRange ForwardRange(double p1, double p2, std::size_t n) {
  const std::size_t first = VertexAfter(p1, n);
  const std::size_t last = VertexBefore(p2, n);
  const std::size_t steps = last >= first ? last - first : last + n - first;
  const bool isEmpty = p2 > p1 || (p2 == 0.0 && p1 != 0.0);
  return {first, steps + 1 == n && isEmpty ? 0 : steps + 1};
}

VertexRange BackwardRange(double p1, double p2, std::size_t n) {
  const std::size_t first = VertexBefore(p1, n);
  const std::size_t last = VertexAfter(p2, n);
  const std::size_t steps = first >= last ? first - last : first + n - last;
  const bool isEmpty = p2 < p1 || (p1 == 0.0 && p2 != 0.0);
  return {first, steps + 1 == n && isEmpty ? 0 : steps + 1};
}

// One stretch of a path.
struct Stretch {
  const std::vector<ZBR_PT>* ring;
  VertexRange vertices;
  bool forward;
  bool hasRepeats;
  bool isNothing;  // not even the crossing's point
};

class Tracer {
 public:
  Tracer(const std::vector<ZBR_CROSS>& crosses, const std::vector<PlacedCrossing>& alongA, const TracedFamily& a,
         const TracedFamily& b)
      : crosses_(crosses), alongA_(alongA), families_{&a, &b} {}

  // Asks for the records of a path that is built soon.
  void PrefetchPath(std::span<const std::uint32_t> path) const {
    constexpr std::size_t kMostPrefetched = 8;
    for (std::size_t i = 0; i + 1 < std::min(path.size(), kMostPrefetched); ++i) PrefetchObject(CrossingAt(path[i]));
  }

  // The loop of a path, or null when it is degenerate.
  std::shared_ptr<ZBR_LOOP> Build(std::span<const std::uint32_t> path) {
    std::size_t bound = 0;
    stretches_.clear();
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      stretches_.push_back(StretchBetween(CrossingAt(path[i]), CrossingAt(path[i + 1])));
      if (!stretches_.back().isNothing) bound += 1 + stretches_.back().vertices.count;
    }
    if (bound <= 2) return nullptr;
    auto loop = std::make_shared<ZBR_LOOP>();
    std::vector<ZBR_PT>& points = loop->pt();
    points.reserve(bound);
    for (std::size_t i = 0; i < stretches_.size(); ++i) {
      if (!stretches_[i].isNothing) AppendStretch(CrossingAt(path[i]).pt, stretches_[i], points);
    }
    if (points.size() <= 2) return nullptr;
    loop->Setup();
    return WithinTol(loop->area(), t_tolerance.eps) ? nullptr : loop;
  }

 private:
  const ZBR_CROSS& CrossingAt(std::uint32_t placeOnA) const { return crosses_[static_cast<std::size_t>(alongA_[placeOnA].index)]; }

  Stretch StretchBetween(const ZBR_CROSS& c1, const ZBR_CROSS& c2) const {
    const int side = c1.dir == ZBR_CROSS_TO_LEFT ? 0 : 1;
    const TracedFamily& family = *families_[side];
    const ZBR_CROSS_AB& from = Side(c1, side);
    const ZBR_CROSS_AB& to = Side(c2, side);
    const std::size_t number =
        (*family.firstPolygon)[static_cast<std::size_t>(from.loop.loop())] + static_cast<std::size_t>(from.loop.poly());
    const std::vector<ZBR_PT>& ring = (**(*family.polygons)[number].loop).pt();
    const bool areNeighbours = family.forward ? from.seq + 1 == to.seq : to.seq + 1 == from.seq;
    Stretch stretch{&ring, {}, family.forward, (*family.seen)[number].hasRepeats, false};
    if (WithinTol(from.pos, to.pos, t_tolerance.eps) && areNeighbours) {
      stretch.isNothing = true;
      return stretch;
    }
    // A position may have been rounded up to n; that is vertex 0.
    const std::size_t n = ring.size();
    const double p1 = from.pos >= static_cast<double>(n) ? 0.0 : from.pos;
    const double p2 = to.pos >= static_cast<double>(n) ? 0.0 : to.pos;
    stretch.vertices = family.forward ? ForwardRange(p1, p2, n) : BackwardRange(p1, p2, n);
    return stretch;
  }

  static void AppendDistinct(const ZBR_PT& p, std::vector<ZBR_PT>& points) {
    if (points.empty() || !SamePoint(p, points.back(), t_tolerance.eps2)) points.push_back(p);
  }

  static void AppendStretch(const ZBR_PT& start, const Stretch& stretch, std::vector<ZBR_PT>& points) {
    AppendDistinct(start, points);
    const std::vector<ZBR_PT>& ring = *stretch.ring;
    const std::size_t n = ring.size();
    const auto next = [&](std::size_t v) { return stretch.forward ? (v + 1 == n ? 0 : v + 1) : (v == 0 ? n : v) - 1; };
    std::size_t v = stretch.vertices.first;
    std::size_t left = stretch.vertices.count;
    for (; left > 0; --left, v = next(v)) {
      const std::size_t before = points.size();
      AppendDistinct(ring[v], points);
      // From the first vertex appended on, neighbours differ, unless the ring has repeats.
      if (!stretch.hasRepeats && points.size() > before) {
        --left;
        v = next(v);
        break;
      }
    }
    while (left > 0) {
      const std::size_t run = std::min(left, stretch.forward ? n - v : v + 1);
      const auto from = ring.begin() + static_cast<std::ptrdiff_t>(v);
      if (stretch.forward) {
        points.insert(points.end(), from, from + static_cast<std::ptrdiff_t>(run));
      } else {
        points.insert(points.end(), std::make_reverse_iterator(from + 1),
                      std::make_reverse_iterator(from + 1 - static_cast<std::ptrdiff_t>(run)));
      }
      left -= run;
      v = stretch.forward ? 0 : n - 1;
    }
  }

  const std::vector<ZBR_CROSS>& crosses_;
  const std::vector<PlacedCrossing>& alongA_;
  const TracedFamily* families_[2];
  std::vector<Stretch> stretches_;
};

}  // namespace

void TracePaths(const std::vector<ZBR_CROSS>& crosses, const std::vector<PlacedCrossing>& alongA, const PathFinder& paths,
                const TracedFamily& a, const TracedFamily& b, LoopList& result) {
  Tracer tracer(crosses, alongA, a, b);
  result.reserve(result.size() + paths.count());
  for (std::size_t k = 0; k < paths.count(); ++k) {
    if (k + kItemsAhead < paths.count()) tracer.PrefetchPath(paths.path(k + kItemsAhead));
    std::shared_ptr<ZBR_LOOP> loop = tracer.Build(paths.path(k));
    if (loop != nullptr) result.push_back(std::move(loop));
  }
}

}  // namespace zbr
