// Flattening of curves, with the default tolerances.
#include <zbr-drawing/contours.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/contours/spline.h"

namespace zbr::drawing {
namespace {

constexpr double kDefaultDeviation = 1e-4;   // of the extent: invisible in a picture, and a bolt hole gets some thirty edges
constexpr double kDefaultJoin = 1e-6;        // of the extent: above the noise of exported ends, far below any feature
constexpr double kMostChordsPerTurn = 1e5;   // however small a deviation is asked for
constexpr double kLeastChordsPerTurn = 8.0;  // however large
constexpr double kTurn = 6.283185307179586;

// A chord over the parameter range h is off the arc by radius * (1 - cos(h / 2)); for an ellipse the longer half axis bounds it,
// since the ellipse is the image of a circle of that radius under a map that lengthens nothing.
int ChordsFor(const Curve& curve, double deviation) {
  const double radius = std::max(std::hypot(curve.u.x(), curve.u.y()), std::hypot(curve.v.x(), curve.v.y()));
  if (radius == 0) return 1;
  const double cosine = 1.0 - deviation / radius;
  const double step = 2.0 * std::acos(std::clamp(cosine, -1.0, 1.0));
  const double perTurn = std::clamp(kTurn / step, kLeastChordsPerTurn, kMostChordsPerTurn);
  const double turns = std::abs(curve.t1 - curve.t0) / kTurn;
  // A whole circle gets a multiple of four, so that its box is that of the true one. The small allowance keeps a part of a circle
  // from getting a chord more by rounding alone.
  if (std::abs(turns - 1.0) < 1e-12) return 4 * static_cast<int>(std::ceil(perTurn / 4.0));
  return std::max(1, static_cast<int>(std::ceil(perTurn * turns - 1e-9)));
}

template <class Visit>
void VisitChords(const Curve& curve, double deviation, Visit visit) {
  if (curve.spline != nullptr) {
    for (const double t : ChordParameters(*curve.spline, curve.t0, curve.t1, deviation))
      visit(curve.At(t), (t - curve.t0) / (curve.t1 - curve.t0));
    return;
  }
  const int chords = ChordsFor(curve, deviation);
  for (int k = 1; k < chords; ++k) visit(curve.At(curve.t0 + (curve.t1 - curve.t0) * k / chords), static_cast<double>(k) / chords);
}

std::vector<ZBR_PT> FlattenedPoints(const Path& path, double deviation) {
  std::vector<ZBR_PT> points;
  points.reserve(path.points.size());
  FlattenPath(path, deviation, [&](const ZBR_PT& p, std::size_t, double) { points.push_back(p); });
  return points;
}

void CheckFinite(const std::vector<ZBR_PT>& points, const std::string& file, std::size_t line) {
  for (const ZBR_PT& p : points) {
    if (!std::isfinite(p.x()) || !std::isfinite(p.y())) FailAt(file, line, "coordinates are out of range");
  }
}

// A contour that states its first point again at the end closes there.
void CloseExactly(Path& path) {
  if (path.closed || path.points.size() < 2) return;
  const ZBR_PT& first = path.points.front();
  const ZBR_PT& last = path.points.back();
  if (first.x() != last.x() || first.y() != last.y()) return;
  path.points.pop_back();
  path.closed = true;
}

}  // namespace

void FlattenPath(const Path& path, double deviation, const std::function<void(const ZBR_PT&, std::size_t, double)>& visit) {
  auto curve = path.curves.begin();
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    visit(path.points[i], i, 0);
    if (curve == path.curves.end() || curve->at != i) continue;
    VisitChords(*curve, deviation, [&](const ZBR_PT& p, double part) { visit(p, i, part); });
    ++curve;
  }
}

FlattenOptions WithDefaults(FlattenOptions options, const Extent& extent) {
  if (options.deviation < 0) options.deviation = kDefaultDeviation * extent.Size();
  if (options.join < 0) options.join = kDefaultJoin * extent.Size();
  return options;
}

Contours MakeContours(Drawing drawing, const FlattenOptions& options) {
  for (Path& path : drawing.paths) CloseExactly(path);
  if (drawing.joinsEnds) drawing.paths = JoinPaths(std::move(drawing.paths), options.join);
  Contours contours;
  contours.file = drawing.file;
  for (Path& path : drawing.paths) {
    for (const Curve& curve : path.curves) CheckFinite({curve.centre, curve.u, curve.v}, drawing.file, path.line);
    std::vector<ZBR_PT> points = path.curves.empty() ? std::move(path.points) : FlattenedPoints(path, options.deviation);
    CheckFinite(points, drawing.file, path.line);
    if (path.closed) {
      contours.rings.push_back({std::move(points), path.line, path.polygon});
    } else if (!points.empty()) {
      contours.open.push_back({points.front(), points.back(), path.line});
    }
  }
  return contours;
}

}  // namespace zbr::drawing
