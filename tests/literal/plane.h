// The planar decisions of the literal form, on an explicit tolerance and without any function of the library under test.
#pragma once

#include <cmath>
#include <vector>

#include <zbr/planar.h>

namespace literal {

// The tolerance to hand to every function; the thread's own is not read.
struct Tol {
  double eps;
  double eps2;
  explicit Tol(double e) : eps(std::abs(e)), eps2(eps * eps) {}
};

inline bool Within(double a, double band) {
  return -band <= a && a <= band;
}
bool Finite(const std::vector<ZBR_PT>& ring);
bool Same(const ZBR_PT& p, const ZBR_PT& q, const Tol& tol);

// Side of the line a->b: +1 left, 0 on it, -1 right, -2 no line.
int SideOfLine(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, const Tol& tol);
// Parameter of p along a->b on the longer axis.
double Along(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b);
// Whether p is on the segment; *t is written when p is on its line.
bool OnSegment(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double* t, const Tol& tol);

// The corner p0->p1->p2 of a ring; its edges are longer than the tolerance.
struct Corner {
  Corner(const ZBR_PT& q0, const ZBR_PT& q1, const ZBR_PT& q2, const Tol& tol);
  // +1 inside the wedge, 0 on its boundary, -1 outside, -4 no wedge. lineSide: side of the line p1->p2.
  int Position(const ZBR_PT& p, int& lineSide, const Tol& tol) const;

  ZBR_PT p0, p1, p2;
  double cosA, invLen2Prev, invLen2Next;
  bool convex, reverses;
};

double Area(const std::vector<ZBR_PT>& ring);
// Area between the boundary from ta forward to tb and the chord back; pa and pb are the points at ta and tb, in [0, n].
double StripArea(const std::vector<ZBR_PT>& ring, const ZBR_PT& pa, const ZBR_PT& pb, double ta, double tb, const Tol& tol);

}  // namespace literal
