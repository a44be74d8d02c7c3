// Idea: each edge has a border on its left, from an offset point at its start to one at its end, and the right side is the left one
// of the polyline walked backwards. Where two edges meet, their borders are led on along their tangents to where these cross (the
// mitre); where that is far off, or they are parallel, they are joined by a straight edge.
#include "formats/dxf/dxf_wide.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "formats/dxf/dxf_curves.h"

namespace zbr::formats {
namespace {

struct Edge {
  ZBR_PT from, to;    // of the border
  ZBR_PT start, end;  // directions of travel there, of length 1
  double bulge = 0.0;
  double width = 0.0;
};

ZBR_PT Left(const ZBR_PT& direction) {
  return {-direction.y(), direction.x()};
}

// Turned by twice the arc tangent of the bulge, forwards or backwards.
ZBR_PT Turned(const ZBR_PT& direction, double bulge) {
  const double b2 = bulge * bulge, cosine = (1 - b2) / (1 + b2), sine = 2 * bulge / (1 + b2);
  return direction * cosine + Left(direction) * sine;
}

Edge BorderOf(const WideVertex& vertex, const ZBR_PT& next) {
  const ZBR_PT chord = next - vertex.at, along = chord / chord.Length();
  Edge edge;
  edge.bulge = IsArc(vertex.bulge) ? vertex.bulge : 0.0;
  edge.start = Turned(along, -edge.bulge);
  edge.end = Turned(along, edge.bulge);
  edge.from = vertex.at + Left(edge.start) * (vertex.startWidth / 2);
  edge.to = next + Left(edge.end) * (vertex.endWidth / 2);
  edge.width = std::max(vertex.startWidth, vertex.endWidth);
  return edge;
}

std::vector<Edge> LeftBorder(const std::vector<WideVertex>& vertices, bool closed) {
  std::vector<Edge> edges;
  for (std::size_t i = 0; i + (closed ? 0 : 1) < vertices.size(); ++i) {
    const ZBR_PT& next = vertices[(i + 1) % vertices.size()].at;
    if (!AreIdentical(next, vertices[i].at)) edges.push_back(BorderOf(vertices[i], next));
  }
  return edges;
}

// Where the tangents cross, if that is near.
std::optional<ZBR_PT> Mitre(const Edge& a, const Edge& b) {
  constexpr double kLongest = 4.0;  // times the width
  constexpr double kParallel = 1e-9;
  const double cross = a.end.OuterProduct(b.start);
  if (std::abs(cross) <= kParallel) return std::nullopt;
  const double reach = (b.from - a.to).OuterProduct(b.start) / cross;
  if (std::abs(reach) > kLongest * std::max(a.width, b.width)) return std::nullopt;
  return a.to + a.end * reach;
}

// Where borders meet but for rounding there is one point.
void AddPoint(Path& path, const ZBR_PT& p, double width) {
  constexpr double kRounding = 1e-9;
  if (path.points.empty() || p.Distance(path.points.back()) > kRounding * width) path.points.push_back(p);
}

// Appends the border; straight edges end in the mitre, arcs where they do, with the mitre behind them.
void Append(Path& path, const std::vector<Edge>& edges, bool closed) {
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Edge& edge = edges[i];
    const bool isFirst = !closed && i == 0, isLast = !closed && i + 1 == edges.size();
    const std::optional<ZBR_PT> mitre = isFirst ? std::nullopt : Mitre(edges[(i + edges.size() - 1) % edges.size()], edge);
    if (mitre) AddPoint(path, *mitre, edge.width);
    if (!mitre || edge.bulge != 0) AddPoint(path, edge.from, edge.width);
    if (edge.bulge != 0) {
      path.curves.push_back(BulgeArc(path.points.back(), edge.to, edge.bulge));
      path.curves.back().at = path.points.size() - 1;
    }
    const bool isMitredNext = !isLast && Mitre(edge, edges[(i + 1) % edges.size()]).has_value();
    if (edge.bulge != 0 || !isMitredNext) AddPoint(path, edge.to, edge.width);
  }
}

std::vector<WideVertex> Backwards(const std::vector<WideVertex>& vertices, bool closed) {
  std::vector<WideVertex> turned;
  const std::size_t n = vertices.size();
  for (std::size_t k = 0; k < n; ++k) {
    const WideVertex& edge = vertices[(2 * n - 2 - k) % n];  // from the vertex before to this one
    turned.push_back({vertices[n - 1 - k].at, -edge.bulge, edge.endWidth, edge.startWidth});
  }
  if (!closed) turned.back().bulge = 0;
  return turned;
}

}  // namespace

std::vector<Path> BordersOf(const std::vector<WideVertex>& vertices, bool closed) {
  const std::vector<Edge> left = LeftBorder(vertices, closed), right = LeftBorder(Backwards(vertices, closed), closed);
  std::vector<Path> borders(closed ? 2 : 1);
  Append(borders.front(), left, closed);
  Append(borders.back(), right, closed);
  for (Path& border : borders) border.closed = true;
  return borders;
}

}  // namespace zbr::formats
