// First no two edges may touch but at their common points, around which edges that leave and edges that come must take turns. Then
// what hangs together by points has the part covered as often on the left of all its edges, and once less on the right; how often
// is told at its leftmost point by what else winds around that.
#include "drawing/intersections/border_winding.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

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

bool AreAllApart(std::vector<BorderEdge>& edges) {
  const auto left = [](const BorderEdge& e) { return std::min(e.a.x, e.b.x); };
  std::sort(edges.begin(), edges.end(), [&](const BorderEdge& e, const BorderEdge& f) { return left(e) < left(f); });
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const BorderEdge& e = edges[i];
    const double right = std::max(e.a.x, e.b.x), low = std::min(e.a.y, e.b.y), high = std::max(e.a.y, e.b.y);
    for (std::size_t j = i + 1; j < edges.size() && left(edges[j]) <= right; ++j) {
      const BorderEdge& f = edges[j];
      if (std::max(f.a.y, f.b.y) < low || std::min(f.a.y, f.b.y) > high) continue;
      if (!AreApart(e, f)) return false;
    }
  }
  return true;
}

// An edge as it goes off from one of its ends.
struct Arm {
  std::uint32_t point, edge;
  bool leaves;
  PicturePoint at, along;
};

std::vector<Arm> ArmsOf(const std::vector<BorderEdge>& edges) {
  std::vector<Arm> arms;
  arms.reserve(2 * edges.size());
  for (std::uint32_t k = 0; k < edges.size(); ++k) {
    const BorderEdge& e = edges[k];
    arms.push_back({e.from, k, true, e.a, Minus(e.b, e.a)});
    arms.push_back({e.to, k, false, e.b, Minus(e.a, e.b)});
  }
  std::sort(arms.begin(), arms.end(), [](const Arm& a, const Arm& b) {
    return a.point != b.point ? a.point < b.point : a.edge < b.edge;  // none has both ends at one point
  });
  return arms;
}

// From the direction of -x on, counter-clockwise.
bool IsBefore(const Arm& a, const Arm& b, bool& isClear) {
  const auto isUpper = [](const PicturePoint& u) { return u.y > 0 || (u.y == 0 && u.x > 0); };
  if (isUpper(a.along) != isUpper(b.along)) return isUpper(b.along);
  const int sign = CrossSign(a.along, b.along);
  isClear &= sign != 0;
  return sign > 0;
}

// Sorts what goes off from one point by direction.
bool TakeTurns(std::vector<Arm>::iterator begin, std::vector<Arm>::iterator end) {
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

bool WindsOnce(std::vector<BorderEdge>& edges) {
  if (!AreAllApart(edges)) return false;
  std::vector<Arm> arms = ArmsOf(edges);
  DisjointSets sets(edges.size());
  for (auto begin = arms.begin(); begin != arms.end();) {
    auto end = begin;
    for (; end != arms.end() && end->point == begin->point; ++end) sets.Unite(begin->edge, end->edge);
    if (!TakeTurns(begin, end)) return false;
    begin = end;
  }
  constexpr std::size_t kNone = ~std::size_t{0};
  std::vector<std::size_t> leftmost(edges.size(), kNone);  // of sets: the last arm there is at the point, the lowest of several
  for (std::size_t k = 0; k < arms.size(); ++k) {
    std::size_t& best = leftmost[sets.Find(arms[k].edge)];
    const auto isFurther = [&](const PicturePoint& p, const PicturePoint& q) { return p.x != q.x ? p.x < q.x : p.y <= q.y; };
    if (best == kNone || isFurther(arms[k].at, arms[best].at)) best = k;
  }
  for (std::uint32_t set = 0; set < edges.size(); ++set) {
    if (leftmost[set] == kNone) continue;
    const Arm& arm = arms[leftmost[set]];  // no arm is between it and the direction of -x: the part is there if the edge leaves
    int turns = 0;
    if (!CountTurns(edges, sets, set, arm.at, turns) || turns != (arm.leaves ? 1 : 0)) return false;
  }
  return true;
}

}  // namespace zbr::drawing
