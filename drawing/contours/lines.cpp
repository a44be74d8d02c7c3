// From the contours of a drawing to lines.
#include <zbr-drawing/lines.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/contours/chords.h"

namespace zbr::drawing {
namespace {

bool SamePoint(const ZBR_PT3& p, const ZBR_PT3& q) {
  return p.x() == q.x() && p.y() == q.y() && p.z() == q.z();
}

double HeightOf(const Path& path, std::size_t i) {
  return path.heights.empty() ? 0.0 : path.heights[i];
}

// Differences have to stay finite.
bool IsInRange(const ZBR_PT3& p) {
  constexpr double kLargest = 1e300;
  return std::abs(p.x()) <= kLargest && std::abs(p.y()) <= kLargest && std::abs(p.z()) <= kLargest;
}

// How far along its edge of the path the start of chord k lies; the edge's chords are those from `first` on.
double PartOf(const ChordLine& chords, std::size_t k, std::size_t first) {
  const auto after = std::upper_bound(chords.edges.begin() + static_cast<std::ptrdiff_t>(k), chords.edges.end(), chords.edges[k]);
  const auto end = static_cast<std::size_t>(after - chords.edges.begin());
  const EdgeOrigin &start = chords.origins[first], &last = chords.origins[end - 1];
  if (start.curve >= 0 && last.t1 != start.t0) return (chords.origins[k].t0 - start.t0) / (last.t1 - start.t0);
  const ZBR_PT &from = chords.points[first], &to = chords.points[end < chords.points.size() ? end : 0];
  const double length = from.Distance(to);
  return length > 0 ? from.Distance(chords.points[k]) / length : 0.0;
}

SpaceLine LineOf(const Path& path, ChordLine& chords) {
  SpaceLine line{{}, path.layer, {}, {}, path.lineType, path.colour};
  const bool hasEdges = !chords.edges.empty();
  std::size_t first = 0;  // chord of the edge
  for (std::size_t k = 0; k < chords.points.size(); ++k) {
    const ZBR_PT& p = chords.points[k];
    const bool isStart = !hasEdges || k >= chords.edges.size() || k == 0 || chords.edges[k] != chords.edges[k - 1];
    const std::size_t i = !hasEdges ? k : (k < chords.edges.size() ? chords.edges[k] : path.points.size() - 1);
    const double z = HeightOf(path, i);
    if (isStart) first = k;
    if (path.heights.empty() || isStart) {
      line.points.emplace_back(p.x(), p.y(), z);
      continue;
    }
    const double next = HeightOf(path, i + 1 < path.points.size() ? i + 1 : 0), part = PartOf(chords, k, first);
    line.points.emplace_back(p.x(), p.y(), z + (next - z) * part);
  }
  line.origins = std::move(chords.origins);
  if (path.closed && !line.points.empty() && (line.points.size() == 1 || !SamePoint(line.points.front(), line.points.back())))
    line.points.push_back(line.points.front());
  return line;
}

}  // namespace

bool SpaceLine::IsClosed() const {
  return points.size() > 2 && SamePoint(points.front(), points.back());
}

double SpaceLine::Length() const {
  double length = 0.0;
  for (std::size_t i = 1; i < points.size(); ++i) length += points[i].Distance(points[i - 1]);
  return length;
}

double LineLayer::Length() const {
  double length = 0.0;
  for (const SpaceLine& line : lines) length += line.Length();
  return length;
}

// Along a curve the height changes evenly from one end to the other; mostly it does not change at all.
std::vector<SpaceLine> MakeLines(const Drawing& drawing, Drawing region, const FlattenOptions& options, Contours& contours) {
  for (const Path& path : drawing.paths) {
    const auto isFar = [](const ZBR_PT& p) { return !IsInRange({p.x(), p.y(), 0}); };
    bool isOut = std::any_of(path.points.begin(), path.points.end(), isFar);
    for (const Curve& curve : path.curves) isOut = isOut || isFar(curve.At(curve.t0)) || isFar(curve.u) || isFar(curve.v);
    const auto isHigh = [](double z) { return !IsInRange({0, 0, z}); };
    if (isOut || std::any_of(path.heights.begin(), path.heights.end(), isHigh))
      FailAt(drawing.file, path.line, "coordinates are out of range");
  }
  std::vector<ChordLine> chords;
  std::vector<Drawing> regions;
  regions.push_back(std::move(region));
  contours = std::move(MakeContoursAnd(drawing.paths, chords, std::move(regions), options).front());
  std::vector<SpaceLine> lines;
  for (std::size_t i = 0; i < chords.size(); ++i) {
    SpaceLine line = LineOf(drawing.paths[i], chords[i]);
    if (line.points.size() > 1) lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<SpaceLine> MakeLines(const Drawing& drawing, const FlattenOptions& options) {
  Contours none;
  return MakeLines(drawing, {}, options, none);
}

bool HasHeights(const Drawing& drawing) {
  return std::any_of(drawing.paths.begin(), drawing.paths.end(), [](const Path& path) { return !path.heights.empty(); });
}

Extent ExtentOf(const std::vector<SpaceLine>& lines) {
  Extent extent;
  for (const SpaceLine& line : lines) {
    for (const ZBR_PT3& p : line.points) extent.Add(p.xy());
  }
  return extent;
}

}  // namespace zbr::drawing
