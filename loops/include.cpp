// Whether one loop lies inside another, decided by samples.
//
// Loops that do not cross lie wholly on one side of each other, so one sample off the boundary decides. Vertices come first, then
// edge midpoints. Loops may also touch at every vertex and midpoint without being equal (where one has extra vertices on the
// other's edges); then the edges are sampled once more between those vertices, before the two are called coincident.
#include "loops/include.h"

#include <algorithm>
#include <cmath>

#include "core/planar_inline.h"
#include "loops/point_in_loop.h"

namespace zbr {

namespace {

// A linear test touches every point once; building an index costs about as much as this many of them.
constexpr std::uint32_t kScansBeforeIndex = 4;
// Below this the linear test is no slower than the indexed one.
constexpr std::size_t kMinIndexedPoints = 48;

int Verdict(ZBR_POLY_INSIDE at) {
  return at == ZBR_PI_IN ? 1 : at == ZBR_PI_OUT ? -1 : 0;
}

// Samples the edge s-e between the vertices of b that lie on it.
int SampleStretches(const ZBR_PT& s, const ZBR_PT& e, LoopProbe& b, double eps, IncludeScratch& scratch) {
  scratch.params.clear();
  b.VerticesOnSegment(s, e, eps, scratch.params);
  if (scratch.params.empty()) return 0;
  scratch.params.push_back(1.0);
  std::sort(scratch.params.begin(), scratch.params.end());
  double from = 0.0;
  for (const double to : scratch.params) {
    const int verdict = Verdict(b.At(s + (e - s) * ((from + to) / 2.0), eps, scratch));
    if (verdict != 0) return verdict;
    from = to;
  }
  return 0;
}

}  // namespace

bool LoopProbe::UseIndex() {
  if (index_ != nullptr) return true;
  if (ring_.size() < kMinIndexedPoints || ++scans_ <= kScansBeforeIndex) return false;
  index_ = std::make_unique<Index>(Index{RingLocator(std::span(&ring_, 1)), {}});
  return true;
}

ZBR_POLY_INSIDE LoopProbe::Index::At(const ZBR_PT& p, double eps) {
  // A square costs as much as an answer: where they give few, because the points keep close to the ring, only now and then one is
  // looked for.
  constexpr std::uint32_t kTestsBetween = 16;
  if (clear.Contains(p)) {
    ++hits;
    return inside;
  }
  const ZBR_POLY_INSIDE at = locator.Locate(p, eps);
  if (4 * squares < hits || ++passed % kTestsBetween == 0) {
    clear = locator.ClearSquare(p, eps);
    inside = at;
    ++squares;
  }
  return at;
}

ZBR_POLY_INSIDE LoopProbe::At(const ZBR_PT& p, double eps, IncludeScratch& scratch) {
  if (ring_.size() < 3 || IsOutsideBox(p, box_, eps)) return ZBR_PI_OUT;
  if (UseIndex()) return index_->At(p, eps);
  if (scratch.pos.size() < ring_.size()) scratch.pos.resize(ring_.size());
  std::size_t used = 0;
  return PointInRing(p, ring_, eps, scratch.pos.data(), used);
}

void LoopProbe::VerticesOnSegment(const ZBR_PT& a, const ZBR_PT& b, double eps, std::vector<double>& params) {
  if (UseIndex()) {
    index_->locator.VerticesOnSegment(a, b, eps, params);
    return;
  }
  for (const ZBR_PT& v : ring_) {
    double t = 0.0;
    if (IsOnSegment(v, a, b, eps * eps, nullptr, &t) && 0.0 < t && t < 1.0) params.push_back(t);
  }
}

int SampleInside(const LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch) {
  const std::span<const ZBR_PT> points = a.ring();
  for (const ZBR_PT& v : points) {
    const int verdict = Verdict(b.At(v, eps, scratch));
    if (verdict != 0) return verdict;
  }
  if (points.empty()) return 0;
  const ZBR_PT* prev = &points.back();
  for (const ZBR_PT& v : points) {
    const int verdict = Verdict(b.At((*prev + v) / 2.0, eps, scratch));
    if (verdict != 0) return verdict;
    prev = &v;
  }
  prev = &points.back();
  for (const ZBR_PT& v : points) {
    const int verdict = SampleStretches(*prev, v, b, eps, scratch);
    if (verdict != 0) return verdict;
    prev = &v;
  }
  return 0;
}

int InsideVerdict(const LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch) {
  const Box& in = a.box();
  const Box& out = b.box();
  if (!(out.xmin - eps <= in.xmax && out.ymin - eps <= in.ymax && in.xmin - eps <= out.xmax && in.ymin - eps <= out.ymax))
    return -1;
  return SampleInside(a, b, eps, scratch);
}

bool IsLoopInside(const LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch) {
  return InsideVerdict(a, b, eps, scratch) >= 0;
}

// Where two rings share an edge, both have their insides on one side of it or each on its own. The middle of a's longest edge is
// farthest from the places where b's boundary meets itself. What is about as thin as the tolerance lies on b's boundary on either
// side of it, and fills nothing.
bool FillsGap(const LoopProbe& a, double areaA, const LoopProbe& b, double areaB, double eps) {
  constexpr double kTolerancesAcross = 8.0;
  if (a.ring().empty()) return false;
  ZBR_PT middle;
  ZBR_PT along;
  double length = 0.0;
  const ZBR_PT* prev = &a.ring().back();
  for (const ZBR_PT& v : a.ring()) {
    length += v.Distance(*prev);
    if ((v - *prev).Length2() > along.Length2()) {
      along = v - *prev;
      middle = (*prev + v) / 2.0;
    }
    prev = &v;
  }
  if (!(2.0 * std::fabs(areaA) > kTolerancesAcross * eps * length)) return false;
  const double turn = (areaA < 0.0) == (areaB < 0.0) ? 1.0 : -1.0;
  bool sharesInside = false;
  bool sharesOutside = false;
  prev = &b.ring().back();
  for (const ZBR_PT& v : b.ring()) {
    const double sense = turn * (v - *prev).InnerProduct(along);
    if (sense != 0.0 && IsOnSegment(middle, *prev, v, eps * eps, nullptr, nullptr))
      (sense > 0.0 ? sharesInside : sharesOutside) = true;
    prev = &v;
  }
  return sharesOutside && !sharesInside;
}

ZBR_POLY_REL LoopRelation(LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch) {
  if (AreApart(a.box(), b.box(), eps)) return ZBR_PR_APART;
  const int aInB = SampleInside(a, b, eps, scratch);
  if (aInB > 0) return ZBR_PR_A_IN_B;
  const int bInA = SampleInside(b, a, eps, scratch);
  if (bInA > 0) return ZBR_PR_B_IN_A;
  return aInB == 0 && bInA == 0 ? ZBR_PR_SAME : ZBR_PR_APART;
}

namespace {

ZBR_POLY_REL Relation(ZBR_LOOP& a, ZBR_LOOP& b) {
  a.Setup();
  b.Setup();
  LoopProbe probeA(a);
  LoopProbe probeB(b);
  IncludeScratch scratch;
  return LoopRelation(probeA, probeB, t_tolerance.eps, scratch);
}

// a is known to lie inside b: whether it lies in b's material or in (or as) one of its holes.
ZBR_LOOP_REL RelationToHoles(ZBR_LOOP& a, const ZBR_LOOP& b) {
  for (const std::shared_ptr<ZBR_LOOP>& hole : b.children()) {
    const ZBR_POLY_REL rel = Relation(a, *hole);
    if (rel == ZBR_PR_SAME) return ZBR_LR_SAME_AS_HOLE;
    if (rel == ZBR_PR_A_IN_B) return ZBR_LR_IN_HOLE;
  }
  return ZBR_LR_INSIDE;
}

}  // namespace

}  // namespace zbr

bool zbrIsInside(ZBR_LOOP& a, ZBR_LOOP& b) {
  a.Setup();
  b.Setup();
  const zbr::LoopProbe inner(a);
  zbr::LoopProbe outer(b);
  zbr::IncludeScratch scratch;
  return zbr::IsLoopInside(inner, outer, zbr::t_tolerance.eps, scratch);
}

ZBR_POLY_REL zbrCheckInclude(ZBR_LOOP& a, ZBR_LOOP& b) {
  return zbr::Relation(a, b);
}

ZBR_LOOP_REL zbrCheckInclude(const std::shared_ptr<ZBR_LOOP>& a, const std::shared_ptr<ZBR_LOOP>& b) {
  switch (zbr::Relation(*a, *b)) {
    case ZBR_PR_SAME:
      return ZBR_LR_SAME;
    case ZBR_PR_B_IN_A:
      return ZBR_LR_CONTAINS;
    case ZBR_PR_APART:
      return ZBR_LR_OUTSIDE;
    case ZBR_PR_A_IN_B:
      break;
  }
  return zbr::RelationToHoles(*a, *b);
}

ZBR_LOOP_REL zbrCheckInclude(const std::shared_ptr<ZBR_LOOP>& a, const std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  for (const std::shared_ptr<ZBR_LOOP>& loop : loops) {
    const ZBR_POLY_REL rel = zbr::Relation(*a, *loop);
    if (rel == ZBR_PR_SAME) return ZBR_LR_SAME;
    if (rel == ZBR_PR_A_IN_B) return zbr::RelationToHoles(*a, *loop);
  }
  return ZBR_LR_OUTSIDE;
}
