// Between the heights of all vertices and of the operands' crossings, what a horizontal line spends inside a region is linear in
// its height, so two lines per slab give the area exactly (Gauss). Crossings of the result with the operands are left out: they are
// the rounding errors to be tolerated, or belong to a wrong result, whose area need not be exact. With thousands of edges finding
// the crossings would cost more than it gives: there slabs of equal thickness do.
#include "support/judge.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t kMostEdgesToCross = 1200;
constexpr int kSlabsOfLargeInput = 2000;

double DistanceFromEdge(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b) {
  const ZBR_PT along = b - a;
  const double t = std::clamp((p - a).InnerProduct(along) / along.Length2(), 0.0, 1.0);
  return p.Distance(a + along * t);
}

}  // namespace

bool IsInside(int winding, JudgeFill fill) {
  switch (fill) {
    case kFillEvenOdd:
      return (winding & 1) != 0;
    case kFillNonZero:
      return winding != 0;
    case kFillPositive:
      return winding > 0;
    case kFillNegative:
      return winding < 0;
  }
  return false;
}

bool IsInResult(ZBR_BOOLEAN_OPE op, bool inA, bool inB) {
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return inA && !inB;
    case ZBR_BOOL_B_MINUS_A:
      return inB && !inA;
    case ZBR_BOOL_OR:
      return inA || inB;
    case ZBR_BOOL_AND:
      return inA && inB;
    case ZBR_BOOL_XOR:
      return inA != inB;
  }
  return false;
}

long double RegionJudge::Edge::XAt(long double y) const {
  const long double t = (y - low.y()) / (static_cast<long double>(high.y()) - low.y());
  return low.x() + t * (static_cast<long double>(high.x()) - low.x());
}

RegionJudge::RegionJudge(const std::vector<Ring>& a, const std::vector<Ring>& b, JudgeFill fillA, JudgeFill fillB)
    : fill_{fillA, fillB} {
  Append(a, 0, edges_);
  Append(b, 1, edges_);
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  double box[] = {kInfinite, -kInfinite, kInfinite, -kInfinite};
  for (const std::vector<Ring>* rings : {&a, &b}) {
    for (const Ring& ring : *rings) {
      for (std::size_t i = 0; i < ring.size(); ++i) {
        const ZBR_PT& p = ring[i];
        const ZBR_PT& q = ring[(i + 1) % ring.size()];
        perimeter_ += p.Distance(q);
        if (p.Distance2(q) > 0.0) sides_.insert(sides_.end(), {p, q});
        heights_.push_back(p.y());
        box[0] = std::min(box[0], p.x());
        box[1] = std::max(box[1], p.x());
        box[2] = std::min(box[2], p.y());
        box[3] = std::max(box[3], p.y());
      }
    }
  }
  extent_ = std::max({0.0, box[1] - box[0], box[3] - box[2]});
  if (edges_.size() <= kMostEdgesToCross) {
    AppendCrossingHeights();
  } else {
    for (int i = 1; i < kSlabsOfLargeInput; ++i) heights_.push_back(box[2] + (box[3] - box[2]) * i / kSlabsOfLargeInput);
  }
}

void RegionJudge::Append(const std::vector<Ring>& rings, int owner, std::vector<Edge>& edges) {
  for (const Ring& ring : rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ZBR_PT& p = ring[i];
      const ZBR_PT& q = ring[(i + 1) % ring.size()];
      if (p.y() < q.y()) edges.push_back({p, q, owner, -1});
      if (p.y() > q.y()) edges.push_back({q, p, owner, 1});
    }
  }
}

void RegionJudge::AppendCrossingHeights() {
  for (std::size_t i = 0; i < edges_.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      const Edge& e = edges_[i];
      const Edge& f = edges_[k];
      const double from = std::max(e.low.y(), f.low.y());
      const double to = std::min(e.high.y(), f.high.y());
      if (!(from < to)) continue;
      const long double before = e.XAt(from) - f.XAt(from);
      const long double after = e.XAt(to) - f.XAt(to);
      if (before * after < 0) heights_.push_back(static_cast<double>(from + (to - from) * (before / (before - after))));
    }
  }
}

double RegionJudge::DistanceFromOperands(const ZBR_PT& p, double atLeast) const {
  double nearest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < sides_.size(); i += 2) {
    nearest = std::min(nearest, DistanceFromEdge(p, sides_[i], sides_[i + 1]));
    if (nearest <= atLeast) return nearest;
  }
  return nearest;
}

void RegionJudge::Integrate(const std::vector<const Edge*>& active, long double y, long double thickness, ZBR_BOOLEAN_OPE op,
                            Verdict& verdict) const {
  struct Crossing {
    long double x;
    const Edge* edge;
  };
  static thread_local std::vector<Crossing> line;
  line.clear();
  for (const Edge* e : active) {
    if (e->low.y() <= y && y < e->high.y()) line.push_back({e->XAt(y), e});
  }
  std::sort(line.begin(), line.end(), [](const Crossing& p, const Crossing& q) { return p.x < q.x; });
  int winding[3] = {0, 0, 0};
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    winding[line[i].edge->owner] += line[i].edge->step;
    const bool wanted = IsInResult(op, IsInside(winding[0], fill_[0]), IsInside(winding[1], fill_[1]));
    const int off = std::abs(winding[2] - (wanted ? 1 : 0));
    if (!wanted && off == 0) continue;
    const long double width = line[i + 1].x - line[i].x;
    if (wanted) verdict.expected += static_cast<double>(width * thickness);
    if (off == 0) continue;
    verdict.area += static_cast<double>(width * thickness * off);
    if (width <= kNarrow * extent_) continue;
    const ZBR_PT middle(static_cast<double>(line[i].x + width / 2), static_cast<double>(y));
    const double depth = DistanceFromOperands(middle, verdict.depth);
    if (depth <= verdict.depth) continue;
    verdict.depth = depth;
    verdict.place = middle;
  }
}

Verdict RegionJudge::Judge(ZBR_BOOLEAN_OPE op, const std::vector<Ring>& result) const {
  std::vector<Edge> edges = edges_;
  Append(result, 2, edges);
  std::vector<double> heights = heights_;
  for (std::size_t i = edges_.size(); i < edges.size(); ++i) {
    heights.push_back(edges[i].low.y());
    heights.push_back(edges[i].high.y());
  }
  std::sort(heights.begin(), heights.end());
  heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
  std::sort(edges.begin(), edges.end(), [](const Edge& e, const Edge& f) { return e.low.y() < f.low.y(); });

  Verdict verdict;
  std::vector<const Edge*> active;
  std::size_t next = 0;
  for (std::size_t i = 0; i + 1 < heights.size(); ++i) {
    const long double from = heights[i];
    const long double thickness = heights[i + 1] - from;
    std::erase_if(active, [&](const Edge* e) { return e->high.y() <= heights[i]; });
    for (; next < edges.size() && edges[next].low.y() < heights[i + 1]; ++next) active.push_back(&edges[next]);
    const long double gauss = (1 - 1 / std::sqrt(3.0L)) / 2;
    Integrate(active, from + thickness * gauss, thickness / 2, op, verdict);
    Integrate(active, from + thickness * (1 - gauss), thickness / 2, op, verdict);
  }
  return verdict;
}

bool RegionJudge::IsWrong(const Verdict& verdict, double tolerance) const {
  const bool isCrumb = verdict.area <= kCrumb * extent_ * extent_;
  return !(verdict.area <= kSlack * tolerance * perimeter_) || (!(verdict.depth <= kDepthSlack * tolerance) && !isCrumb);
}
