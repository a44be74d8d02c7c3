// Chaining segments into polylines.
//
// Ends are merged into vertices, repeats dropped, and at each vertex the remaining ends linked in pairs; after that a chain is
// followed from link to link without looking left or right. Open chains start at free ends, in the order of the ends; whatever is
// linked and still untouched then lies on closed chains. Every step is linear but the merging, which hashes.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <vector>

#include <zbr/outline.h>

#include "core/box.h"
#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/small_array.h"
#include "core/tolerance_state.h"
#include "segments/polyline.h"
#include "segments/vertices.h"

namespace {

using Ends = std::span<ZBR_HL_OPT_PT>;
using Polyline = std::vector<ZBR_PT>;

constexpr std::size_t kFew = 32;  // ends that are chained without memory: many drawings have a body of a few lines by the thousand
using Numbers = zbr::SmallArray<int, kFew + 1>;

std::size_t Index(int i) {
  return static_cast<std::size_t>(i);
}

int Partner(int end) {
  return end ^ 1;
}

bool IsFinite(const ZBR_PT& p) {
  return std::isfinite(p.x()) && std::isfinite(p.y());
}

void Leave(Ends ends, int end) {
  ends[Index(end)].state = ends[Index(Partner(end))].state = OPT_ZERO;
}

// The ends at each vertex, in ascending order.
struct Incidence {
  Numbers begin;  // by vertex, and the end of the last one
  Numbers list;

  std::span<const int> At(std::size_t v) const { return {list.begin() + begin[v], list.begin() + begin[v + 1]}; }
  std::size_t VertexCount() const { return begin.size() - 1; }

  Incidence(Ends ends, int vertexCount) : begin(Index(vertexCount) + 1), list(ends.size()) {
    for (const ZBR_HL_OPT_PT& end : ends) {
      if (end.vertex >= 0) ++begin[Index(end.vertex)];
    }
    std::partial_sum(begin.begin(), begin.end(), begin.begin());
    for (std::size_t i = ends.size(); i-- > 0;) {
      if (ends[i].vertex >= 0) list[Index(--begin[Index(ends[i].vertex)])] = ends[i].index;
    }
  }
};

// Gives every end its vertex. Segments without length, or without finite ends, take no part.
int MergeEnds(Ends ends) {
  for (std::size_t i = 0; i < ends.size(); ++i) {
    ends[i].index = static_cast<int>(i);
    ends[i].vertex = -1;
    ends[i].link = -1;
    ends[i].state = OPT_NEW;
  }
  const double eps2 = zbr::t_tolerance.eps2;
  for (std::size_t i = 0; i + 1 < ends.size(); i += 2) {
    const bool finite = IsFinite(ends[i].pt) && IsFinite(ends[i + 1].pt);
    if (!finite || zbr::SamePoint(ends[i].pt, ends[i + 1].pt, eps2)) Leave(ends, ends[i].index);
  }
  if (ends.size() % 2 != 0) ends.back().state = OPT_ZERO;  // half a segment
  zbr::VertexGrid vertices(ends.size());
  for (ZBR_HL_OPT_PT& end : ends) {
    if (end.state != OPT_ZERO) end.vertex = vertices.At(end.pt);
  }
  return vertices.size();
}

// Of several segments between the same two vertices the first stays; none stays that joins a vertex to itself.
void DropRepeats(Ends ends, const Incidence& at) {
  Numbers reachedFrom(at.VertexCount(), -1);  // the last vertex that was seen to be joined to this one
  for (std::size_t v = 0; v < at.VertexCount(); ++v) {
    const int vertex = static_cast<int>(v);
    for (const int end : at.At(v)) {
      if (ends[Index(end)].state == OPT_ZERO) continue;
      const int other = ends[Index(Partner(end))].vertex;
      if (other == vertex || reachedFrom[Index(other)] == vertex) {
        Leave(ends, end);
      } else {
        reachedFrom[Index(other)] = vertex;
      }
    }
  }
}

// Pairs the ends at each vertex, in order; an odd last one is free.
void LinkEnds(Ends ends, const Incidence& at) {
  for (std::size_t v = 0; v < at.VertexCount(); ++v) {
    ZBR_HL_OPT_PT* waiting = nullptr;
    for (const int place : at.At(v)) {
      ZBR_HL_OPT_PT& end = ends[Index(place)];
      if (end.state == OPT_ZERO) continue;
      if (waiting == nullptr) {
        waiting = &end;
        continue;
      }
      end.link = waiting->index;
      waiting->link = end.index;
      end.state = waiting->state = OPT_JOINED;
      waiting = nullptr;
    }
    if (waiting != nullptr) waiting->state = OPT_END;
  }
}

// The chains of segments, first the open ones, then the closed; each segment is in one at most.
class Chains {
 public:
  explicit Chains(Ends ends) : entered_(ends.size() / 2), begins_(ends.size() / 2 + 1) {
    const Incidence at(ends, MergeEnds(ends));
    DropRepeats(ends, at);
    LinkEnds(ends, at);
    for (const ZBR_HL_OPT_PT& end : ends) {
      if (end.state == OPT_END) TraceOpen(ends, end.index);
    }
    open_ = count_;
    for (const ZBR_HL_OPT_PT& end : ends) {
      if (end.state == OPT_JOINED) TraceClosed(ends, end.index);
    }
  }

  std::size_t size() const { return count_; }
  std::size_t OpenCount() const { return open_; }
  // The ends at which chain k enters its segments, in order.
  std::span<const int> operator[](std::size_t k) const {
    return {entered_.begin() + begins_[k], entered_.begin() + begins_[k + 1]};
  }

 private:
  void TraceOpen(Ends ends, int start) {
    Enter(start);
    ends[Index(start)].state = OPT_FIRST;
    int far = Partner(start);
    while (ends[Index(far)].link != -1) {
      ends[Index(far)].state = OPT_PASSED;
      const int next = ends[Index(far)].link;
      ends[Index(next)].state = OPT_PASSED;
      Enter(next);
      far = Partner(next);
    }
    ends[Index(far)].state = ends[Index(far)].state == OPT_END ? OPT_FIRST : OPT_LAST;
    Finish();
  }

  // Once round from `start`; the last segment ends within eps of the first one's start.
  void TraceClosed(Ends ends, int start) {
    int near = start;
    do {
      const int far = Partner(near);
      ends[Index(near)].state = ends[Index(far)].state = OPT_PASSED;
      Enter(near);
      near = ends[Index(far)].link;
    } while (near != start);
    Finish();
  }

  void Enter(int end) { entered_[Index(begins_[count_ + 1]++)] = end; }
  // The next chain starts where this one ends.
  void Finish() {
    ++count_;
    if (count_ + 1 < begins_.size()) begins_[count_ + 1] = begins_[count_];
  }

  Numbers entered_;
  Numbers begins_;  // of chains, and the end of the last one
  std::size_t count_ = 0, open_ = 0;
};

Polyline PointsOf(Ends ends, std::span<const int> entered) {
  Polyline line;
  line.reserve(entered.size() + 1);
  line.push_back(ends[Index(entered[0])].pt);
  for (const int end : entered) line.push_back(ends[Index(Partner(end))].pt);
  return line;
}

void Straighten(Polyline& line, bool isClosed) {
  isClosed ? zbr::StraightenClosed(line) : zbr::StraightenOpen(line);
}

// Calls visit(interval, source) for the visible intervals of all triangles.
template <class Visit>
void ForEachVisible(const ZBR_HL_SHELL* shells, unsigned count, Visit visit) {
  for (unsigned s = 0; s < count; ++s) {
    for (unsigned k = 0; k < shells[s].count; ++k) {
      for (int i = 0; i < 3; ++i) {
        for (const ZBR_HL_INTERVAL& v : shells[s].tris[k].intvl_v[i]) {
          visit(v, ZBR_HL_SOURCE{static_cast<int>(s), static_cast<int>(k), i});
        }
      }
    }
  }
}

void Append(const ZBR_HL_INTERVAL& v, std::vector<ZBR_HL_OPT_PT>& ends) {
  ends.emplace_back().pt = v.s.pt.xy();
  ends.emplace_back().pt = v.e.pt.xy();
}

double LargerSide(const std::vector<ZBR_HL_OPT_PT>& ends) {
  zbr::Box box;
  for (const ZBR_HL_OPT_PT& end : ends) {
    if (IsFinite(end.pt)) box.Add(end.pt);
  }
  return std::max({box.xmax - box.xmin, box.ymax - box.ymin, 0.0});
}

// Multiplies points by a power of two, which is exact; by ldexp, which takes longer, where that power is no number.
class Scaling {
 public:
  explicit Scaling(int exponent) : exponent_(exponent), factor_(std::ldexp(1.0, exponent)) {}

  void Apply(ZBR_PT& p) const {
    if (std::isnormal(factor_)) {
      p.Set(p.x() * factor_, p.y() * factor_);
    } else {
      p.Set(std::ldexp(p.x(), exponent_), std::ldexp(p.y(), exponent_));
    }
  }

 private:
  int exponent_;
  double factor_;
};

}  // namespace

int zbrOptimizeSegs(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out) {
  out.clear();
  const Chains chains(pts);
  out.reserve(chains.size());
  for (std::size_t k = 0; k < chains.size(); ++k) {
    out.push_back(PointsOf(pts, chains[k]));
    Straighten(out.back(), k >= chains.OpenCount());
  }
  return static_cast<int>(chains.OpenCount());
}

// What is straight is judged by an area against a length, which suits drawings of a certain size: so drawings of other sizes are
// chained at that size.
int zbrOptimizeSegs(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out, std::vector<std::vector<int>>& entered,
                    double tolerance) {
  out.clear();
  entered.clear();
  const double side = std::min(LargerSide(pts), std::numeric_limits<double>::max());
  const double eps = tolerance > 0.0 ? tolerance : zbr::kChainShare * side;
  int exponent = 0;
  if (side > 0.0) exponent = zbr::kChainSize - std::ilogb(side);
  const Scaling scaling(exponent), back(-exponent);
  zbr::SmallArray<ZBR_HL_OPT_PT, kFew> copy(pts.size());
  std::copy(pts.begin(), pts.end(), copy.begin());
  const Ends scaled(copy.begin(), copy.end());
  for (ZBR_HL_OPT_PT& end : scaled) scaling.Apply(end.pt);
  const zbr::ToleranceScope scope(std::ldexp(eps, exponent));
  const Chains chains(scaled);
  out.reserve(chains.size());
  entered.reserve(chains.size());
  for (std::size_t k = 0; k < chains.size(); ++k) {
    out.push_back(PointsOf(scaled, chains[k]));
    Straighten(out.back(), k >= chains.OpenCount());
    for (ZBR_PT& p : out.back()) back.Apply(p);
    entered.emplace_back(chains[k].begin(), chains[k].end());
  }
  for (std::size_t i = 0; i < pts.size(); ++i) {
    scaled[i].pt = pts[i].pt;
    pts[i] = scaled[i];
  }
  return static_cast<int>(chains.OpenCount());
}

int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count) {
  const zbr::ToleranceScope scope(zbr::kChainEps);
  std::vector<ZBR_HL_OPT_PT> ends;
  ForEachVisible(shells, count, [&](const ZBR_HL_INTERVAL& v, const ZBR_HL_SOURCE&) { Append(v, ends); });
  return zbrOptimizeSegs(ends, out);
}

int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count,
                          std::vector<std::vector<ZBR_HL_SOURCE>>& sources, double tolerance) {
  std::vector<ZBR_HL_OPT_PT> ends;
  std::vector<ZBR_HL_SOURCE> sourceOf;  // by segment
  ForEachVisible(shells, count, [&](const ZBR_HL_INTERVAL& v, const ZBR_HL_SOURCE& source) {
    Append(v, ends);
    sourceOf.push_back(source);
  });
  std::vector<std::vector<int>> entered;
  const int open = zbrOptimizeSegs(ends, out, entered, tolerance);
  sources.assign(entered.size(), {});
  for (std::size_t k = 0; k < entered.size(); ++k) {
    for (const int end : entered[k]) sources[k].push_back(sourceOf[Index(end) / 2]);
  }
  return open;
}
