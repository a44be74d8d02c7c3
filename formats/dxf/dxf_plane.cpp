#include <zbr-drawing/trigonometry.h>

#include <cmath>

#include "formats/dxf/dxf_entities.h"

namespace zbr::formats {
namespace {

constexpr double kUpright = 1e-9;  // slopes below that are rounding
constexpr int kNormal = 210;

}  // namespace

// "Arbitrary axis algorithm": x at right angles to the normal and to the drawing's y, or to its z where the normal is not near it.
DxfPlane::DxfPlane(const DxfRecord& entity) : x_(1, 0, 0), y_(0, 1, 0), normal_(0, 0, 1) {
  constexpr double kNear = 1.0 / 64;
  if (!entity.Has(kNormal)) return;
  const ZBR_PT3 given = entity.Point(kNormal, {0, 0, 0});
  const double length = Hypot(given.x(), given.y(), given.z());
  if (length == 0 || Hypot(given.x(), given.y()) <= kUpright * std::abs(given.z())) {
    if (given.z() >= 0) return;
    x_ = {-1, 0, 0};
    normal_ = {0, 0, -1};
    return;
  }
  normal_ = given / length;
  const bool isNear = std::abs(normal_.x()) < kNear && std::abs(normal_.y()) < kNear;
  x_ = (isNear ? ZBR_PT3(0, 1, 0) : ZBR_PT3(0, 0, 1)).OuterProduct(normal_);
  x_ = x_ / x_.Length();
  y_ = normal_.OuterProduct(x_);
}

bool DxfPlane::IsEdgeOn() const {
  return std::abs(normal_.z()) <= kUpright;
}

Affine DxfPlane::At(double elevation) const {
  return {x_.x(), y_.x(), normal_.x() * elevation, x_.y(), y_.y(), normal_.y() * elevation};
}

double DxfPlane::HeightOf(const ZBR_PT& p, double elevation) const {
  return x_.z() * p.x() + y_.z() * p.y() + normal_.z() * elevation;
}

}  // namespace zbr::formats
