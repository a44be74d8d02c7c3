// Chaining segments into polylines.
//
// Ends are merged into vertices, repeats dropped, and at each vertex the remaining ends linked in pairs; after that a chain is
// followed from link to link without looking left or right. Open chains start at free ends, in the order of the ends; whatever is
// linked and still untouched then lies on closed chains. Every step is linear but the merging, which hashes.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <zbr/outline.h>

#include "core/box.h"
#include "core/constants.h"
#include "core/planar_inline.h"
#include "core/tolerance_state.h"
#include "segments/polyline.h"
#include "segments/vertices.h"

namespace {

using Ends = std::vector<ZBR_HL_OPT_PT>;
using Polyline = std::vector<ZBR_PT>;

std::size_t Partner(std::size_t end) {
  return end ^ 1U;
}

std::size_t Index(int i) {
  return static_cast<std::size_t>(i);
}

bool IsFinite(const ZBR_PT& p) {
  return std::isfinite(p.x()) && std::isfinite(p.y());
}

void Leave(Ends& ends, std::size_t end) {
  ends[end].state = ends[Partner(end)].state = OPT_ZERO;
}

// The ends at each vertex, in ascending order: those of vertex v are list[begin[v]] to list[begin[v + 1] - 1].
struct Incidence {
  std::vector<std::size_t> begin;
  std::vector<std::size_t> list;
};

// Gives every end its vertex. Segments without length, or without finite ends, take no part.
int MergeEnds(Ends& ends) {
  for (std::size_t i = 0; i < ends.size(); ++i) {
    ends[i].index = static_cast<int>(i);
    ends[i].vertex = -1;
    ends[i].link = -1;
    ends[i].state = OPT_NEW;
  }
  const double eps2 = zbr::t_tolerance.eps2;
  for (std::size_t i = 0; i + 1 < ends.size(); i += 2) {
    const bool finite = IsFinite(ends[i].pt) && IsFinite(ends[i + 1].pt);
    if (!finite || zbr::SamePoint(ends[i].pt, ends[i + 1].pt, eps2)) Leave(ends, i);
  }
  if (ends.size() % 2 != 0) ends.back().state = OPT_ZERO;  // half a segment
  zbr::VertexGrid vertices(ends.size());
  for (ZBR_HL_OPT_PT& end : ends) {
    if (end.state != OPT_ZERO) end.vertex = vertices.At(end.pt);
  }
  return vertices.size();
}

Incidence EndsAtVertices(const Ends& ends, int vertexCount) {
  Incidence at;
  at.begin.assign(Index(vertexCount) + 1, 0);
  for (const ZBR_HL_OPT_PT& end : ends) {
    if (end.vertex >= 0) ++at.begin[Index(end.vertex) + 1];
  }
  for (std::size_t v = 1; v < at.begin.size(); ++v) at.begin[v] += at.begin[v - 1];
  at.list.resize(at.begin.back());
  std::vector<std::size_t> place(at.begin.begin(), at.begin.end() - 1);
  for (std::size_t i = 0; i < ends.size(); ++i) {
    if (ends[i].vertex >= 0) at.list[place[Index(ends[i].vertex)]++] = i;
  }
  return at;
}

// Of several segments between the same two vertices the first stays; none stays that joins a vertex to itself.
void DropRepeats(Ends& ends, const Incidence& at) {
  std::vector<int> reachedFrom(at.begin.size(), -1);  // the last vertex that was seen to be joined to this one
  for (std::size_t v = 0; v + 1 < at.begin.size(); ++v) {
    const int vertex = static_cast<int>(v);
    for (std::size_t k = at.begin[v]; k < at.begin[v + 1]; ++k) {
      const std::size_t end = at.list[k];
      if (ends[end].state == OPT_ZERO) continue;
      const int other = ends[Partner(end)].vertex;
      if (other == vertex || reachedFrom[Index(other)] == vertex) {
        Leave(ends, end);
      } else {
        reachedFrom[Index(other)] = vertex;
      }
    }
  }
}

// Pairs the ends at each vertex, in order; an odd last one is free.
void LinkEnds(Ends& ends, const Incidence& at) {
  for (std::size_t v = 0; v + 1 < at.begin.size(); ++v) {
    ZBR_HL_OPT_PT* waiting = nullptr;
    for (std::size_t k = at.begin[v]; k < at.begin[v + 1]; ++k) {
      ZBR_HL_OPT_PT& end = ends[at.list[k]];
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

// The ends at which the chain from the free end `start` enters its segments, in order.
std::vector<std::size_t> TraceOpen(Ends& ends, std::size_t start) {
  std::vector<std::size_t> entered{start};
  ends[start].state = OPT_FIRST;
  std::size_t far = Partner(start);
  while (ends[far].link != -1) {
    ends[far].state = OPT_PASSED;
    const std::size_t next = Index(ends[far].link);
    ends[next].state = OPT_PASSED;
    entered.push_back(next);
    far = Partner(next);
  }
  ends[far].state = ends[far].state == OPT_END ? OPT_FIRST : OPT_LAST;
  return entered;
}

// The same once round from `start`; the last segment ends within eps of the first one's start.
std::vector<std::size_t> TraceClosed(Ends& ends, std::size_t start) {
  std::vector<std::size_t> entered;
  for (std::size_t near = start;;) {
    const std::size_t far = Partner(near);
    ends[near].state = ends[far].state = OPT_PASSED;
    entered.push_back(near);
    near = Index(ends[far].link);
    if (near == start) return entered;
  }
}

Polyline PointsOf(const Ends& ends, const std::vector<std::size_t>& entered) {
  Polyline line{ends[entered[0]].pt};
  for (const std::size_t end : entered) line.push_back(ends[Partner(end)].pt);
  return line;
}

// Calls visit(entered, isClosed) for every chain: first the open ones, then the closed. Returns the number of open ones.
template <class Visit>
int ForEachChain(Ends& ends, Visit visit) {
  const Incidence at = EndsAtVertices(ends, MergeEnds(ends));
  DropRepeats(ends, at);
  LinkEnds(ends, at);
  int open = 0;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    if (ends[i].state != OPT_END) continue;
    visit(TraceOpen(ends, i), false);
    ++open;
  }
  for (std::size_t i = 0; i < ends.size(); ++i) {
    if (ends[i].state == OPT_JOINED) visit(TraceClosed(ends, i), true);
  }
  return open;
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

void Append(const ZBR_HL_INTERVAL& v, Ends& ends) {
  ends.emplace_back().pt = v.s.pt.xy();
  ends.emplace_back().pt = v.e.pt.xy();
}

double LargerSide(const Ends& ends) {
  zbr::Box box;
  for (const ZBR_HL_OPT_PT& end : ends) {
    if (IsFinite(end.pt)) box.Add(end.pt);
  }
  return std::max({box.xmax - box.xmin, box.ymax - box.ymin, 0.0});
}

// Multiplies all points by a power of two, which is exact.
void ScaleBy(int exponent, Polyline& line) {
  for (ZBR_PT& p : line) p.Set(std::ldexp(p.x(), exponent), std::ldexp(p.y(), exponent));
}

}  // namespace

int zbrOptimizeSegs(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out) {
  out.clear();
  return ForEachChain(pts, [&](const std::vector<std::size_t>& entered, bool isClosed) {
    out.push_back(PointsOf(pts, entered));
    Straighten(out.back(), isClosed);
  });
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
  std::vector<ZBR_HL_OPT_PT> scaled = pts;
  for (ZBR_HL_OPT_PT& end : scaled) end.pt.Set(std::ldexp(end.pt.x(), exponent), std::ldexp(end.pt.y(), exponent));
  const zbr::ToleranceScope scope(std::ldexp(eps, exponent));
  const int open = ForEachChain(scaled, [&](const std::vector<std::size_t>& ends, bool isClosed) {
    out.push_back(PointsOf(scaled, ends));
    Straighten(out.back(), isClosed);
    ScaleBy(-exponent, out.back());
    entered.emplace_back(ends.begin(), ends.end());
  });
  for (std::size_t i = 0; i < pts.size(); ++i) {
    scaled[i].pt = pts[i].pt;
    pts[i] = scaled[i];
  }
  return open;
}

int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count) {
  const zbr::ToleranceScope scope(zbr::kChainEps);
  Ends ends;
  ForEachVisible(shells, count, [&](const ZBR_HL_INTERVAL& v, const ZBR_HL_SOURCE&) { Append(v, ends); });
  return zbrOptimizeSegs(ends, out);
}

int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count,
                          std::vector<std::vector<ZBR_HL_SOURCE>>& sources, double tolerance) {
  Ends ends;
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
