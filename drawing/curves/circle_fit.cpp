// Idea: a first circle through three points, then Gauss-Newton steps on the distances of all points in the plane of the arc.
// Difficulty: of a short arc the centre and the radius are nearly undetermined, though the arc itself is not. In coordinates whose
// x axis points to the middle of the arc, the unknowns are the centre and the place of that middle, which keeps them apart.
#include "drawing/curves/circle_fit.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zbr::drawing {
namespace {

constexpr int kFitSteps = 4;

ZBR_PT3 Unit(const ZBR_PT3& v) {
  const double length = v.Length();
  return length > 0 ? v * (1.0 / length) : ZBR_PT3();
}

// Twice the area that the points enclose, as a vector at right angles to their plane.
ZBR_PT3 AreaVector(std::span<const ZBR_PT3> points) {
  ZBR_PT3 sum;
  for (std::size_t i = 2; i < points.size(); ++i) sum += (points[i - 1] - points[0]).OuterProduct(points[i] - points[0]);
  return sum;
}

struct Frame2 {
  ZBR_PT3 origin, x, y;

  ZBR_PT In(const ZBR_PT3& p) const { return ZBR_PT((p - origin).InnerProduct(x), (p - origin).InnerProduct(y)); }
};

// Solves the normal equations for a step, columns brought to one length first. False when they are singular.
bool Solve3(double m[3][3], double right[3], double step[3]) {
  constexpr double kSingular = 1e-14;
  double scale[3];
  for (int i = 0; i < 3; ++i) {
    if (!(m[i][i] > 0)) return false;
    scale[i] = 1.0 / std::sqrt(m[i][i]);
  }
  for (int i = 0; i < 3; ++i) {
    right[i] *= scale[i];
    for (int j = 0; j < 3; ++j) m[i][j] *= scale[i] * scale[j];
  }
  for (int i = 0; i < 3; ++i) {  // positive definite: no pivots to choose
    if (m[i][i] < kSingular) return false;
    for (int k = i + 1; k < 3; ++k) {
      const double f = m[k][i] / m[i][i];
      for (int j = i; j < 3; ++j) m[k][j] -= f * m[i][j];
      right[k] -= f * right[i];
    }
  }
  for (int i = 2; i >= 0; --i) {
    double value = right[i];
    for (int j = i + 1; j < 3; ++j) value -= m[i][j] * step[j];
    step[i] = value / m[i][i];
  }
  for (int i = 0; i < 3; ++i) step[i] *= scale[i];
  return true;
}

// One Gauss-Newton step on centre and reach, the x at which the circle crosses its axis on the arc's side. False when it fails.
bool Improve(const std::vector<ZBR_PT>& points, ZBR_PT& centre, double& reach) {
  double m[3][3] = {}, right[3] = {}, step[3] = {};
  const double radius = reach - centre.x();
  for (const ZBR_PT& p : points) {
    const ZBR_PT d = p - centre;
    const double distance = d.Length();
    if (!(distance > 0)) return false;
    const double row[3] = {1.0 - d.x() / distance, -d.y() / distance, -1.0};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) m[i][j] += row[i] * row[j];
      right[i] -= row[i] * (distance - radius);
    }
  }
  if (!Solve3(m, right, step)) return false;
  centre += ZBR_PT(step[0], step[1]);
  reach += step[2];
  return reach > centre.x();
}

}  // namespace

Circle CircleThrough(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) {
  const ZBR_PT3 u = b - a, v = c - a;
  const ZBR_PT3 normal = u.OuterProduct(v);
  const double n2 = normal.Length2();
  if (!(n2 > 0)) return {};
  const ZBR_PT3 toCentre = (normal.OuterProduct(u) * v.Length2() + v.OuterProduct(normal) * u.Length2()) * (0.5 / n2);
  const double radius = toCentre.Length();
  if (!std::isfinite(radius)) return {};
  return {a + toCentre, Unit(normal), radius};
}

// In an arc of more than some 300 degrees the ends are too close to each other.
Circle RoughCircle(std::span<const ZBR_PT3> arc) {
  const std::size_t last = arc.size() - 1;
  if (arc[0].Distance(arc[last]) > 0.5 * arc[0].Distance(arc[last / 2])) return CircleThrough(arc[0], arc[last / 2], arc[last]);
  return CircleThrough(arc[0], arc[last / 3], arc[2 * last / 3]);
}

Circle FitCircle(std::span<const ZBR_PT3> arc) {
  const Circle rough = RoughCircle(arc);
  if (!(rough.radius > 0)) return rough;
  ZBR_PT3 axis = Unit(AreaVector(arc));
  if (axis.Length2() == 0) axis = rough.axis;
  Frame2 frame;
  for (const ZBR_PT3& p : arc) frame.origin += p * (1.0 / static_cast<double>(arc.size()));
  const ZBR_PT3 out = arc[arc.size() / 2] - rough.centre;
  frame.x = Unit(out - axis * out.InnerProduct(axis));
  frame.y = axis.OuterProduct(frame.x);
  std::vector<ZBR_PT> points;
  points.reserve(arc.size());
  for (const ZBR_PT3& p : arc) points.push_back(frame.In(p));
  ZBR_PT centre = frame.In(rough.centre);
  double reach = centre.x() + rough.radius;
  for (int i = 0; i < kFitSteps; ++i) {
    if (!Improve(points, centre, reach)) return rough;
  }
  return {frame.origin + frame.x * centre.x() + frame.y * centre.y(), axis, reach - centre.x()};
}

double DistanceTo(const Circle& circle, const ZBR_PT3& p) {
  const ZBR_PT3 d = p - circle.centre;
  const double along = d.InnerProduct(circle.axis);
  const double across = (d - circle.axis * along).Length();
  return std::max(std::fabs(along), std::fabs(across - circle.radius));
}

ChordLengths ChordLengthsOf(std::span<const ZBR_PT3> arc) {
  ChordLengths lengths{HUGE_VAL, 0.0};
  for (std::size_t i = 1; i < arc.size(); ++i) {
    const double chord = arc[i].Distance(arc[i - 1]);
    lengths.shortest = std::min(lengths.shortest, chord);
    lengths.longest = std::max(lengths.longest, chord);
  }
  return lengths;
}

double HeightOf(std::span<const ZBR_PT3> arc) {
  const ZBR_PT3 along = Unit(arc.back() - arc.front());
  double height2 = 0.0;
  for (const ZBR_PT3& p : arc) {
    const ZBR_PT3 d = p - arc.front();
    height2 = std::max(height2, (d - along * d.InnerProduct(along)).Length2());
  }
  return std::sqrt(height2);
}

}  // namespace zbr::drawing
