// Planar points and vectors, segments, corners, line intersection and polygon area.
//
// Coordinates are in the caller's unit; angles and areas are positive counter-clockwise. Tolerant functions read the calling
// thread's tolerance (tolerance.h). All types are plain values; const functions may be called from any number of threads.
// Nothing here throws or reports beyond its return value, and only ZBR_POLYGON allocates.
#pragma once

#include <cmath>
#include <utility>
#include <vector>

#include <zbr/export.h>

struct ZBR_3PT_INFO;

// A planar point or vector: two doubles, x then y.
class ZBR_PT {
 public:
  ZBR_PT() = default;
  ZBR_PT(double x, double y) : x_(x), y_(y) {}
  void Set(double x, double y) {
    x_ = x;
    y_ = y;
  }
  double x() const { return x_; }
  double y() const { return y_; }

  double Length2() const { return x_ * x_ + y_ * y_; }
  double Length() const { return std::sqrt(Length2()); }
  double Distance2(const ZBR_PT& p) const { return (*this - p).Length2(); }
  double Distance(const ZBR_PT& p) const { return (*this - p).Length(); }
  double InnerProduct(const ZBR_PT& p) const { return x_ * p.x_ + y_ * p.y_; }
  // Planar cross product; positive when p lies counter-clockwise from this vector.
  double OuterProduct(const ZBR_PT& p) const { return x_ * p.y_ - y_ * p.x_; }

  // Scales to unit length. A vector shorter than 1e-100 becomes (0, 0), never NaN.
  ZBR_API ZBR_PT& Normalize();

  ZBR_PT operator+(const ZBR_PT& p) const { return ZBR_PT(x_ + p.x_, y_ + p.y_); }
  ZBR_PT operator-(const ZBR_PT& p) const { return ZBR_PT(x_ - p.x_, y_ - p.y_); }
  ZBR_PT operator*(double f) const { return ZBR_PT(x_ * f, y_ * f); }
  ZBR_PT operator/(double f) const { return ZBR_PT(x_ / f, y_ / f); }
  ZBR_PT& operator+=(const ZBR_PT& p) { return *this = *this + p; }
  ZBR_PT& operator-=(const ZBR_PT& p) { return *this = *this - p; }
  ZBR_PT& operator*=(double f) { return *this = *this * f; }
  ZBR_PT& operator/=(double f) { return *this = *this / f; }

  // Equal when at most eps apart (squared distance within eps2). Not transitive. NaN compares unequal.
  ZBR_API bool operator==(const ZBR_PT& p) const;
  ZBR_API bool operator!=(const ZBR_PT& p) const;

  // Side of the infinite directed line a->b on which this point lies:
  //   +1  left, farther than eps from the line
  //    0  on the line (distance at most eps)
  //   -1  right, farther than eps
  //   -2  a and b are equal: there is no line
  ZBR_API int CheckPos(const ZBR_PT& a, const ZBR_PT& b) const;

  // The same for many points against one line: invLen2 = 1 / |b - a|^2, and b differs from a, so -2 does not occur.
  ZBR_API int CheckPos(const ZBR_PT& a, const ZBR_PT& b, double invLen2) const;

  // Position of this point relative to the corner p0->p1->p2, where inside is left of both edges at a convex corner and left of
  // either at a reflex one:
  //   +1  inside, 0  on an edge line at the boundary, -1  outside; -2, -3, -4  the corner is degenerate (see ZBR_3PT_INFO)
  // side1 and side2 receive the side of the lines p0->p1 and p1->p2. With `info` (made by Get3PtInfo from the same points) a
  // side is written unless its edge is degenerate; without it neither is written when the corner is degenerate.
  ZBR_API int CheckPos(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_3PT_INFO& info, int& side1,
                       int& side2) const;
  ZBR_API int CheckPos(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, int& side1, int& side2) const;

  // Parameter t of this point along a->b, measured on the longer axis (x on a tie): 0 at a, 1 at b, not limited.
  // The point is not projected: exact for a point on the line. a must differ from b (else the result is not a number).
  ZBR_API double LinFrom(const ZBR_PT& a, const ZBR_PT& b) const;

  // Describes the corner at p1 of the path p0->p1->p2 and returns info.state.
  ZBR_API static int Get3PtInfo(const ZBR_PT& p0, const ZBR_PT& p1, const ZBR_PT& p2, ZBR_3PT_INFO& info);

 private:
  double x_ = 0.0;
  double y_ = 0.0;
};

// The turn at the middle of three points, computed once for many position tests.
//
//   state  0  ordinary corner
//         -2  p0 and p1 are equal (only state is written)
//         -3  p1 and p2 are equal (only state is written)
//         -4  the path turns back on itself: parallel to within eps2 radians, opposite directions
struct ZBR_3PT_INFO {
  double cosA = 0.0;         // cosine of the turn: 1 straight on, -1 full reversal
  double sinA = 0.0;         // sine of the turn: positive for a left turn
  double invLen2Prev = 0.0;  // 1 / |p1 - p0|^2
  double invLen2Next = 0.0;  // 1 / |p2 - p1|^2
  bool isConvex = false;     // sinA >= 0: turns left or goes straight on
  int state = 0;
};

// A planar segment from s to e.
class ZBR_SEG {
 public:
  ZBR_SEG() = default;
  ZBR_SEG(const ZBR_PT& s, const ZBR_PT& e) : s_(s), e_(e) {}
  void Set(const ZBR_PT& s, const ZBR_PT& e) { *this = ZBR_SEG(s, e); }  // also its own ends, exchanged
  void Set(double sx, double sy, double ex, double ey) {
    s_.Set(sx, sy);
    e_.Set(ex, ey);
  }
  ZBR_PT s() { return s_; }
  ZBR_PT e() { return e_; }
  const ZBR_PT& s() const { return s_; }
  const ZBR_PT& e() const { return e_; }

 private:
  ZBR_PT s_;
  ZBR_PT e_;
};

// Intersects the infinite lines p1->p2 and p3->p4: p1 + t*(p2 - p1) = p3 + u*(p4 - p3).
//
// Returns false, with t and u untouched, when the cross product of the two directions is within eps2. That product is not
// normalised, so short segments count as parallel sooner than long ones; intended. t and u are not limited to [0, 1] and must
// not be null. det, if not null, receives (p2 - p1) x (p4 - p3) in either case.
ZBR_API bool zbrIsIntersect(const ZBR_PT& p1, const ZBR_PT& p2, const ZBR_PT& p3, const ZBR_PT& p4, double* t, double* u,
                            double* det);

// Whether p lies on the segment a-b, its ends included, within eps.
//
// foot and t, if not null, receive the foot of the perpendicular and its parameter (0 at a, 1 at b) whenever p is on the
// infinite line, also when the result is false. They stay untouched when p is off the line or a equals b (then the result is
// whether p equals a).
ZBR_API bool zbrIsOnSeg(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, ZBR_PT* foot, double* t);

// A polygon as a plain point list, closed from the last point to the first (the first is not repeated).
//
// A boundary parameter t in [0, n) names a place on the boundary: its integer part is the edge (edge i starts at point i), its
// fraction the position along that edge.
class ZBR_POLYGON {
 public:
  ZBR_POLYGON() = default;
  ZBR_POLYGON(const std::vector<ZBR_PT>& points) : points_(points) {}

  std::vector<ZBR_PT>& pt() { return points_; }
  const std::vector<ZBR_PT>& pt() const { return points_; }

  // Signed area; 0 for fewer than three points. Linear in the number of points.
  ZBR_API double get_area() const;

  // Signed area enclosed by the boundary from parameter ta forward to tb and the chord back. ta == tb exactly is the whole
  // polygon; parameters within eps of each other give 0. The end of the last edge, n, is read as 0; 0 for fewer than three
  // points. What else lies outside [0, n], or is NaN, gives NaN.
  ZBR_API double get_area(double ta, double tb) const;

  // The same with the boundary points at ta and tb supplied by the caller.
  ZBR_API double get_area(const ZBR_PT& pa, const ZBR_PT& pb, double ta, double tb) const;

 private:
  std::vector<ZBR_PT> points_;
};
