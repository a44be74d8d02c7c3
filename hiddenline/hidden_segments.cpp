// Hidden stretches of drawable edges, as planar segments.
//
// A stretch is a gap in an edge's list of visible intervals. As they come, stretches repeat what other triangles' copies of an edge
// draw; the higher modes remove what is visible elsewhere, by equality or (UncoveredParts) by overlap.
#include <algorithm>
#include <cmath>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/planar_inline.h"
#include "core/sharing.h"
#include "core/tolerance_state.h"
#include "hiddenline/driver.h"
#include "hiddenline/interval.h"
#include "hiddenline/occlusion.h"
#include "segments/covered_parts.h"
#include "segments/segment_set.h"

namespace zbr {
namespace {

struct Stretches {
  std::vector<ZBR_SEG> segments;
  std::vector<ZBR_HL_SOURCE> sources;
};

// The place of parameter t; the ends are met exactly.
ZBR_PT PlaneAt(const ZBR_PT3& p, const ZBR_PT3& q, double t) {
  return t == 1.0 ? q.xy() : p.xy() + (q.xy() - p.xy()) * t;
}

// Adds the stretch of an edge between two parameters unless it is too short to be seen.
class Collector {
 public:
  Collector(const ZBR_HL_TRI& t, const ZBR_HL_SOURCE& source, Stretches& out)
      : p_(t.pt[source.edge]), q_(t.pt[(source.edge + 1) % 3]), source_(source), out_(out) {}

  void Add(double t0, double t1) {
    const ZBR_PT s = PlaneAt(p_, q_, t0);
    const ZBR_PT e = PlaneAt(p_, q_, t1);
    const double length2 = s.Distance2(e);
    if (!std::isfinite(length2) || WithinTol(length2, t_tolerance.eps2)) return;
    out_.segments.emplace_back(s, e);
    out_.sources.push_back(source_);
  }

 private:
  const ZBR_PT3& p_;
  const ZBR_PT3& q_;
  const ZBR_HL_SOURCE& source_;
  Stretches& out_;
};

void AddGaps(const Intervals& visible, Collector out) {
  double from = 0.0;
  for (const ZBR_HL_INTERVAL& v : visible) {
    if (v.s.t > from) out.Add(from, v.s.t);
    from = v.e.t;
  }
  if (from < 1.0) out.Add(from, 1.0);
}

void AddVisible(const Intervals& visible, Collector out) {
  for (const ZBR_HL_INTERVAL& v : visible) out.Add(v.s.t, v.e.t);
}

// The triangles of several shells, counted through.
class AllTriangles {
 public:
  AllTriangles(const ZBR_HL_SHELL* shells, unsigned count) : shells_(shells), begins_(count + std::size_t{1}) {
    for (unsigned s = 0; s < count; ++s) begins_[s + 1] = begins_[s] + shells[s].count;
  }

  std::size_t Count() const { return begins_.back(); }

  // Calls visit(triangle, source), whose edge is 0, for those from one place to another.
  template <class Visit>
  void ForEach(std::size_t begin, std::size_t end, Visit visit) const {
    auto s = static_cast<std::size_t>(std::upper_bound(begins_.begin(), begins_.end(), begin) - begins_.begin()) - 1;
    for (std::size_t k = begin; k < end; ++k) {
      while (k >= begins_[s + 1]) ++s;
      const std::size_t place = k - begins_[s];
      visit(shells_[s].tris[place], ZBR_HL_SOURCE{static_cast<int>(s), static_cast<int>(place), 0});
    }
  }

 private:
  const ZBR_HL_SHELL* shells_;
  std::vector<std::size_t> begins_;  // of shells, and the end
};

template <class T>
void Append(std::vector<T>& all, std::vector<T>& part) {
  all.insert(all.end(), part.begin(), part.end());
  std::vector<T>().swap(part);
}

// Runs add(visible intervals, collector) on each drawable edge that is wanted.
template <class AddEdge, class Wanted>
Stretches Collect(const AllTriangles& triangles, const Sharing& sharing, AddEdge add, Wanted wanted) {
  constexpr std::size_t kPiece = 16384;
  std::vector<Stretches> parts(Sharing::PieceCount(triangles.Count(), kPiece));
  sharing.InPieces(triangles.Count(), kPiece, [&](std::size_t piece, std::size_t begin, std::size_t end) {
    triangles.ForEach(begin, end, [&](const ZBR_HL_TRI& t, ZBR_HL_SOURCE source) {
      for (source.edge = 0; source.edge < 3; ++source.edge) {
        if (t.dispj[source.edge] && wanted(source)) add(t.intvl_v[source.edge], Collector(t, source, parts[piece]));
      }
    });
  });
  Stretches out;
  std::size_t count = 0;
  for (const Stretches& part : parts) count += part.segments.size();
  out.segments.reserve(count);
  out.sources.reserve(count);
  for (Stretches& part : parts) {
    Append(out.segments, part.segments);
    Append(out.sources, part.sources);
  }
  return out;
}

template <class AddEdge>
Stretches Collect(const AllTriangles& triangles, const Sharing& sharing, AddEdge add) {
  return Collect(triangles, sharing, add, [](const ZBR_HL_SOURCE&) { return true; });
}

void Keep(Stretches& stretches, const std::vector<char>& marks) {
  KeepMarked(stretches.segments, marks);
  KeepMarked(stretches.sources, marks);
}

// Whether the neighbour across edge i of the triangle has the edge too and accounts for all of it: it draws some, or comes first.
bool IsLeftToNeighbour(const ZBR_HL_SHELL& shell, const ZBR_HL_SOURCE& source) {
  const ZBR_HL_TRI& t = shell.tris[source.triangle];
  const int i = source.edge;
  if (!t.intvl_v[i].empty() || t.adj[i] == -1) return false;
  const int position = PositionOf(shell, t.adj[i]);
  if (position < 0 || position == source.triangle) return false;
  const ZBR_HL_TRI& neighbour = shell.tris[position];
  const int k = t.GetAdjEdge(i, neighbour);
  if (!IsEdgeNumber(k) || !neighbour.dispj[k] || neighbour.adj[k] != t.idx) return false;
  return !neighbour.intvl_v[k].empty() || position < source.triangle;
}

// Replaces each stretch by its parts that no visible line and no earlier stretch covers.
void KeepUncovered(Stretches& hidden, const std::vector<ZBR_SEG>& visible, double width, const Sharing& sharing) {
  Stretches rest;
  for (const Gap& gap : UncoveredParts(visible, hidden.segments, width, sharing)) {
    const ZBR_SEG& g = hidden.segments[gap.segment];
    const ZBR_PT along = g.e() - g.s();
    rest.segments.emplace_back(gap.from == 0.0 ? g.s() : g.s() + along * gap.from, gap.to == 1.0 ? g.e() : g.s() + along * gap.to);
    rest.sources.push_back(hidden.sources[gap.segment]);
  }
  hidden = std::move(rest);
}

// As a person draws: each line once, and no hidden line along a visible one.
Stretches HiddenDrawing(const ZBR_HL_SHELL* shells, const AllTriangles& triangles, double width, const Sharing& sharing) {
  Stretches hidden = Collect(triangles, sharing, AddGaps,
                             [shells](const ZBR_HL_SOURCE& source) { return !IsLeftToNeighbour(shells[source.shell], source); });
  if (hidden.segments.empty()) return hidden;
  KeepUncovered(hidden, Collect(triangles, sharing, AddVisible).segments, width, sharing);
  return hidden;
}

Stretches HiddenStretches(const ZBR_HL_SHELL* shells, unsigned count, int mode, double width, const Sharing& sharing) {
  const AllTriangles triangles(shells, count);
  if (mode >= 3) return HiddenDrawing(shells, triangles, std::max(width, t_tolerance.eps), sharing);
  Stretches hidden = Collect(triangles, sharing, AddGaps);
  if (mode == 2) Keep(hidden, NotIn(Collect(triangles, sharing, AddVisible).segments, hidden.segments));
  Keep(hidden, FirstOfEach(hidden.segments));
  return hidden;
}

}  // namespace
}  // namespace zbr

void ZBR_HiddenLine::GetHiddenLineObj(const ZBR_HL_SHELL* shells, std::vector<ZBR_SEG>& out, int mode, unsigned count) {
  out = zbr::HiddenStretches(shells, count, mode, 0.0, zbr::Sharing()).segments;
}

void ZBR_HiddenLine::GetHiddenLineObj(const ZBR_HL_SHELL* shells, std::vector<ZBR_SEG>& out, int mode, unsigned count,
                                      std::vector<ZBR_HL_SOURCE>& sources, double width, const ZBR_HL_REMOVAL& options) {
  zbr::Stretches hidden = zbr::HiddenStretches(shells, count, mode, width, zbr::Sharing(&options.executor));
  out = std::move(hidden.segments);
  sources = std::move(hidden.sources);
}
