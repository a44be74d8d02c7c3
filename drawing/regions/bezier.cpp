// De Casteljau's scheme in homogeneous coordinates: its last but one round gives the derivative, its edges give both halves.
#include "drawing/regions/bezier.h"

#include <algorithm>
#include <utility>

#include "drawing/regions/gauss.h"

namespace zbr::drawing {
namespace {

struct Weighted {
  double x = 0.0, y = 0.0, w = 1.0;

  ZBR_PT Point() const { return {x / w, y / w}; }
};

std::vector<Weighted> Lifted(const Bezier& curve) {
  std::vector<Weighted> points;
  for (std::size_t i = 0; i < curve.control.size(); ++i) {
    const double w = curve.weights.empty() ? 1.0 : curve.weights[i];
    points.push_back({curve.control[i].x() * w, curve.control[i].y() * w, w});
  }
  return points;
}

Weighted Between(const Weighted& a, const Weighted& b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.w + (b.w - a.w) * t};
}

}  // namespace

Motion Bezier::At(double t) const {
  std::vector<Weighted> points = Lifted(*this);
  const auto degree = static_cast<double>(points.size() - 1);
  for (std::size_t count = points.size() - 1; count > 1; --count) {
    for (std::size_t i = 0; i < count; ++i) points[i] = Between(points[i], points[i + 1], t);
  }
  const Weighted p = Between(points[0], points[1], t);
  const Weighted d = {(points[1].x - points[0].x) * degree, (points[1].y - points[0].y) * degree,
                      (points[1].w - points[0].w) * degree};
  const ZBR_PT at = p.Point();
  return {at, {(d.x - at.x() * d.w) / p.w, (d.y - at.y() * d.w) / p.w}};
}

std::pair<Bezier, Bezier> Bezier::Halves() const {
  std::vector<Weighted> points = Lifted(*this), last;
  Bezier first, second;
  const auto add = [&](Bezier& half, const Weighted& p) {
    half.control.push_back(p.Point());
    if (!weights.empty()) half.weights.push_back(p.w);
  };
  for (std::size_t count = points.size(); count > 0; --count) {
    add(first, points[0]);
    last.push_back(points[count - 1]);
    for (std::size_t i = 0; i + 1 < count; ++i) points[i] = Between(points[i], points[i + 1], 0.5);
  }
  std::reverse(last.begin(), last.end());
  for (const Weighted& p : last) add(second, p);
  return {std::move(first), std::move(second)};
}

std::vector<Bezier> PiecesOf(const Curve& curve) {
  std::vector<Bezier> pieces;
  if (curve.t0 == curve.t1) return pieces;
  const Spline stretch = Trimmed(*curve.spline, curve.t0, curve.t1);
  const auto degree = static_cast<std::size_t>(stretch.degree);
  for (std::size_t first = 0; first + degree < stretch.control.size(); first += degree) {
    Bezier& piece = pieces.emplace_back();
    const auto from = static_cast<std::ptrdiff_t>(first), to = static_cast<std::ptrdiff_t>(first + degree + 1);
    piece.control.assign(stretch.control.begin() + from, stretch.control.begin() + to);
    if (!stretch.weights.empty()) piece.weights.assign(stretch.weights.begin() + from, stretch.weights.begin() + to);
  }
  return pieces;
}

double SplineArea(const Curve& curve) {
  const ZBR_PT from = curve.At(curve.t0);
  double area = 0.0;
  for (const Bezier& piece : PiecesOf(curve)) {
    area += Integral(0.0, 1.0, [&](double t) {
      const Motion motion = piece.At(t);
      return (motion.at - from).OuterProduct(motion.along) / 2;
    });
  }
  return area;
}

}  // namespace zbr::drawing
