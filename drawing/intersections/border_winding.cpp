// First no two edges may touch but at their common points, around which edges that leave and edges that come must take turns. Then
// what hangs together by points has the part covered as often on the left of all its edges, and once less on the right; how often
// is told at its leftmost point by what else winds around that.
#include "drawing/intersections/border_winding.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "drawing/model/disjoint_sets.h"

namespace zbr::drawing {
namespace {

// Rounding of two products and their sum, in parts of the products; rounded up.
constexpr double kError = 4.0 / 9007199254740992.0;  // 4 * 2^-53

int ClearSign(double p, double q) {
  const double sum = p + q, error = kError * (std::abs(p) + std::abs(q));
  return (sum > error) - (sum < -error);
}

PicturePoint Minus(const PicturePoint& a, const PicturePoint& b) {
  return {a.x - b.x, a.y - b.y};
}
int CrossSign(const PicturePoint& u, const PicturePoint& v) {
  return ClearSign(u.x * v.y, -(u.y * v.x));
}
int DotSign(const PicturePoint& u, const PicturePoint& v) {
  return ClearSign(u.x * v.x, u.y * v.y);
}

// From a common point the edges go off in different directions.
bool PartAt(const PicturePoint& p, const PicturePoint& q, const PicturePoint& r) {
  const PicturePoint u = Minus(q, p), v = Minus(r, p);
  return CrossSign(u, v) != 0 || DotSign(u, v) < 0;
}

bool AreApart(const BorderEdge& e, const BorderEdge& f) {
  if (e.from == f.from) return e.to != f.to && PartAt(e.a, e.b, f.b);
  if (e.from == f.to) return e.to != f.from && PartAt(e.a, e.b, f.a);
  if (e.to == f.from) return PartAt(e.b, e.a, f.b);
  if (e.to == f.to) return PartAt(e.b, e.a, f.a);
  const int a = ClearSide(e.a, e.b, f.a), b = ClearSide(f.a, f.b, e.a);
  return (a != 0 && a == ClearSide(e.a, e.b, f.b)) || (b != 0 && b == ClearSide(f.a, f.b, e.b));
}

// Edges in slots across a picture, so that only those of slots next to each other are compared. The slots lie aslant: borders that
// run along the axes would fill a few of them.
class Slots {
 public:
  explicit Slots(const std::vector<BorderEdge>& edges) : begins_(edges.size() + 2), boxed_(edges.size()) {
    std::vector<Extent> extents;
    extents.reserve(edges.size());
    double low = HUGE_VAL, high = -HUGE_VAL;
    for (const BorderEdge& e : edges) {
      const double a = Along(e.a), b = Along(e.b);
      extents.push_back({std::min(a, b), std::max(a, b)});
      low = std::min(low, extents.back().first);
      high = std::max(high, extents.back().last);
    }
    const double perUnit = static_cast<double>(edges.size()) / std::max(high - low, 1.0);
    const auto slot = [&](double along) { return static_cast<std::uint32_t>((along - low) * perUnit); };
    for (const Extent& extent : extents) ++begins_[slot(extent.first) + 1];
    for (std::size_t i = 1; i < begins_.size(); ++i) begins_[i] += begins_[i - 1];
    for (std::uint32_t k = 0; k < edges.size(); ++k) {
      const BorderEdge& e = edges[k];
      const auto [left, right] = std::minmax(e.a.x, e.b.x);
      const auto [below, above] = std::minmax(e.a.y, e.b.y);
      // A hundredth of a slot further, as edges must not miss each other by rounding.
      const auto last = static_cast<std::uint32_t>((extents[k].last - low) * perUnit + 0.01);
      boxed_[begins_[slot(extents[k].first)]++] = {left, right, below, above, k, last};
    }
    for (Boxed& e : boxed_) e.last = std::min(e.last, static_cast<std::uint32_t>(begins_.size() - 2));
  }

  // False once test(i, j) is, for edges whose boxes meet.
  template <class Test>
  bool ForPairs(const Test& test) const {
    for (std::size_t i = 0; i < boxed_.size(); ++i) {
      const Boxed& e = boxed_[i];
      for (std::size_t j = i + 1; j < begins_[e.last]; ++j) {
        const Boxed& f = boxed_[j];
        if ((e.left > f.right) | (f.left > e.right) | (e.below > f.above) | (f.below > e.above)) continue;
        if (!test(e.edge, f.edge)) return false;
      }
    }
    return true;
  }

 private:
  struct Boxed {
    double left, right, below, above;
    std::uint32_t edge, last;  // the last of its slots
  };

  struct Extent {
    double first, last;
  };

  static double Along(const PicturePoint& p) { return p.x + 0.618034 * p.y; }

  std::vector<std::uint32_t> begins_;  // of slots; in the end, where each ends
  std::vector<Boxed> boxed_;           // by their first slot
};

// An edge as it goes off from one of its ends.
struct Arm {
  std::uint32_t point, edge;
  bool leaves;
  PicturePoint at, along;
};

Arm ArmOf(const std::vector<BorderEdge>& edges, std::uint32_t edge, bool leaves) {
  const BorderEdge& e = edges[edge];
  return leaves ? Arm{e.from, edge, true, e.a, Minus(e.b, e.a)} : Arm{e.to, edge, false, e.b, Minus(e.a, e.b)};
}

// The edges at points, of which nearly all have one that comes and one that leaves.
class Ends {
 public:
  static constexpr std::uint32_t kNone = 0xffffffffU;

  struct Point {
    std::uint32_t number = kNone, comes = kNone, leaves = kNone;
    bool hasMore = false;
  };

  explicit Ends(const std::vector<BorderEdge>& edges) : points_(std::bit_ceil(2 * edges.size() + 1)) {
    for (std::uint32_t k = 0; k < edges.size(); ++k) {
      Put(edges, k, true);
      Put(edges, k, false);
    }
  }

  // Also those without any edge.
  const std::vector<Point>& Points() const { return points_; }
  // Edges that come or leave where others did so before.
  std::size_t MoreCount() const { return more_.size(); }
  std::vector<Arm> ArmsAt(const std::vector<BorderEdge>& edges, const Point& point) const {
    std::vector<Arm> arms = {ArmOf(edges, point.comes, false), ArmOf(edges, point.leaves, true)};
    if (!point.hasMore) return arms;
    std::copy_if(more_.begin(), more_.end(), std::back_inserter(arms), [&](const Arm& arm) { return arm.point == point.number; });
    return arms;
  }

 private:
  void Put(const std::vector<BorderEdge>& edges, std::uint32_t k, bool leaves) {
    const std::uint32_t number = leaves ? edges[k].from : edges[k].to;
    const std::uint32_t hash = number * 2654435769U;
    std::size_t i = hash & (points_.size() - 1);
    while (points_[i].number != number && points_[i].number != kNone) i = (i + 1) & (points_.size() - 1);
    points_[i].number = number;
    std::uint32_t& edge = leaves ? points_[i].leaves : points_[i].comes;
    if (edge == kNone) {
      edge = k;
    } else {
      points_[i].hasMore = true;
      more_.push_back(ArmOf(edges, k, leaves));
    }
  }

  std::vector<Point> points_;  // by a hash of their numbers
  std::vector<Arm> more_;      // what comes or leaves where others did so before
};

// From the direction of -x on, counter-clockwise.
bool IsBefore(const Arm& a, const Arm& b, bool& isClear) {
  const auto isUpper = [](const PicturePoint& u) { return u.y > 0 || (u.y == 0 && u.x > 0); };
  if (isUpper(a.along) != isUpper(b.along)) return isUpper(b.along);
  const int sign = CrossSign(a.along, b.along);
  isClear &= sign != 0;
  return sign > 0;
}

// Sorts what goes off from one point by direction.
bool TakeTurns(std::vector<Arm>& arms) {
  const auto begin = arms.begin(), end = arms.end();
  bool isClear = true;
  for (auto sorted = begin; sorted != end; ++sorted) {
    for (auto arm = sorted; arm != begin && IsBefore(*arm, *(arm - 1), isClear); --arm) std::iter_swap(arm, arm - 1);
  }
  for (auto arm = begin; arm + 1 != end; ++arm) {
    if (arm->leaves == (arm + 1)->leaves) return false;
  }
  return isClear && (end - begin) % 2 == 0;
}

// How often the edges that do not hang together with one of them wind around a point; false in doubt.
bool CountTurns(const std::vector<BorderEdge>& edges, DisjointSets& sets, std::uint32_t set, const PicturePoint& p, int& turns) {
  turns = 0;
  for (std::uint32_t k = 0; k < edges.size(); ++k) {
    const BorderEdge& e = edges[k];
    const bool isUpwards = e.a.y <= p.y;
    if (isUpwards == (e.b.y <= p.y) || sets.Find(k) == set) continue;
    const int side = ClearSide(e.a, e.b, p);
    if (side == 0) return false;
    if (side == (isUpwards ? 1 : -1)) turns += side;
  }
  return true;
}

}  // namespace

int ClearSide(const PicturePoint& a, const PicturePoint& b, const PicturePoint& c) {
  return CrossSign(Minus(b, a), Minus(c, a));
}

// All edges are counted around each ring, and arms looked through at each point that more than two edges have in common. Around
// more holes than that it is faster to look at triangles.
constexpr std::size_t kMostRings = 64;

bool WindsOnce(const std::vector<BorderEdge>& edges) {
  if (edges.empty()) return true;
  const Ends ends(edges);
  DisjointSets sets(edges.size());
  std::size_t rings = edges.size();
  for (const Ends::Point& point : ends.Points()) {
    if (point.number == Ends::kNone) continue;
    if (point.comes == Ends::kNone || point.leaves == Ends::kNone) return false;
    if (sets.Unite(point.comes, point.leaves)) --rings;
  }
  if (rings > kMostRings || ends.MoreCount() > kMostRings) return false;
  if (!Slots(edges).ForPairs([&](std::uint32_t i, std::uint32_t j) { return AreApart(edges[i], edges[j]); })) return false;
  for (const Ends::Point& point : ends.Points()) {
    if (point.number == Ends::kNone || !point.hasMore) continue;
    std::vector<Arm> arms = ends.ArmsAt(edges, point);
    if (!TakeTurns(arms)) return false;
    for (const Arm& arm : arms) sets.Unite(point.comes, arm.edge);
  }
  std::vector<const Ends::Point*> leftmost(edges.size());  // of sets; the lowest of several
  const auto at = [&](const Ends::Point* point) { return edges[point->leaves].a; };
  for (const Ends::Point& point : ends.Points()) {
    if (point.number == Ends::kNone) continue;
    const Ends::Point*& best = leftmost[sets.Find(point.leaves)];
    const auto isFurther = [&](const PicturePoint& p, const PicturePoint& q) { return p.x != q.x ? p.x < q.x : p.y < q.y; };
    if (best == nullptr || isFurther(at(&point), at(best))) best = &point;
  }
  for (std::uint32_t set = 0; set < edges.size(); ++set) {
    if (leftmost[set] == nullptr) continue;
    std::vector<Arm> arms = ends.ArmsAt(edges, *leftmost[set]);
    if (!TakeTurns(arms)) return false;
    // No arm is between the last one and the direction of -x: the part is there if the edge leaves.
    int turns = 0;
    if (!CountTurns(edges, sets, set, at(leftmost[set]), turns) || turns != (arms.back().leaves ? 1 : 0)) return false;
  }
  return true;
}

}  // namespace zbr::drawing
