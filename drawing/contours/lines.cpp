// From the contours of a drawing to lines.
#include <zbr-drawing/lines.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <cmath>

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
std::vector<SpaceLine> MakeLines(const Drawing& drawing, const FlattenOptions& options) {
  std::vector<SpaceLine> lines;
  for (const Path& path : drawing.paths) {
    SpaceLine line{{}, path.layer};
    FlattenPath(path, options.deviation, [&](const ZBR_PT& p, std::size_t i, double part) {
      const double z = HeightOf(path, i), next = HeightOf(path, i + 1 < path.points.size() ? i + 1 : 0);
      line.points.emplace_back(p.x(), p.y(), part == 0 ? z : z + (next - z) * part);
    });
    if (path.closed && !line.points.empty() && !SamePoint(line.points.front(), line.points.back()))
      line.points.push_back(line.points.front());
    if (!std::all_of(line.points.begin(), line.points.end(), IsInRange))
      FailAt(drawing.file, path.line, "coordinates are out of range");
    if (line.points.size() > 1) lines.push_back(std::move(line));
  }
  return lines;
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
