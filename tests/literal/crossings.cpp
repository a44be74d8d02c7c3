// Crossing detection: each edge of A, with the corner it starts from, against each edge of B; the first case that applies decides.
#include <algorithm>

#include "literal/boolean.h"

namespace literal {

namespace {

constexpr double kMargin = 0.001;

bool EdgeBoxesApart(const ZBR_PT& a0, const ZBR_PT& a1, double xmin, double xmax, double ymin, double ymax) {
  return xmin > std::max(a0.x(), a1.x()) + kMargin || std::min(a0.x(), a1.x()) - kMargin > xmax ||
         ymin > std::max(a0.y(), a1.y()) + kMargin || std::min(a0.y(), a1.y()) - kMargin > ymax;
}

struct Contact {
  ZBR_PT pt;
  double tA, tB;
  ZBR_CROSS_DIR dir;
};

// A corner of A with its leaving edge E = cur->next.
struct Corner {
  Corner(const ZBR_PT& p, const ZBR_PT& c, const ZBR_PT& n) : prev(p), cur(c), next(n) {
    ZBR_PT::Get3PtInfo(prev, cur, next, info);
  }
  // Side of the corner (0 on it, -4 when A doubles back there) of q, an end of q0-q1; an edge with both ends on the line of q0-q1
  // lies on it. `line` receives the side of E's line.
  int Position(const ZBR_PT& q, const ZBR_PT& q0, const ZBR_PT& q1, int& line) const {
    int prevLine = 0;
    q.CheckPos(prev, cur, next, info, prevLine, line);
    ZBR_3PT_INFO along = info;
    if (prev.CheckPos(q0, q1) == 0) along.invLen2Prev = 0.0;
    if (next.CheckPos(q0, q1) == 0) along.invLen2Next = 0.0;
    int nextLine = 0;
    return q.CheckPos(prev, cur, next, along, prevLine, nextLine);
  }
  ZBR_PT prev, cur, next;
  ZBR_3PT_INFO info;
};

// The corner against the edge q0->q1. Returns whether they meet.
bool FindContact(const Corner& corner, const ZBR_PT& q0, const ZBR_PT& q1, const Tol& tol, Contact& out) {
  const ZBR_PT& cur = corner.cur;
  const ZBR_PT& next = corner.next;
  int lineQ0 = 0;
  int lineQ1 = 0;
  const int posQ0 = corner.Position(q0, q0, q1, lineQ0);
  const int posQ1 = corner.Position(q1, q0, q1, lineQ1);
  const bool doublesBack = posQ0 == -4;
  const auto meet = [&](const ZBR_PT& pt, double tA, double tB, bool left) {
    out = {pt, tA, tB, left ? ZBR_CROSS_TO_LEFT : ZBR_CROSS_TO_RIGHT};
    return true;
  };
  if (cur == q0) return !doublesBack && posQ1 != 0 && meet(cur, 0.0, 0.0, posQ1 == 1);
  if (cur == q1) return !doublesBack && posQ0 != 0 && meet(cur, 0.0, 1.0, posQ0 != 1);
  if (cur.CheckPos(q0, q1) == 0) {
    const double t = cur.LinFrom(q0, q1);
    if (0.0 <= t && t <= 1.0) {
      return !doublesBack && posQ0 != posQ1 && meet(cur, 0.0, t, posQ0 == 0 ? posQ1 == 1 : posQ0 == -1);
    }
  }
  if (next == q0 || next == q1) return false;
  if (lineQ0 == 0 || lineQ1 == 0) {
    const ZBR_PT& q = lineQ0 == 0 ? q0 : q1;
    const double t = q.LinFrom(cur, next);
    if (!(0.0 <= t && t < 1.0) || (lineQ0 == 0 && lineQ1 == 0)) return false;
    return lineQ0 == 0 ? meet(q, t, 0.0, lineQ1 == 1) : meet(q, t, 1.0, lineQ0 == -1);
  }
  if (next.CheckPos(q0, q1) == 0) return false;
  const ZBR_PT a = next - cur;
  const ZBR_PT b = q1 - q0;
  const ZBR_PT w = cur - q0;
  const double d = b.OuterProduct(a);
  if (std::abs(d) <= tol.eps2) return false;
  const double tA = w.OuterProduct(b) / d;
  const double tB = w.OuterProduct(a) / d;
  return 0.0 <= tA && tA <= 1.0 && 0.0 <= tB && tB <= 1.0 && meet(cur + a * tA, tA, tB, d < 0.0);
}

// Position on B. A vertex counts as the last one of its run of equal points, so that arriving and leaving edges agree.
double PositionOnB(const std::vector<ZBR_PT>& Q, std::size_t j0, double tB, bool closedB) {
  if (tB != 1.0) return static_cast<double>(j0) + tB;
  const std::size_t n = Q.size();
  std::size_t j = (j0 + 1) % n;
  while ((closedB || j + 1 < n) && Q[j] == Q[(j + 1) % n]) j = (j + 1) % n;
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
  while (start < nA && P[(start + nA - 1) % nA] == P[start]) ++start;
  if (start == nA) return;

  std::size_t prev = (start + nA - 1) % nA;
  for (std::size_t step = 0; step < nA; ++step) {
    const std::size_t cur = (start + step) % nA;
    const std::size_t next = (cur + 1) % nA;
    if (P[cur] == P[prev] || P[next] == P[cur]) continue;
    const Corner corner(P[prev], P[cur], P[next]);
    prev = cur;
    if (EdgeBoxesApart(P[cur], P[next], B.xmin, B.xmax, B.ymin, B.ymax)) continue;
    for (std::size_t e = closedB ? 0 : 1; e < nB; ++e) {
      const std::size_t j0 = (e + nB - 1) % nB;
      const ZBR_PT& q0 = Q[j0];
      const ZBR_PT& q1 = Q[e];
      if (q0 == q1) continue;
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
      cross.b = {keyB, PositionOnB(Q, j0, contact.tB, closedB), -1, 0};
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
