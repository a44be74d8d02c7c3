// Lists of visible intervals: intersection, clean-up, and the difference of two ranges.
//
// Lists are sorted and disjoint. Ends are compared by parameter; a point travels with its parameter and is never recomputed, so
// that the pieces of an edge keep the exact points at which they were cut.
#include <utility>

#include <zbr/hidden_line.h>

#include "core/tolerance_state.h"
#include "hiddenline/interval.h"

using Intervals = std::vector<ZBR_HL_INTERVAL>;

namespace {

using zbr::t_tolerance;
using zbr::WithinTol;

// Whether all intervals are wide enough and apart, as those of most lists are already.
bool IsClean(const Intervals& a, double eps) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (WithinTol(a[i].e.t - a[i].s.t, eps) || (i > 0 && a[i - 1].e.t + eps >= a[i].s.t)) return false;
  }
  return true;
}

// Merges two lists neither of which is the whole edge.
void Overlaps(std::span<const ZBR_HL_INTERVAL> a, std::span<const ZBR_HL_INTERVAL> b, double eps, Intervals& out) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const ZBR_HL_INTERVAL& p = a[i];
    const ZBR_HL_INTERVAL& q = b[j];
    if (p.s.t >= q.e.t) {
      ++j;
    } else if (p.e.t >= q.e.t) {
      if (p.s.t < q.s.t) {
        out.push_back(q);
      } else if (!WithinTol(q.e.t - p.s.t, eps)) {
        out.emplace_back(p.s, q.e);
      }
      ++j;
    } else {
      if (p.s.t >= q.s.t) {
        out.push_back(p);
      } else if (p.e.t >= q.s.t && !WithinTol(p.e.t - q.s.t, eps)) {
        out.emplace_back(q.s, p.e);
      }
      ++i;
    }
  }
}

bool IsLess(const ZBR_PT3& a, const ZBR_PT3& b) {
  if (a.x() != b.x()) return a.x() < b.x();
  return a.y() != b.y() ? a.y() < b.y() : a.z() < b.z();
}

void AgreeOnPoints(Intervals& list, std::span<ZBR_HL_INTERVAL> left) {
  const auto agree = [](ZBR_HL_INTERVAL::PT_LIN& a, ZBR_HL_INTERVAL::PT_LIN& b) {
    if (a.t == b.t) a.pt = b.pt = IsLess(a.pt, b.pt) ? ZBR_PT3(a.pt) : ZBR_PT3(b.pt);
  };
  for (ZBR_HL_INTERVAL& r : left) {
    for (ZBR_HL_INTERVAL& v : list) {
      agree(r.s, v.s);
      agree(r.e, v.e);
    }
  }
}

// What of a0 <= a1 is left beside b0 <= b1 when b starts at or before a does.
int AfterRange(double a0, double a1, double b1, double eps, double& r0, double& r1) {
  if (a1 + eps < b1) return 0;
  if (b1 > a0) {
    if (WithinTol(b1, a1, eps)) return 0;
    r0 = b1;
    r1 = a1;
    return 1;
  }
  if (WithinTol(a0, a1, eps)) return 0;
  r0 = a0;
  r1 = a1;
  return 1;
}

// The same when b starts after a does.
int BeforeRange(double a0, double a1, double b0, double b1, double eps, double& r0, double& r1) {
  if (a1 + eps < b0) {
    r0 = a0;
    r1 = a1;
    return 1;
  }
  if (a1 + eps >= b1) {
    const bool reachesEnd = WithinTol(a1, b1, eps);
    r0 = reachesEnd ? a0 : b0;
    r1 = reachesEnd ? b0 : b1;
    return reachesEnd ? 1 : 2;
  }
  const double end = a1 <= b0 ? a1 : b0;
  if (WithinTol(a0, end, eps)) return 0;
  r0 = a0;
  r1 = end;
  return 1;
}

}  // namespace

void zbr::Intersect(Intervals& list, std::span<ZBR_HL_INTERVAL> left, Intervals& work) {
  AgreeOnPoints(list, left);
  if (IsWholeEdge(list)) {
    list.assign(left.begin(), left.end());
  } else {
    work.clear();
    Overlaps(list, left, t_tolerance.eps, work);
    list.assign(work.begin(), work.end());  // not swapped: the lists of edges are many, and keep no spare room
  }
  zbrIntervalOptimize(list);
}

int zbrIntervalIntersection(Intervals& a, const Intervals& b, Intervals& work) {
  if (&work == &a || &work == &b) {
    Intervals own;
    return zbrIntervalIntersection(a, b, own);
  }
  if (a.empty() || b.empty()) {
    a.clear();
    return 0;
  }
  if (zbr::IsWholeEdge(b)) return static_cast<int>(a.size());
  if (zbr::IsWholeEdge(a)) {
    a = b;
    return 1;
  }
  work.clear();
  Overlaps(a, b, t_tolerance.eps, work);
  a.assign(work.begin(), work.end());  // not swapped: the lists of edges are many, and keep no spare room
  work.clear();
  return zbrIntervalOptimize(a);
}

int zbrIntervalOptimize(Intervals& a) {
  const double eps = t_tolerance.eps;
  if (IsClean(a, eps)) return static_cast<int>(a.size());
  std::erase_if(a, [eps](const ZBR_HL_INTERVAL& v) { return WithinTol(v.e.t - v.s.t, eps); });
  // From the back, so that an interval joins what its successor has become; the survivors gather at the back.
  std::size_t kept = a.size();
  for (std::size_t i = a.size(); i-- > 0;) {
    if (kept < a.size() && a[i].e.t + eps >= a[kept].s.t) {
      a[kept].s = a[i].s;
    } else {
      --kept;
      if (kept != i) a[kept] = a[i];
    }
  }
  a.erase(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(kept));
  return static_cast<int>(a.size());
}

int zbrDifferenceOfRealSeg(double a0, double a1, double b0, double b1, double& r0, double& r1) {
  if (a0 > a1) return zbrDifferenceOfRealSeg(a1, a0, b0, b1, r1, r0);
  if (b0 > b1) std::swap(b0, b1);
  const double eps = t_tolerance.eps;
  return a0 + eps >= b0 ? AfterRange(a0, a1, b1, eps, r0, r1) : BeforeRange(a0, a1, b0, b1, eps, r0, r1);
}
