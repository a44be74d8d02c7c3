// Crossing detection: each edge of A, with the corner it starts from, against each edge of B; the first case that applies decides.
#include <algorithm>

#include "literal/boolean.h"

namespace literal {

namespace {

constexpr double kMargin = 0.001;

double Cross(const ZBR_PT& u, const ZBR_PT& v) {
  return u.x() * v.y() - u.y() * v.x();
}

bool EdgeBoxesApart(const ZBR_PT& a0, const ZBR_PT& a1, double xmin, double xmax, double ymin, double ymax) {
  return xmin > std::max(a0.x(), a1.x()) + kMargin || std::min(a0.x(), a1.x()) - kMargin > xmax ||
         ymin > std::max(a0.y(), a1.y()) + kMargin || std::min(a0.y(), a1.y()) - kMargin > ymax;
}

struct Contact {
  ZBR_PT pt;
  double tA, tB;
  ZBR_CROSS_DIR dir;
};

ZBR_CROSS_DIR LeftIf(bool left) {
  return left ? ZBR_CROSS_TO_LEFT : ZBR_CROSS_TO_RIGHT;
}

// The corner of A with its leaving edge E = p1->p2 against the edge F = q0->q1. Returns whether they meet.
bool FindContact(const Corner& corner, const ZBR_PT& q0, const ZBR_PT& q1, const Tol& tol, Contact& out) {
  const ZBR_PT& cur = corner.p1;
  const ZBR_PT& next = corner.p2;
  int lineQ0 = 0;
  int lineQ1 = 0;
  const int posQ0 = corner.Position(q0, lineQ0, tol);
  const int posQ1 = corner.Position(q1, lineQ1, tol);

  if (Same(cur, q0, tol)) {
    if (corner.reverses || posQ1 == 0) return false;
    out = {cur, 0.0, 0.0, LeftIf(posQ1 == 1)};
    return true;
  }
  if (Same(cur, q1, tol)) {
    if (corner.reverses || posQ0 == 0) return false;
    out = {cur, 0.0, 1.0, LeftIf(posQ0 != 1)};
    return true;
  }
  if (SideOfLine(cur, q0, q1, tol) == 0) {
    if (corner.reverses) return false;
    const double t = Along(cur, q0, q1);
    if (!(0.0 <= t && t <= 1.0) || posQ0 == posQ1) return false;
    out = {cur, 0.0, t, LeftIf(posQ0 == 0 ? posQ1 == 1 : posQ0 == -1)};
    return true;
  }
  if (Same(next, q0, tol) || Same(next, q1, tol)) return false;
  if (lineQ0 == 0) {
    const double t = Along(q0, cur, next);
    if (!(0.0 <= t && t < 1.0) || lineQ1 == 0) return false;
    out = {q0, t, 0.0, LeftIf(lineQ1 == 1)};
    return true;
  }
  if (lineQ1 == 0) {
    const double t = Along(q1, cur, next);
    if (!(0.0 <= t && t < 1.0)) return false;
    out = {q1, t, 1.0, LeftIf(lineQ0 == -1)};
    return true;
  }
  if (SideOfLine(next, q0, q1, tol) == 0) return false;
  const ZBR_PT a = next - cur;
  const ZBR_PT b = q1 - q0;
  const ZBR_PT w = cur - q0;
  const double d = Cross(b, a);
  if (std::abs(d) <= tol.eps2) return false;
  const double tA = Cross(w, b) / d;
  const double tB = Cross(w, a) / d;
  if (!(0.0 <= tA && tA <= 1.0 && 0.0 <= tB && tB <= 1.0)) return false;
  out = {cur + a * tA, tA, tB, LeftIf(d < 0.0)};
  return true;
}

// Position on B. A vertex counts as the last one of its run of equal points, so that arriving and leaving edges agree.
double PositionOnB(const std::vector<ZBR_PT>& Q, std::size_t j0, double tB, bool closedB, const Tol& tol) {
  if (tB != 1.0) return static_cast<double>(j0) + tB;
  const std::size_t n = Q.size();
  std::size_t j = (j0 + 1) % n;
  while ((closedB || j + 1 < n) && Same(Q[j], Q[(j + 1) % n], tol)) j = (j + 1) % n;
  return static_cast<double>(j);
}

}  // namespace

void GetPolygonCross(const Loop& A, const Loop& B, ZBR_CROSS_LOOP keyA, ZBR_CROSS_LOOP keyB, std::vector<ZBR_CROSS>& crosses,
                     bool closedB, const Tol& tol) {
  const std::vector<ZBR_PT>& P = A.pt;
  const std::vector<ZBR_PT>& Q = B.pt;
  const std::size_t nA = P.size();
  const std::size_t nB = Q.size();
  if (nA <= 2 || nB <= (closedB ? 2U : 1U) || !Finite(P) || !Finite(Q)) return;
  if (!(B.xmin <= A.xmax + kMargin && A.xmin <= B.xmax + kMargin && B.ymin <= A.ymax + kMargin && A.ymin <= B.ymax + kMargin)) {
    return;
  }
  std::size_t start = 0;
  while (start < nA && Same(P[(start + nA - 1) % nA], P[start], tol)) ++start;
  if (start == nA) return;

  std::size_t prev = (start + nA - 1) % nA;
  for (std::size_t step = 0; step < nA; ++step) {
    const std::size_t cur = (start + step) % nA;
    const std::size_t next = (cur + 1) % nA;
    if (Same(P[cur], P[prev], tol) || Same(P[next], P[cur], tol)) continue;
    const Corner corner(P[prev], P[cur], P[next], tol);
    prev = cur;
    if (EdgeBoxesApart(P[cur], P[next], B.xmin, B.xmax, B.ymin, B.ymax)) continue;
    for (std::size_t e = closedB ? 0 : 1; e < nB; ++e) {
      const std::size_t j0 = (e + nB - 1) % nB;
      const ZBR_PT& q0 = Q[j0];
      const ZBR_PT& q1 = Q[e];
      if (Same(q0, q1, tol)) continue;
      if (EdgeBoxesApart(P[cur], P[next], std::min(q0.x(), q1.x()), std::max(q0.x(), q1.x()), std::min(q0.y(), q1.y()),
                         std::max(q0.y(), q1.y()))) {
        continue;
      }
      Contact contact;
      if (!FindContact(corner, q0, q1, tol, contact)) continue;
      ZBR_CROSS cross;
      cross.pt = contact.pt;
      cross.dir = contact.dir;
      cross.a = {keyA, static_cast<double>(cur) + contact.tA, -1, 0};
      cross.b = {keyB, PositionOnB(Q, j0, contact.tB, closedB, tol), -1, 0};
      cross.valid = true;
      cross.index = static_cast<int>(crosses.size());
      crosses.push_back(cross);
    }
  }
}

void GetLoopsCross(const Loops& A, const Loops& B, std::vector<ZBR_CROSS>& crosses, const Tol& tol) {
  for (int i = 0; i < static_cast<int>(A.size()); ++i) {
    for (int j = 0; j < static_cast<int>(B.size()); ++j) {
      const int holesA = static_cast<int>(A[static_cast<std::size_t>(i)]->children.size());
      const int holesB = static_cast<int>(B[static_cast<std::size_t>(j)]->children.size());
      for (int p = 0; p <= holesA; ++p) {
        for (int q = 0; q <= holesB; ++q) {
          const ZBR_CROSS_LOOP keyA(i, p);
          const ZBR_CROSS_LOOP keyB(j, q);
          GetPolygonCross(PolygonOf(A, keyA), PolygonOf(B, keyB), keyA, keyB, crosses, true, tol);
        }
      }
    }
  }
}

}  // namespace literal
