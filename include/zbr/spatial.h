// Spatial points and vectors, segments, planes and relations of spatial lines.
//
// Coordinates are in the caller's unit. Names ending in XY look at the projection to the XY plane, as a viewer looking along -z
// sees it. Tolerant functions read the calling thread's tolerance (tolerance.h). All types are plain values; const functions may be
// called from any number of threads. Nothing here throws, allocates or reports beyond its return value; all cost is constant.
#pragma once

#include <cmath>

#include <zbr/export.h>
#include <zbr/planar.h>

// A spatial point or vector: three doubles, x, y, z, of which the first two are laid out as a ZBR_PT.
class ZBR_PT3 {
 public:
  ZBR_PT3() = default;
  ZBR_PT3(double x, double y, double z) : xy_(x, y), z_(z) {}
  void Set(double x, double y, double z) { *this = ZBR_PT3(x, y, z); }
  void Set(const ZBR_PT3& p) { *this = p; }
  void SetX(double x) { xy_.Set(x, xy_.y()); }
  void SetY(double y) { xy_.Set(xy_.x(), y); }
  void SetZ(double z) { z_ = z; }
  double x() const { return xy_.x(); }
  double y() const { return xy_.y(); }
  double z() const { return z_; }
  // The projection of this point, by reference: writing to it changes x and y here.
  ZBR_PT& xy() { return xy_; }
  const ZBR_PT& xy() const { return xy_; }

  double Length2() const { return InnerProduct(*this); }
  double Length() const { return std::sqrt(Length2()); }
  double Length2XY() const { return xy_.Length2(); }
  double LengthXY() const { return xy_.Length(); }
  double Distance2(const ZBR_PT3& p) const { return (p - *this).Length2(); }
  double Distance(const ZBR_PT3& p) const { return (p - *this).Length(); }
  double Distance2XY(const ZBR_PT3& p) const { return (p.xy_ - xy_).Length2(); }
  double DistanceXY(const ZBR_PT3& p) const { return (p.xy_ - xy_).Length(); }
  double InnerProduct(const ZBR_PT3& p) const { return x() * p.x() + y() * p.y() + z_ * p.z_; }
  double InnerProductXY(const ZBR_PT3& p) const { return xy_.InnerProduct(p.xy_); }
  // The cross product this x p.
  ZBR_PT3 OuterProduct(const ZBR_PT3& p) const {
    return ZBR_PT3(y() * p.z_ - z_ * p.y(), z_ * p.x() - x() * p.z_, x() * p.y() - y() * p.x());
  }
  // Its z component: positive when p lies counter-clockwise of this vector in the projection.
  double OuterProductXY(const ZBR_PT3& p) const { return xy_.OuterProduct(p.xy_); }

  ZBR_PT3 operator+() const { return *this; }
  ZBR_PT3 operator-() const { return ZBR_PT3(-x(), -y(), -z_); }
  ZBR_PT3 operator+(const ZBR_PT3& p) const { return ZBR_PT3(x() + p.x(), y() + p.y(), z_ + p.z_); }
  ZBR_PT3 operator-(const ZBR_PT3& p) const { return ZBR_PT3(x() - p.x(), y() - p.y(), z_ - p.z_); }
  ZBR_PT3 operator*(double f) const { return ZBR_PT3(x() * f, y() * f, z_ * f); }
  // Unchecked: division by zero gives infinities or NaN.
  ZBR_PT3 operator/(double f) const { return ZBR_PT3(x() / f, y() / f, z_ / f); }
  ZBR_PT3& operator+=(const ZBR_PT3& p) { return *this = *this + p; }
  ZBR_PT3& operator-=(const ZBR_PT3& p) { return *this = *this - p; }
  ZBR_PT3& operator*=(double f) { return *this = *this * f; }
  // Made for dividing by a length: a divisor below 1e-100, and so every negative one, gives (0, 0, 0).
  ZBR_API ZBR_PT3& operator/=(double d);

  // Equal when at most eps apart in space. Not transitive. NaN compares unequal.
  ZBR_API bool operator==(const ZBR_PT3& p) const;
  ZBR_API bool operator!=(const ZBR_PT3& p) const;

  // Zero exactly; of length at most eps; of length below eps2 (strictly).
  ZBR_API bool IsZero() const;
  ZBR_API bool IsZero2() const;
  ZBR_API bool IsZero4() const;

  // Scales to unit length, in place or as a copy. A vector shorter than 1e-100 becomes (0, 0, 0), never NaN.
  ZBR_API ZBR_PT3& Normalize();
  ZBR_API ZBR_PT3 Unit() const;

  // Side of the projected line a->b on which this point's projection lies:
  //   +1  left, farther than eps; 0  on the line; -1  right, farther than eps
  //   -2  a and b are equal in space
  // Ends that differ in z alone pass as a line of no direction: the result is then 0 or, at a rounding error, +1 or -1.
  ZBR_API int CheckPos(const ZBR_PT3& a, const ZBR_PT3& b) const;

  // Cosine of the angle between this vector and p, or at this point between the directions to a and b; in space and in projection.
  // 0 when the product of the two lengths is below eps2.
  ZBR_API double cos(const ZBR_PT3& p) const;
  ZBR_API double cos(const ZBR_PT3& a, const ZBR_PT3& b) const;
  ZBR_API double cosXY(const ZBR_PT3& p) const;
  ZBR_API double cosXY(const ZBR_PT3& a, const ZBR_PT3& b) const;

  // Pseudo cosines: monotone stand-ins for an angle over the whole turn, 1 (same direction) over -1 (opposite) to -3 (a full turn),
  // made for sorting directions with one comparison. The cosine c for one half-turn, -c - 2 for the other.
  //
  // Turn at this point from a to b about n (which points at the viewer): counter-clockwise gives c. A zero length gives NaN.
  ZBR_API double pseudo_cos(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& n) const;
  // Turn from this vector to p in projection: counter-clockwise gives c.
  ZBR_API double pseudo_cosXY(const ZBR_PT3& p) const;
  // Turn at this point from a to b in projection, the other way round: clockwise gives c, counter-clockwise -c - 2.
  ZBR_API double pseudo_cosXY(const ZBR_PT3& a, const ZBR_PT3& b) const;

  // Whether this point's projection lies strictly inside the wedge swept counter-clockwise at b from the ray b->c to the ray b->a.
  // False for a straight wedge. eps is compared with unnormalised cross products, here and in the triangle tests.
  ZBR_API bool insideXY(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) const;

  // Whether this point's projection lies inside the triangle b->c->a: strictly inside the edges b->c and a->b, on or inside c->a,
  // so that of triangles sharing edges not all claim a boundary point. False unless b->c->a runs counter-clockwise; the _CCL form
  // takes that for granted.
  ZBR_API bool inTriangleXY(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) const;
  ZBR_API bool inTriangleXY_CCL(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) const;

 private:
  ZBR_PT xy_;
  double z_ = 0.0;
};

// A spatial segment from s to e.
class ZBR_SEG3 {
 public:
  ZBR_SEG3() = default;
  ZBR_SEG3(const ZBR_PT3& s, const ZBR_PT3& e) : s_(s), e_(e) {}
  void Set(const ZBR_PT3& s, const ZBR_PT3& e) { *this = ZBR_SEG3(s, e); }  // also its own ends, exchanged
  ZBR_PT3 s() { return s_; }
  ZBR_PT3 e() { return e_; }
  const ZBR_PT3& s() const { return s_; }
  const ZBR_PT3& e() const { return e_; }

 private:
  ZBR_PT3 s_;
  ZBR_PT3 e_;
};

// An oriented plane { p : normal . p + distance = 0 } with a unit normal. Invalid, with a zero normal, until a Set succeeds.
class ZBR_Plane {
 public:
  enum pos_type {
    POS_ON = 0,    // within eps of the plane
    POS_BACK = 1,  // farther than eps on the side opposite to the normal
    POS_FRONT = 2  // farther than eps on the normal's side
  };

  // Each Set scales its coefficients to a unit normal. False, leaving the plane invalid, when the normal given (the cross product
  // of two sides, for three points) is shorter than eps2. Three points give a normal by the right-hand rule over p0->p1->p2.
  ZBR_API bool Set(const ZBR_PT3& n, double d);
  ZBR_API bool Set(double a, double b, double c, double d);
  ZBR_API bool Set(const ZBR_PT3& p0, const ZBR_PT3& p1, const ZBR_PT3& p2);

  // False while the normal is exactly (0, 0, 0).
  ZBR_API bool IsValid() const;
  const ZBR_PT3& normal() const { return n_; }
  double distance() const { return d_; }
  // Signed distance of p, positive on the normal's side.
  double distance(const ZBR_PT3& p) const { return n_.InnerProduct(p) + d_; }
  ZBR_API pos_type pos(const ZBR_PT3& p) const;

  // Intersects the infinite line through a and b: p (not null) receives the point, t (may be null) its parameter, 0 at a, 1 at b,
  // not limited. Returns false and writes nothing when the line is parallel to the plane to within 1e-100.
  ZBR_API bool GetIntersection(const ZBR_PT3& a, const ZBR_PT3& b, ZBR_PT3* p, double* t) const;

  // The foot of the perpendicular from p; p itself when the plane is invalid.
  ZBR_API ZBR_PT3 GetNearest(const ZBR_PT3& p) const;

  // Moves the plane by v.
  ZBR_API ZBR_Plane& operator+=(const ZBR_PT3& v);

 private:
  bool Normalize();

  ZBR_PT3 n_;
  double d_ = 0.0;
};

// The coordinate to drop so that a planar figure in space keeps an area in the plane of the other two. The kept pair follows the
// dropped one cyclically: what is counter-clockwise seen from the positive end of the dropped axis stays so.
enum ZBR_DROP_TYPE {
  ZBR_DROP_X = 0,  // keeps (y, z)
  ZBR_DROP_Y = 1,  // keeps (z, x)
  ZBR_DROP_Z = 2   // keeps (x, y)
};

// The axis along which the normal n is longest in magnitude. Ties go to x before y before z.
ZBR_API ZBR_DROP_TYPE zbrDropType(const ZBR_PT3& n);

// Writes p without the dropped coordinate to *out. Any other value of t leaves *out untouched.
ZBR_API void zbrDropPt(ZBR_PT* out, const ZBR_PT3& p, ZBR_DROP_TYPE t);

enum ZBR_LL_RELATION {
  ZBR_LL_SAME = 0,      // one line
  ZBR_LL_PARALLEL = 1,  // parallel, apart
  ZBR_LL_CROSS = 2,     // the nearest points are at most eps apart
  ZBR_LL_SKEW = 3       // neither parallel nor meeting
};

// Relation of the infinite lines a0->a1 and b0->b1.
//
// For lines that are not parallel, pa, pb, ta, tb (each may be null) receive the points of each line nearest the other and their
// parameters, 0 at the first point, 1 at the second, not limited. Parallel lines leave them untouched. Lines count as parallel when
// the cross product of the two (unnormalised) directions is at most eps long; a degenerate line is parallel to every other.
ZBR_API ZBR_LL_RELATION zbrIsIntersect(const ZBR_PT3& a0, const ZBR_PT3& a1, const ZBR_PT3& b0, const ZBR_PT3& b1, ZBR_PT3* pa,
                                       ZBR_PT3* pb, double* ta, double* tb);

// Parameter of the foot of p on the line a->b, 0 at a, 1 at b, not limited. Not a number or infinite when a and b are the same.
ZBR_API double zbrGetOnLineParameter(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b);

// The foot itself.
ZBR_API ZBR_PT3 zbrGetOnLinePt(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b);

// Whether p lies on the segment a-b, its ends included, within eps.
//
// foot and t, if not null, receive the foot of p on the line and its parameter whatever the result; they stay untouched when a
// equals b (then the result is whether p equals both).
ZBR_API bool zbrIsOnSeg(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b, ZBR_PT3* foot, double* t);
