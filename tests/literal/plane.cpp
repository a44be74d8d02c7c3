#include "literal/plane.h"

#include <algorithm>

namespace literal {

namespace {

double Cross(const ZBR_PT& u, const ZBR_PT& v) {
  return u.x() * v.y() - u.y() * v.x();
}
double Length2(const ZBR_PT& v) {
  return v.x() * v.x() + v.y() * v.y();
}

ZBR_PT Unit(const ZBR_PT& v) {
  const double length = std::sqrt(Length2(v));
  return length < 1e-100 ? ZBR_PT(0.0, 0.0) : ZBR_PT(v.x() / length, v.y() / length);
}

int SideByInverse(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double invLen2, const Tol& tol) {
  const double c = Cross(b - a, p - a);
  if (c * c * invLen2 > tol.eps2) return c > 0.0 ? 1 : -1;
  return 0;
}

}  // namespace

bool Finite(const std::vector<ZBR_PT>& ring) {
  return std::all_of(ring.begin(), ring.end(), [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); });
}

bool Same(const ZBR_PT& p, const ZBR_PT& q, const Tol& tol) {
  return Within(Length2(p - q), tol.eps2);
}

int SideOfLine(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, const Tol& tol) {
  const ZBR_PT d = b - a;
  if (Within(Length2(d), tol.eps2)) return -2;
  const double c = Cross(d, p - a);
  if (c * c / Length2(d) > tol.eps2) return c > 0.0 ? 1 : -1;
  return 0;
}

double Along(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b) {
  const double dx = b.x() - a.x();
  const double dy = b.y() - a.y();
  return std::abs(dx) >= std::abs(dy) ? (p.x() - a.x()) / dx : (p.y() - a.y()) / dy;
}

bool OnSegment(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b, double* t, const Tol& tol) {
  const ZBR_PT d = b - a;
  if (Within(Length2(d), tol.eps2)) return Same(p, a, tol);
  if (SideOfLine(p, a, b, tol) != 0) return false;
  const ZBR_PT w = p - a;
  const double s = (w.x() * d.x() + w.y() * d.y()) / Length2(d);
  const ZBR_PT foot = a + d * s;
  *t = s;
  if (!Same(p, foot, tol)) return false;
  return Same(foot, a, tol) || Same(foot, b, tol) || (0.0 < s && s < 1.0);
}

Corner::Corner(const ZBR_PT& q0, const ZBR_PT& q1, const ZBR_PT& q2, const Tol& tol) : p0(q0), p1(q1), p2(q2) {
  invLen2Prev = 1.0 / Length2(p1 - p0);
  invLen2Next = 1.0 / Length2(p2 - p1);
  const ZBR_PT u1 = Unit(p1 - p0);
  const ZBR_PT u2 = Unit(p2 - p1);
  const double sinA = Cross(u1, u2);
  cosA = u1.x() * u2.x() + u1.y() * u2.y();
  convex = sinA >= 0.0;
  reverses = Within(sinA, tol.eps2) && cosA < 0.0;
}

int Corner::Position(const ZBR_PT& p, int& lineSide, const Tol& tol) const {
  const int side1 = SideByInverse(p, p0, p1, invLen2Prev, tol);
  const int side2 = lineSide = SideByInverse(p, p1, p2, invLen2Next, tol);
  if (reverses) return -4;
  // At a convex corner the wedge is the inside (+1); at a reflex one it is the outside, and the signs change places.
  const int outer = convex ? -1 : 1;
  if (side1 == outer || side2 == outer) return outer;
  if (side1 == -outer) return side2 == -outer ? -outer : 0;
  const bool beyond = cosA < 0.0 && !Same(p, p1, tol) && Along(p, p0, p1) >= 1.0 && Along(p, p2, p1) >= 1.0;
  return side2 != -outer && beyond ? outer : 0;
}

double Area(const std::vector<ZBR_PT>& ring) {
  if (ring.size() < 3) return 0.0;
  double sum = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) sum += Cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
  return 0.5 * sum;
}

double StripArea(const std::vector<ZBR_PT>& ring, const ZBR_PT& pa, const ZBR_PT& pb, double ta, double tb, const Tol& tol) {
  const int n = static_cast<int>(ring.size());
  if (ta == n) ta = 0.0;
  if (tb == n) tb = 0.0;
  if (ta == tb) return Area(ring);
  if (n < 3) return 0.0;
  if (tb - tol.eps <= ta && ta <= tb + tol.eps) return 0.0;
  int first = static_cast<int>(std::ceil(ta)) + (ta == std::floor(ta) ? 1 : 0);
  if (first == n) first = 0;
  int last = static_cast<int>(std::floor(tb)) - (tb == std::floor(tb) ? 1 : 0);
  if (last == -1) last = n - 1;
  if ((last + 1) % n == first && (tb == 0.0 || tb > ta)) return 0.0;
  double sum = 0.0;
  for (int k = first; k != last; k = (k + 1) % n) {
    sum += Cross(ring[static_cast<std::size_t>(k)] - pa, ring[static_cast<std::size_t>((k + 1) % n)] - pa);
  }
  return 0.5 * (sum + Cross(ring[static_cast<std::size_t>(last)] - pa, pb - pa));
}

}  // namespace literal
