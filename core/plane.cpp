// Oriented planes in normalised implicit form.
#include <zbr/spatial.h>

#include "core/constants.h"
#include "core/tolerance_state.h"

bool ZBR_Plane::Set(const ZBR_PT3& n, double d) {
  n_ = n;
  d_ = d;
  return Normalize();
}

bool ZBR_Plane::Set(double a, double b, double c, double d) {
  return Set(ZBR_PT3(a, b, c), d);
}

bool ZBR_Plane::Set(const ZBR_PT3& p0, const ZBR_PT3& p1, const ZBR_PT3& p2) {
  const ZBR_PT3 n = (p1 - p0).OuterProduct(p2 - p0);
  return Set(n, -p0.InnerProduct(n));
}

bool ZBR_Plane::IsValid() const {
  return !n_.IsZero();
}

ZBR_Plane::pos_type ZBR_Plane::pos(const ZBR_PT3& p) const {
  const double s = distance(p);
  const double eps = zbr::t_tolerance.eps;
  if (s > eps) return POS_FRONT;
  return s < -eps ? POS_BACK : POS_ON;
}

bool ZBR_Plane::GetIntersection(const ZBR_PT3& a, const ZBR_PT3& b, ZBR_PT3* p, double* t) const {
  const ZBR_PT3 direction = b - a;
  const double slope = n_.InnerProduct(direction);
  if (std::fabs(slope) < zbr::kMinPlaneSlope) return false;
  const double at = -(n_.InnerProduct(a) + d_) / slope;
  *p = a + direction * at;
  if (t != nullptr) *t = at;
  return true;
}

ZBR_PT3 ZBR_Plane::GetNearest(const ZBR_PT3& p) const {
  return p - n_ * distance(p);
}

ZBR_Plane& ZBR_Plane::operator+=(const ZBR_PT3& v) {
  d_ = d_ - n_.InnerProduct(v);
  Normalize();
  return *this;
}

bool ZBR_Plane::Normalize() {
  const double length2 = n_.Length2();
  if (length2 < zbr::t_tolerance.eps4) {
    n_ = ZBR_PT3();
    return false;
  }
  const double length = std::sqrt(length2);
  d_ = d_ / length;
  n_ = length < zbr::kMinNormalizeLength ? ZBR_PT3() : n_ / length;
  return true;
}
