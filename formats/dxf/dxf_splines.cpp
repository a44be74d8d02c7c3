// Splines through points: the velocities at the points solve a system with three diagonals, two more corners for closed ones.
#include "formats/dxf/dxf_splines.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "formats/dxf/dxf_entities.h"

namespace zbr::formats {
namespace {

// Rows: before * x[i - 1] + middle * x[i] + after * x[i + 1] = right. Diagonally dominant, so no exchange of rows is needed.
struct Rows {
  std::vector<double> before, middle, after;
  std::vector<ZBR_PT> right;

  explicit Rows(std::size_t n) : before(n), middle(n, 1.0), after(n), right(n) {}

  std::vector<ZBR_PT> Solve() const {
    std::vector<double> diagonal = middle;
    std::vector<ZBR_PT> x = right;
    for (std::size_t i = 1; i < x.size(); ++i) {
      const double factor = before[i] / diagonal[i - 1];
      diagonal[i] -= factor * after[i - 1];
      x[i] -= x[i - 1] * factor;
    }
    for (std::size_t i = x.size(); i-- > 0;) x[i] = (i + 1 < x.size() ? x[i] - x[i + 1] * after[i] : x[i]) / diagonal[i];
    return x;
  }
};

// Smooth second derivative where the pieces of lengths h and k meet.
void JoinSmoothly(Rows& rows, std::size_t i, double h, double k, const ZBR_PT& before, const ZBR_PT& here, const ZBR_PT& after) {
  rows.before[i] = k;
  rows.middle[i] = 2 * (h + k);
  rows.after[i] = h;
  rows.right[i] = (here - before) * (3 * k / h) + (after - here) * (3 * h / k);
}

std::vector<ZBR_PT> OpenVelocities(const std::vector<ZBR_PT>& p, const std::vector<double>& h, const std::optional<ZBR_PT>& start,
                                   const std::optional<ZBR_PT>& end) {
  const std::size_t n = p.size();
  Rows rows(n);
  for (std::size_t i = 1; i + 1 < n; ++i) JoinSmoothly(rows, i, h[i - 1], h[i], p[i - 1], p[i], p[i + 1]);
  // Parameters are lengths, so that a velocity of 1 is that of even travel.
  rows.right[0] = start.value_or((p[1] - p[0]) * (3 / h[0]));
  if (!start) std::tie(rows.middle[0], rows.after[0]) = std::pair(2.0, 1.0);
  rows.right[n - 1] = end.value_or((p[n - 1] - p[n - 2]) * (3 / h[n - 2]));
  if (!end) std::tie(rows.before[n - 1], rows.middle[n - 1]) = std::pair(1.0, 2.0);
  return rows.Solve();
}

// The closed system is the open one with two corners more: its solution is that of the open one and a multiple of what the corners
// make of a unit load (Sherman and Morrison).
std::vector<ZBR_PT> ClosedVelocities(const std::vector<ZBR_PT>& p, const std::vector<double>& h) {
  const std::size_t n = p.size() - 1;  // the last point is the first one
  Rows rows(n);
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t before = (i + n - 1) % n;
    JoinSmoothly(rows, i, h[before], h[i], p[before], p[i], p[i + 1]);
  }
  const double top = rows.before[0], bottom = rows.after[n - 1], gamma = -rows.middle[0];
  rows.middle[0] -= gamma;
  rows.middle[n - 1] -= top * bottom / gamma;
  std::vector<ZBR_PT> x = rows.Solve();
  rows.right.assign(n, ZBR_PT());
  rows.right[0].Set(gamma, 0);
  rows.right[n - 1].Set(bottom, 0);
  const std::vector<ZBR_PT> z = rows.Solve();
  const double ratio = top / gamma, load = 1 + z[0].x() + ratio * z[n - 1].x();
  const ZBR_PT factor = (x[0] + x[n - 1] * ratio) / load;
  for (std::size_t i = 0; i < n; ++i) x[i] -= factor * z[i].x();
  x.push_back(x[0]);
  return x;
}

std::optional<ZBR_PT> UnitDirection(const DxfRecord& entity, int code) {
  ZBR_PT direction = entity.Point(code).xy();
  const double length = direction.Length();
  if (length == 0) return std::nullopt;
  return direction / length;
}

// Control points, weights and knots in the order of the file.
Spline SplineOf(const DxfRecord& entity) {
  constexpr int kRational = 4;
  Spline spline;
  spline.degree = static_cast<int>(std::clamp(entity.Integer(71), 0LL, 1000LL));
  for (const DxfGroup& group : entity.groups) {
    if (group.code == 40) spline.knots.push_back(entity.Real(group));
    if (group.code == 41) spline.weights.push_back(entity.Real(group));
    if (group.code == 10) spline.control.emplace_back(entity.Real(group), 0);
    if (group.code == 20 && !spline.control.empty()) spline.control.back().Set(spline.control.back().x(), entity.Real(group));
  }
  const auto isOne = [](double weight) { return weight == 1; };
  if ((entity.Integer(70) & kRational) == 0 || std::all_of(spline.weights.begin(), spline.weights.end(), isOne))
    spline.weights.clear();
  return spline;
}

}  // namespace

Spline SplineThrough(std::vector<ZBR_PT> points, const std::optional<ZBR_PT>& startDirection,
                     const std::optional<ZBR_PT>& endDirection, bool isSmoothAllRound) {
  points.erase(std::unique(points.begin(), points.end(), AreIdentical), points.end());
  std::vector<double> lengths;
  for (std::size_t i = 1; i < points.size(); ++i) lengths.push_back(points[i].Distance(points[i - 1]));
  const bool closed =
      isSmoothAllRound && points.size() > 3 && AreIdentical(points.front(), points.back()) && !startDirection && !endDirection;
  const std::vector<ZBR_PT> velocities =
      closed ? ClosedVelocities(points, lengths) : OpenVelocities(points, lengths, startDirection, endDirection);
  Spline spline;
  spline.control = {points[0]};
  spline.knots.assign(4, 0.0);
  double travelled = 0.0;
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    const double h = lengths[i];
    spline.control.push_back(points[i] + velocities[i] * (h / 3));
    spline.control.push_back(points[i + 1] - velocities[i + 1] * (h / 3));
    spline.control.push_back(points[i + 1]);
    travelled += h;
    spline.knots.insert(spline.knots.end(), 3, travelled);
  }
  spline.knots.push_back(travelled);
  return spline;
}

Path SplinePath(const Spline& spline) {
  constexpr double kRounding = 1e-9;  // of the size
  // Parameters from 0 to 1, as lengths along parameters are compared later; the curve stays as it is.
  Spline scaled = spline;
  const double start = spline.Start() / 2, range = spline.End() / 2 - start;  // halves stay finite
  for (double& knot : scaled.knots) knot = (knot / 2 - start) / range;
  Curve curve;
  curve.t0 = scaled.Start();
  curve.t1 = scaled.End();
  curve.spline = std::make_shared<const Spline>(std::move(scaled));
  Extent extent;
  for (const ZBR_PT& p : spline.control) extent.Add(p);
  Path path;
  path.points = {curve.At(curve.t0), curve.At(curve.t1)};
  path.closed = path.points[0].Distance(path.points[1]) <= kRounding * extent.Size();
  if (path.closed) path.points.pop_back();
  path.curves = {curve};
  return path;
}

void DxfEntities::TakeSpline(const DxfRecord& entity) {
  Spline spline = SplineOf(entity);
  if (spline.control.empty()) {
    std::vector<ZBR_PT> points;
    for (const DxfGroup& group : entity.groups) {
      if (group.code == 11) points.emplace_back(entity.Real(group), 0);
      if (group.code == 21 && !points.empty()) points.back().Set(points.back().x(), entity.Real(group));
    }
    if (points.empty()) return Malformed(entity);
    constexpr int kClosed = 1;
    const bool isClosed = (entity.Integer(70) & kClosed) != 0;
    if (isClosed && !AreIdentical(points.front(), points.back())) points.push_back(points.front());
    if (std::all_of(points.begin(), points.end(), [&](const ZBR_PT& p) { return AreIdentical(p, points[0]); }))
      return WithoutSize(entity);
    spline = SplineThrough(std::move(points), UnitDirection(entity, 12), UnitDirection(entity, 13), isClosed);
  }
  if (!spline.IsValid()) return Malformed(entity);
  Path path = SplinePath(spline);
  path.heights.assign(path.points.size(), entity.Real(30, entity.Real(31)));
  Add(std::move(path), entity);
}

}  // namespace zbr::formats
