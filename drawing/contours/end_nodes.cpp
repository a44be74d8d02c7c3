// Idea: ends at one point are one spot. Spots that are closer together than the tolerance, and closer than a quarter of the
// shortest path, are one node, all that reach each other: so noise between the ends of a junction does no harm. A tolerance above
// that, which people choose to close gaps, must not swallow short lines: then only an end that meets nothing yet looks for a
// partner, the nearest pair first, and never the other end of its own straight line. Nothing depends on the order of the paths:
// spots are sorted by their coordinates, pairs by distance and then by their spots.
#include "drawing/contours/end_nodes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "drawing/model/disjoint_sets.h"
#include "drawing/points.h"

namespace zbr::drawing {
namespace {

constexpr double kPartOfShortest = 0.25;
constexpr double kLeastReach = 1e-9;  // of the tolerance, with which the search for partners begins

bool HasEnds(const Path& path) {
  return !path.closed && path.points.size() > 1;
}

bool IsStraight(const Path& path) {
  return path.points.size() == 2 && path.curves.empty();
}

// How far a path goes from where it starts.
double Reach(const Path& path) {
  double reach = 0.0;
  for (const ZBR_PT& p : path.points) reach = std::max(reach, p.Distance(path.points.front()));
  for (const Curve& curve : path.curves) reach = std::max(reach, curve.At((curve.t0 + curve.t1) / 2).Distance(curve.At(curve.t0)));
  return reach;
}

struct Cell {
  double x, y;
  bool operator==(const Cell& o) const { return x == o.x && y == o.y; }
};

struct CellHash {
  std::size_t operator()(const Cell& c) const { return std::hash<double>()(c.x) * 0x9E3779B97F4A7C15U + std::hash<double>()(c.y); }
};

class NodeFinder {
 public:
  NodeFinder(const std::vector<Path>& paths, double tolerance) : paths_(paths), tolerance_(tolerance) { CollectSpots(); }

  EndNodes Run() {
    if (tolerance_ > 0) {
      double shortest = std::numeric_limits<double>::infinity();
      for (const Path& path : paths_) {
        if (HasEnds(path) && Reach(path) > 0) shortest = std::min(shortest, Reach(path));
      }
      UniteWithin(std::min(tolerance_, shortest * kPartOfShortest));
      UniteLoose();
    }
    return Numbered();
  }

 private:
  struct Pair {
    double distance;
    std::uint32_t a, b;
    bool operator<(const Pair& o) const { return std::tie(distance, a, b) < std::tie(o.distance, o.a, o.b); }
  };

  const ZBR_PT& PointOf(std::size_t end) const {
    return end % 2 == 0 ? paths_[end / 2].points.front() : paths_[end / 2].points.back();
  }

  void CollectSpots() {
    std::vector<std::size_t> ends;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      if (HasEnds(paths_[i])) ends.insert(ends.end(), {2 * i, 2 * i + 1});
    }
    std::sort(ends.begin(), ends.end(), [&](std::size_t a, std::size_t b) { return IsLess(PointOf(a), PointOf(b)); });
    spotOf_.assign(2 * paths_.size(), EndNodes::kNoNode);
    for (const std::size_t end : ends) {
      const ZBR_PT& p = PointOf(end);
      if (spots_.empty() || !AreIdentical(spots_.back(), p)) {
        spots_.push_back(p);
        ends_.push_back(0);
        isDrawn_.push_back(false);
      }
      spotOf_[end] = static_cast<std::uint32_t>(spots_.size() - 1);
      ++ends_.back();
      if (!EndsInCurve(end)) isDrawn_.back() = true;
    }
    sets_ = DisjointSets(spots_.size());
  }

  bool EndsInCurve(std::size_t end) const {
    const Path& path = paths_[end / 2];
    if (path.curves.empty()) return false;
    return end % 2 == 0 ? path.curves.front().at == 0 : path.curves.back().at + 2 == path.points.size();
  }

  std::uint32_t Root(std::uint32_t spot) { return sets_.Find(spot); }

  void Unite(std::uint32_t a, std::uint32_t b) {
    a = Root(a);
    b = Root(b);
    if (sets_.Unite(a, b)) ends_[std::min(a, b)] += ends_[std::max(a, b)];
  }

  // Calls visit for the pairs of spots within the distance of which `wanted` says so of the first; each at least once.
  template <class Wanted, class Visit>
  void ForPairs(double distance, Wanted wanted, Visit visit) {
    std::unordered_map<Cell, std::vector<std::uint32_t>, CellHash> cells;
    const auto cellOf = [&](const ZBR_PT& p) { return Cell{std::floor(p.x() / distance), std::floor(p.y() / distance)}; };
    for (std::uint32_t s = 0; s < spots_.size(); ++s) cells[cellOf(spots_[s])].push_back(s);
    for (std::uint32_t s = 0; s < spots_.size(); ++s) {
      if (!wanted(s)) continue;
      const Cell home = cellOf(spots_[s]);
      for (const double dx : {-1.0, 0.0, 1.0}) {
        for (const double dy : {-1.0, 0.0, 1.0}) {
          const auto found = cells.find({home.x + dx, home.y + dy});
          if (found == cells.end()) continue;
          for (const std::uint32_t other : found->second) {
            if (other != s && spots_[s].Distance(spots_[other]) <= distance) visit(s, other);
          }
        }
      }
    }
  }

  void UniteWithin(double distance) {
    if (!(distance > 0)) return;
    ForPairs(
        distance, [](std::uint32_t) { return true; }, [&](std::uint32_t a, std::uint32_t b) { Unite(a, b); });
  }

  // Spots by ascending distance, in rounds of growing reach: what finds its partner early is not held against all others within the
  // tolerance, which may be most of the drawing.
  void UniteLoose() {
    const OtherEnds otherEnds = FindOtherEnds();
    double reach = FirstReach();
    if (!(tolerance_ > 0)) return;
    double within = -1.0;
    for (reach = std::min(tolerance_, reach);; reach = std::min(tolerance_, 2.0 * reach)) {
      std::vector<Pair> pairs;
      ForPairs(
          reach, [&](std::uint32_t s) { return ends_[Root(s)] == 1; },
          [&](std::uint32_t a, std::uint32_t b) {
            const double distance = spots_[a].Distance(spots_[b]);
            if (distance > within && Root(a) != Root(b)) pairs.push_back({distance, std::min(a, b), std::max(a, b)});
          });
      std::sort(pairs.begin(), pairs.end());
      for (const Pair& pair : pairs) UniteLooseEnds(pair, otherEnds);
      if (!(reach < tolerance_)) return;
      within = reach;
    }
  }

  // Less than neighbours are apart, unless most lie in a small part of the drawing; bounds the tolerance by what can matter.
  double FirstReach() {
    constexpr double kPartOfSpacing = 1.0 / 1024.0;
    Extent extent;
    for (const ZBR_PT& p : spots_) extent.Add(p);
    if (extent.empty()) return tolerance_;
    tolerance_ = std::min(tolerance_, 2.0 * extent.Size());
    const double spacing = extent.Size() / std::sqrt(static_cast<double>(spots_.size()));
    return std::max(spacing * kPartOfSpacing, tolerance_ * kLeastReach);
  }

  // By spot at which nothing but a straight line ends: where that begins.
  using OtherEnds = std::unordered_map<std::uint32_t, std::uint32_t>;
  OtherEnds FindOtherEnds() const {
    OtherEnds otherEnds;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      if (!HasEnds(paths_[i]) || !IsStraight(paths_[i])) continue;
      otherEnds[spotOf_[2 * i]] = spotOf_[2 * i + 1];
      otherEnds[spotOf_[2 * i + 1]] = spotOf_[2 * i];
    }
    return otherEnds;
  }

  // A line does not close with itself alone.
  void UniteLooseEnds(const Pair& pair, const OtherEnds& otherEnds) {
    const auto closesLine = [&](std::uint32_t s, std::uint32_t t) {
      const auto found = otherEnds.find(s);
      return found != otherEnds.end() && Root(found->second) == Root(t);
    };
    const bool looseA = ends_[Root(pair.a)] == 1, looseB = ends_[Root(pair.b)] == 1;
    if ((!looseA && !looseB) || closesLine(pair.a, pair.b) || closesLine(pair.b, pair.a)) return;
    Unite(pair.a, pair.b);
  }

  // A node lies on its first spot that a straight line was drawn to: an arc's end was computed.
  EndNodes Numbered() {
    EndNodes nodes;
    std::vector<std::uint32_t> numberOf(spots_.size(), EndNodes::kNoNode);
    std::vector<std::uint32_t> best(spots_.size());
    for (std::uint32_t s = 0; s < spots_.size(); ++s) {
      const std::uint32_t root = Root(s);
      if (root == s || (isDrawn_[s] && !isDrawn_[best[root]])) best[root] = s;
    }
    for (std::uint32_t s = 0; s < spots_.size(); ++s) {
      if (best[Root(s)] != s) continue;
      numberOf[Root(s)] = static_cast<std::uint32_t>(nodes.points.size());
      nodes.points.push_back(spots_[s]);
    }
    nodes.nodeOf.assign(spotOf_.size(), EndNodes::kNoNode);
    for (std::size_t end = 0; end < spotOf_.size(); ++end) {
      if (spotOf_[end] != EndNodes::kNoNode) nodes.nodeOf[end] = numberOf[Root(spotOf_[end])];
    }
    return nodes;
  }

  const std::vector<Path>& paths_;
  double tolerance_;
  std::vector<std::uint32_t> spotOf_;  // by end
  std::vector<ZBR_PT> spots_;
  std::vector<std::uint32_t> ends_;  // by spot: how many, of a root those of its node
  std::vector<bool> isDrawn_;        // by spot: whether a straight line ends there
  DisjointSets sets_{0};             // of spots; the root of a node is its first one
};

}  // namespace

EndNodes FindEndNodes(const std::vector<Path>& paths, double tolerance) {
  return NodeFinder(paths, tolerance).Run();
}

}  // namespace zbr::drawing
