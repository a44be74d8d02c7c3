// Builds the loops of a result from paths of crossings.
//
// A path is a sequence of stretches, each along one polygon from one crossing to the next: the crossing's point, then the polygon's
// vertices strictly between the two positions. Points that coincide with the last one appended are left out.
// Difficulty: positions say where on the ring a crossing lies, but not how often to go round. When no vertex lies between the two
// positions the stretch is either empty or a whole turn, and which one depends on their order in walking direction; a position of 0
// stands for n where it ends a stretch. Of two crossings at one place the lists know the order, the positions may contradict it.
#include "boolean/trace.h"

#include <algorithm>

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
  std::span<const ZBR_PT> ring;
  VertexRange vertices;
  bool forward;
  bool hasRepeats;
  bool isNothing;  // not even the crossing's point
};

class Tracer {
 public:
  Tracer(const TracedRegions& regions, const PathFinder& paths, bool forwardA, bool forwardB)
      : regions_(regions), paths_(paths), forward_{forwardA, forwardB}, eps_(t_tolerance.eps), eps2_(t_tolerance.eps2) {}

  // Asks for the crossings of a path that is built soon.
  void PrefetchPath(std::span<const std::uint32_t> path) const {
    constexpr std::size_t kMostPrefetched = 8;
    for (std::size_t i = 0; i + 1 < std::min(path.size(), kMostPrefetched); ++i) PrefetchObject(regions_.crossings[path[i]]);
  }

  // The loop of a path, or null when it is degenerate.
  std::shared_ptr<ZBR_LOOP> Build(std::span<const std::uint32_t> path) {
    std::size_t bound = 0;
    if (stretches_.size() < path.size()) stretches_.resize(2 * path.size());
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      Stretch& stretch = stretches_[i];
      FindStretch(path[i], path[i + 1], static_cast<int>(i % 2), stretch);  // a path starts along A
      if (!stretch.isNothing) bound += 1 + stretch.vertices.count;
    }
    if (bound <= 2) return nullptr;
    auto loop = std::make_shared<ZBR_LOOP>();
    std::vector<ZBR_PT>& points = loop->pt();
    points.reserve(bound);
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      if (!stretches_[i].isNothing) AppendStretch(regions_.crossings[path[i]].pt, stretches_[i], points);
    }
    if (points.size() <= 2) return nullptr;
    loop->Setup();
    return WithinTol(loop->area(), eps_) ? nullptr : loop;
  }

 private:
  void FindStretch(std::uint32_t c1, std::uint32_t c2, int side, Stretch& stretch) const {
    const SideOrder& order = paths_.order(side);
    const bool forward = forward_[side];
    const std::uint32_t run = order.run.empty() ? 0 : order.run[order.PlaceOf(c1)];
    const SearchedPolygon& polygon = regions_.polygons[side][run];
    const double from = regions_.crossings[c1].pos[side];
    const double to = regions_.crossings[c2].pos[side];
    const std::size_t n = polygon.count;
    stretch.ring = {polygon.points, n};
    stretch.vertices = {};
    stretch.forward = forward;
    stretch.hasRepeats = polygon.hasRepeats;
    stretch.isNothing = false;
    const bool isTie = WithinTol(from, to, eps_);
    const bool isAheadByPosition = forward ? to > from : to < from;
    if (isTie || !isAheadByPosition) {
      const std::int64_t steps = forward ? StepsBetween(order, c1, c2) : StepsBetween(order, c2, c1);
      stretch.isNothing = steps == 1 && isTie;
      // What the list has ahead though its position is not, lies at the same place.
      if (stretch.isNothing || (steps > 0 && !isAheadByPosition)) return;
    }
    // A position may have been rounded up to n; that is vertex 0.
    const double p1 = from >= static_cast<double>(n) ? 0.0 : from;
    const double p2 = to >= static_cast<double>(n) ? 0.0 : to;
    stretch.vertices = forward ? ForwardRange(p1, p2, n) : BackwardRange(p1, p2, n);
  }

  static std::int64_t StepsBetween(const SideOrder& order, std::uint32_t from, std::uint32_t to) {
    return static_cast<std::int64_t>(order.PlaceOf(to)) - static_cast<std::int64_t>(order.PlaceOf(from));
  }

  void AppendDistinct(const ZBR_PT& p, std::vector<ZBR_PT>& points) const {
    if (points.empty() || !SamePoint(p, points.back(), eps2_)) points.push_back(p);
  }

  void AppendStretch(const ZBR_PT& start, const Stretch& stretch, std::vector<ZBR_PT>& points) const {
    AppendDistinct(start, points);
    const std::span<const ZBR_PT> ring = stretch.ring;
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

  const TracedRegions& regions_;
  const PathFinder& paths_;
  bool forward_[2];
  double eps_;
  double eps2_;
  std::vector<Stretch> stretches_;  // of the path at hand, and room for longer ones
};

}  // namespace

void TracePaths(const TracedRegions& regions, const PathFinder& paths, bool forwardA, bool forwardB, LoopList& result) {
  Tracer tracer(regions, paths, forwardA, forwardB);
  result.reserve(result.size() + paths.count());
  for (std::size_t k = 0; k < paths.count(); ++k) {
    if (k + kItemsAhead < paths.count()) tracer.PrefetchPath(paths.path(k + kItemsAhead));
    std::shared_ptr<ZBR_LOOP> loop = tracer.Build(paths.path(k));
    if (loop != nullptr) result.push_back(std::move(loop));
  }
}

}  // namespace zbr
