// Chaining segments into polylines.
//
// Ends are merged into vertices, repeats dropped, and at each vertex the remaining ends linked in pairs; after that a chain is
// followed from link to link without looking left or right. Open chains start at free ends, in the order of the ends; whatever is
// linked and still untouched then lies on closed chains. Every step is linear but the merging, which hashes.
#include <cmath>
#include <vector>

#include <zbr/outline.h>

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

// The points from the free end `start` to the chain's other end.
Polyline TraceOpen(Ends& ends, std::size_t start) {
  Polyline line{ends[start].pt};
  ends[start].state = OPT_FIRST;
  std::size_t far = Partner(start);
  for (line.push_back(ends[far].pt); ends[far].link != -1; line.push_back(ends[far].pt)) {
    ends[far].state = OPT_PASSED;
    const std::size_t next = Index(ends[far].link);
    ends[next].state = OPT_PASSED;
    far = Partner(next);
  }
  ends[far].state = ends[far].state == OPT_END ? OPT_FIRST : OPT_LAST;
  return line;
}

// The points once round from `start`; the last lies within eps of the first.
Polyline TraceClosed(Ends& ends, std::size_t start) {
  Polyline line{ends[start].pt};
  for (std::size_t near = start;;) {
    const std::size_t far = Partner(near);
    ends[near].state = ends[far].state = OPT_PASSED;
    line.push_back(ends[far].pt);
    near = Index(ends[far].link);
    if (near == start) return line;
  }
}

}  // namespace

int zbrOptimizeSegs(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out) {
  out.clear();
  const Incidence at = EndsAtVertices(pts, MergeEnds(pts));
  DropRepeats(pts, at);
  LinkEnds(pts, at);
  for (std::size_t i = 0; i < pts.size(); ++i) {
    if (pts[i].state != OPT_END) continue;
    out.push_back(TraceOpen(pts, i));
    zbr::StraightenOpen(out.back());
  }
  const int open = static_cast<int>(out.size());
  for (std::size_t i = 0; i < pts.size(); ++i) {
    if (pts[i].state != OPT_JOINED) continue;
    out.push_back(TraceClosed(pts, i));
    zbr::StraightenClosed(out.back());
  }
  return open;
}

int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count) {
  const zbr::ToleranceScope scope(zbr::kChainEps);
  Ends ends;
  for (unsigned s = 0; s < count; ++s) {
    for (unsigned k = 0; k < shells[s].count; ++k) {
      for (const auto& list : shells[s].tris[k].intvl_v) {
        for (const ZBR_HL_INTERVAL& v : list) {
          ends.emplace_back().pt = v.s.pt.xy();
          ends.emplace_back().pt = v.e.pt.xy();
        }
      }
    }
  }
  return zbrOptimizeSegs(ends, out);
}
