// Chaining of segments: ends are looked up among all vertices one by one.
#include <algorithm>

#include "literal/hidden_line.h"

namespace literal {

namespace {

using Records = std::vector<ZBR_HL_OPT_PT>;
using Line = std::vector<ZBR_PT>;

std::size_t At(int i) {
  return static_cast<std::size_t>(i);
}

struct Vertex {
  ZBR_PT pt;
  std::vector<int> ends;
};

// Of the vertices within reach the leftmost counts, of equally far left ones the oldest.
int FindVertex(const std::vector<Vertex>& vertices, const ZBR_PT& p, const Tol& tol) {
  int found = -1;
  for (std::size_t v = 0; v < vertices.size(); ++v) {
    const ZBR_PT& q = vertices[v].pt;
    if (!(q.x() >= p.x() - tol.eps) || q.x() > p.x() + tol.eps || !Same(q, p, tol)) continue;
    if (found < 0 || q.x() < vertices[At(found)].pt.x()) found = static_cast<int>(v);
  }
  return found;
}

std::vector<Vertex> BuildVertices(Records& pts, const Tol& tol) {
  std::vector<Vertex> vertices;
  for (std::size_t i = 0; i < pts.size(); ++i) {
    if (Same(pts[i].pt, pts[i ^ 1U].pt, tol)) pts[i].state = OPT_ZERO;
  }
  for (std::size_t i = 0; i < pts.size(); ++i) {
    pts[i].index = static_cast<int>(i);
    if (pts[i].state == OPT_ZERO) continue;
    pts[i].vertex = FindVertex(vertices, pts[i].pt, tol);
    if (pts[i].vertex < 0) {
      pts[i].vertex = static_cast<int>(vertices.size());
      vertices.push_back({pts[i].pt, {}});
    }
    vertices[At(pts[i].vertex)].ends.push_back(static_cast<int>(i));
  }
  return vertices;
}

// Of segments that join the same two vertices the first stays; one whose ends share a vertex goes.
void DropRepeats(Records& pts, std::vector<Vertex>& vertices) {
  const auto drop = [&](int end) {
    for (const int e : {end, end ^ 1}) {
      pts[At(e)].state = OPT_ZERO;
      std::vector<int>& ends = vertices[At(pts[At(e)].vertex)].ends;
      ends.erase(std::remove(ends.begin(), ends.end(), e), ends.end());
    }
  };
  for (std::size_t v = 0; v < vertices.size(); ++v) {
    const std::vector<int> ends = vertices[v].ends;
    for (std::size_t a = 0; a < ends.size(); ++a) {
      const int i = ends[a];
      const int other = pts[At(i ^ 1)].vertex;
      for (std::size_t b = a + 1; b < ends.size(); ++b) {
        const bool live = pts[At(i)].state != OPT_ZERO && pts[At(ends[b])].state != OPT_ZERO;
        if (live && pts[At(ends[b] ^ 1)].vertex == other) drop(ends[b]);
      }
    }
  }
}

void JoinEnds(Records& pts, const std::vector<Vertex>& vertices) {
  for (const Vertex& vertex : vertices) {
    for (std::size_t a = 0; a < vertex.ends.size(); a += 2) {
      ZBR_HL_OPT_PT& first = pts[At(vertex.ends[a])];
      if (a + 1 == vertex.ends.size()) {
        first.state = OPT_END;
        continue;
      }
      ZBR_HL_OPT_PT& second = pts[At(vertex.ends[a + 1])];
      first.link = second.index;
      second.link = first.index;
      first.state = second.state = OPT_JOINED;
    }
  }
}

Line TraceOpen(Records& pts, int start) {
  Line line = {pts[At(start)].pt};
  pts[At(start)].state = OPT_FIRST;
  for (int q = start ^ 1;; q = pts[At(q)].link ^ 1) {
    ZBR_HL_OPT_PT& end = pts[At(q)];
    line.push_back(end.pt);
    if (end.link == -1) {
      end.state = end.state == OPT_END ? OPT_FIRST : OPT_LAST;
      return line;
    }
    end.state = OPT_PASSED;
    pts[At(end.link)].state = OPT_PASSED;
  }
}

Line TraceClosed(Records& pts, int start) {
  Line line = {pts[At(start)].pt};
  pts[At(start)].state = OPT_PASSED;
  for (int q = start ^ 1;; q = pts[At(q)].link ^ 1) {
    line.push_back(pts[At(q)].pt);
    pts[At(q)].state = OPT_PASSED;
    if (pts[At(q)].link == start) return line;
    pts[At(pts[At(q)].link)].state = OPT_PASSED;
  }
}

bool IsStraight(const ZBR_PT& prev, const ZBR_PT& cur, const ZBR_PT& next, const Tol& tol) {
  const ZBR_PT a = prev - cur;
  const ZBR_PT b = next - cur;
  return SideOfLine(prev, cur, next, tol) == 0 && Within(b.x() * a.y() - b.y() * a.x(), tol.eps) &&
         a.x() * b.x() + a.y() * b.y() < 0.0;
}

// All but the last point, without those lying straight between the last point kept and their next one.
Line Straighten(const Line& line, const Tol& tol) {
  Line kept = {line[0]};
  for (std::size_t i = 1; i + 1 < line.size(); ++i) {
    if (!IsStraight(kept.back(), line[i], line[i + 1], tol)) kept.push_back(line[i]);
  }
  return kept;
}

Line StraightenOpen(const Line& line, const Tol& tol) {
  Line kept = Straighten(line, tol);
  kept.push_back(line.back());
  return kept;
}

Line StraightenClosed(const Line& line, const Tol& tol) {
  Line kept = Straighten(line, tol);
  if (kept.size() > 3 && IsStraight(kept.back(), kept[0], kept[1], tol)) kept.erase(kept.begin());
  kept.push_back(kept[0]);
  return kept;
}

}  // namespace

int Chain(Records& pts, std::vector<Line>& out, const Tol& tol) {
  out.clear();
  for (ZBR_HL_OPT_PT& p : pts) {
    p.vertex = p.link = -1;
    p.state = OPT_NEW;
  }
  std::vector<Vertex> vertices = BuildVertices(pts, tol);
  DropRepeats(pts, vertices);
  JoinEnds(pts, vertices);
  for (std::size_t i = 0; i < pts.size(); ++i) {
    if (pts[i].state == OPT_END) out.push_back(StraightenOpen(TraceOpen(pts, static_cast<int>(i)), tol));
  }
  const int open = static_cast<int>(out.size());
  for (std::size_t i = 0; i < pts.size(); ++i) {
    if (pts[i].state == OPT_JOINED) out.push_back(StraightenClosed(TraceClosed(pts, static_cast<int>(i)), tol));
  }
  return open;
}

Records SeenEnds(const std::vector<Shell>& shells) {
  Records pts;
  for (const Shell& shell : shells) {
    for (const Triangle& t : shell.tris) {
      for (const Stretches& list : t.seen) {
        for (const Stretch& s : list) {
          pts.emplace_back().pt = s.ps.xy();
          pts.emplace_back().pt = s.pe.xy();
        }
      }
    }
  }
  return pts;
}

}  // namespace literal
