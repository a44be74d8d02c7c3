// Spatial points: tolerant equality, normalisation, sides, angles and containment in projection.
#include <zbr/spatial.h>

#include "core/constants.h"
#include "core/spatial_inline.h"

namespace {

// Turns a cosine into its pseudo cosine on the half-turn that `beyond` tells.
double Unfold(double cosine, bool beyond) {
  return beyond ? -cosine - 2.0 : cosine;
}

// Cosine from a dot product and two lengths, 0 when their product is below eps2.
double GuardedCos(double dot, double lengths) {
  return zbr::t_tolerance.eps2 > lengths ? 0.0 : dot / lengths;
}

}  // namespace

ZBR_PT3& ZBR_PT3::operator/=(double d) {
  return *this = d < zbr::kMinNormalizeLength ? ZBR_PT3() : *this / d;
}

bool ZBR_PT3::operator==(const ZBR_PT3& p) const {
  return zbr::SamePoint(*this, p, zbr::t_tolerance.eps2);
}

bool ZBR_PT3::operator!=(const ZBR_PT3& p) const {
  return !(*this == p);
}

bool ZBR_PT3::IsZero() const {
  return x() == 0.0 && y() == 0.0 && z_ == 0.0;
}

bool ZBR_PT3::IsZero2() const {
  return zbr::WithinTol(Length2(), zbr::t_tolerance.eps2);
}

bool ZBR_PT3::IsZero4() const {
  return Length2() < zbr::t_tolerance.eps4;
}

ZBR_PT3& ZBR_PT3::Normalize() {
  return *this = Unit();
}

ZBR_PT3 ZBR_PT3::Unit() const {
  const double length = Length();
  return length < zbr::kMinNormalizeLength ? ZBR_PT3() : *this / length;
}

int ZBR_PT3::CheckPos(const ZBR_PT3& a, const ZBR_PT3& b) const {
  const double eps2 = zbr::t_tolerance.eps2;
  return zbr::SamePoint(a, b, eps2) ? -2 : zbr::SideOfLineXY(*this, a, b, eps2);
}

double ZBR_PT3::cos(const ZBR_PT3& p) const {
  return GuardedCos(InnerProduct(p), Length() * p.Length());
}

double ZBR_PT3::cos(const ZBR_PT3& a, const ZBR_PT3& b) const {
  return (b - *this).cos(a - *this);
}

double ZBR_PT3::cosXY(const ZBR_PT3& p) const {
  return GuardedCos(InnerProductXY(p), LengthXY() * p.LengthXY());
}

double ZBR_PT3::cosXY(const ZBR_PT3& a, const ZBR_PT3& b) const {
  return (a - *this).cosXY(b - *this);
}

double ZBR_PT3::pseudo_cos(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& n) const {
  const ZBR_PT3 toA = a - *this;
  const ZBR_PT3 toB = b - *this;
  const double cosine = toA.InnerProduct(toB) / (toA.Length() * toB.Length());
  return Unfold(cosine, n.InnerProduct(toA.OuterProduct(toB)) < 0.0);
}

double ZBR_PT3::pseudo_cosXY(const ZBR_PT3& p) const {
  return Unfold(cosXY(p), OuterProductXY(p) < 0.0);
}

double ZBR_PT3::pseudo_cosXY(const ZBR_PT3& a, const ZBR_PT3& b) const {
  return Unfold(cosXY(a, b), (b - *this).OuterProductXY(a - *this) < 0.0);
}

bool ZBR_PT3::insideXY(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) const {
  const double eps = zbr::t_tolerance.eps;
  const ZBR_PT toA = a.xy_ - b.xy_;
  const ZBR_PT toC = c.xy_ - b.xy_;
  const ZBR_PT toThis = xy_ - b.xy_;
  const double sweep = zbr::Cross(toC, toA);
  const bool pastC = zbr::Cross(toC, toThis) >= eps;
  const bool beforeA = zbr::Cross(toThis, toA) >= eps;
  if (sweep > 0.0) return pastC && beforeA;
  if (sweep < 0.0) return pastC || beforeA;
  return false;
}

bool ZBR_PT3::inTriangleXY(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) const {
  if (zbr::Cross(c.xy_ - b.xy_, a.xy_ - b.xy_) <= 0.0) return false;
  return inTriangleXY_CCL(a, b, c);
}

bool ZBR_PT3::inTriangleXY_CCL(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) const {
  const double eps = zbr::t_tolerance.eps;
  const ZBR_PT fromB = xy_ - b.xy_;
  if (!(zbr::Cross(c.xy_ - b.xy_, fromB) >= eps && zbr::Cross(fromB, a.xy_ - b.xy_) >= eps)) return false;
  return zbr::Cross(a.xy_ - c.xy_, xy_ - c.xy_) >= -eps;
}
