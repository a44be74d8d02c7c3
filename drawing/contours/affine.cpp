#include <zbr-drawing/affine.h>
#include <zbr-drawing/trigonometry.h>

#include <cmath>
#include <memory>

namespace zbr::drawing {

ZBR_PT Direction(double degrees) {
  const double turn = std::fmod(degrees, 360.0);
  const double quarters = turn / 90.0;
  if (quarters != std::floor(quarters)) return {Cos(turn * kPi / 180.0), Sin(turn * kPi / 180.0)};
  constexpr double kCosine[] = {1.0, 0.0, -1.0, 0.0};
  const int quarter = (static_cast<int>(quarters) + 4) % 4;
  return {kCosine[quarter], kCosine[(quarter + 3) % 4]};
}

Affine Affine::Turn(double degrees) {
  const ZBR_PT axis = Direction(degrees);
  return {axis.x(), -axis.y(), 0.0, axis.y(), axis.x(), 0.0};
}

Affine Affine::After(const Affine& first) const {
  const ZBR_PT x = OfVector({first.xx, first.yx}), y = OfVector({first.xy, first.yy}), d = OfPoint({first.dx, first.dy});
  return {x.x(), y.x(), d.x(), x.y(), y.y(), d.y()};
}

void Map(Curve& curve, const Affine& map) {
  if (curve.spline != nullptr) {
    auto spline = std::make_shared<Spline>(*curve.spline);
    for (ZBR_PT& p : spline->control) p = map.OfPoint(p);
    curve.spline = std::move(spline);
    return;
  }
  curve.centre = map.OfPoint(curve.centre);
  curve.u = map.OfVector(curve.u);
  curve.v = map.OfVector(curve.v);
}

void Map(Path& path, const Affine& map) {
  for (ZBR_PT& p : path.points) p = map.OfPoint(p);
  for (Curve& curve : path.curves) Map(curve, map);
}

}  // namespace zbr::drawing
