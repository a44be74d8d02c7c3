// What one triangle hides of the edges of another.
#include <algorithm>
#include <tuple>

#include "literal/hidden_line.h"

namespace literal {

namespace {

const Tol kPair(1e-7);

bool Same3(const ZBR_PT3& p, const ZBR_PT3& q) {
  const ZBR_PT3 v = q - p;
  return Within(v.InnerProduct(v), kPair.eps2);
}

double Cross2(const ZBR_PT3& u, const ZBR_PT3& v) {
  return u.x() * v.y() - u.y() * v.x();
}

// +1 left of the projected line a->b, 0 on it, -1 right. a and b differ, in z at least.
int Side(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b) {
  const ZBR_PT3 d = b - a;
  const double c = Cross2(d, p - a);
  if (!(c * c / (d.x() * d.x() + d.y() * d.y()) > kPair.eps2)) return 0;
  return c > 0.0 ? 1 : -1;
}

double Over(const Triangle& o, const ZBR_PT3& p) {
  return o.normal.InnerProduct(p) + o.d;
}

// Which vertices of a triangle, or ends of an edge, are in front of a plane, on it, behind it.
struct Sides {
  unsigned front = 0, on = 0, behind = 0;
};

unsigned OfEdge(unsigned mask, int i) {
  const auto bit = [&](int k) { return (mask >> static_cast<unsigned>(k)) & 1U; };
  return bit(i) | bit((i + 1) % 3) << 1U;
}

Stretch Piece(const ZBR_PT3& p, const ZBR_PT3& q, double s, double e) {
  return {p + (q - p) * s, p + (q - p) * e, s, e};
}

bool IsWhole(const Stretches& list) {
  return list.size() == 1 && list[0].s == 0.0 && list[0].e == 1.0;
}

// Removes the edges of t. Holds the lists that grow shorter, and the flag that follows them.
void Remove(Triangle& t, int i) {
  t.seen[i].clear();
  if (t.seen[(i + 1) % 3].empty() && t.seen[(i + 2) % 3].empty()) t.visible = false;
}

// Of two points that belong to one parameter, found from different triangles, the lesser one counts: so it does not matter which
// triangle came first.
void Agree(double a, double b, ZBR_PT3& p, ZBR_PT3& q) {
  const auto key = [](const ZBR_PT3& v) { return std::make_tuple(v.x(), v.y(), v.z()); };
  if (a == b) p = q = ZBR_PT3(std::min(p, q, [&](const ZBR_PT3& v, const ZBR_PT3& w) { return key(v) < key(w); }));
}

void Narrow(Triangle& t, int i, Stretches left) {
  if (IsWhole(left)) return;
  for (Stretch& v : t.seen[i]) {
    for (Stretch& w : left) {
      Agree(v.s, w.s, v.ps, w.ps);
      Agree(v.e, w.e, v.pe, w.pe);
    }
  }
  Intersect(t.seen[i], left, kPair.eps);
  Optimize(t.seen[i], kPair.eps);
  if (t.seen[i].empty()) Remove(t, i);
}

// A line that two edges draw stays with the one of smaller numbers. It must draw it.
bool YieldsTo(const Triangle& t, const Triangle& o, int k) {
  return o.edgeState[k] == kGeneral && o.draw[k] && o.idx <= t.idx && o.shell <= t.shell;
}

// Parts of p-q that a-b, on the same projected line, does not cover.
Stretches NotCovered(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b) {
  const bool alongX = std::abs(q.x() - p.x()) > std::abs(q.y() - p.y());
  const auto c = [&](const ZBR_PT3& v) { return alongX ? v.x() : v.y(); };
  double r0 = 0.0;
  double r1 = 0.0;
  const int pieces = Difference(c(p), c(q), c(a), c(b), r0, r1, kPair.eps);
  if (pieces == 0) return {};
  double u0 = (r0 - c(p)) / (c(q) - c(p));
  double u1 = (r1 - c(p)) / (c(q) - c(p));
  if (u0 <= kPair.eps) u0 = 0.0;
  if (u1 >= 1.0 - kPair.eps) u1 = 1.0;
  if (pieces == 1) return {Piece(p, q, u0, u1)};
  return {{p, p + (q - p) * u0, 0.0, u0}, {p + (q - p) * u1, q, u1, 1.0}};
}

// Parts of p-q, an edge of t, that edge k of o, on the same projected line, neither passes above nor draws in its place.
Stretches LeftByEdge(const ZBR_PT3& p, const ZBR_PT3& q, const Triangle& t, const Triangle& o, int k) {
  const Stretches whole = {{p, q, 0.0, 1.0}};
  const ZBR_PT3& a = o.pt[k];
  const ZBR_PT3& b = o.pt[(k + 1) % 3];
  const bool alongX = std::abs(q.y() - p.y()) < std::abs(q.x() - p.x());
  const auto c = [&](const ZBR_PT3& v) { return alongX ? v.x() : v.y(); };
  if (std::min(p.z(), q.z()) > std::max(a.z(), b.z())) return whole;
  if (!(std::min(c(p), c(q)) < std::max(c(a), c(b)) && std::min(c(a), c(b)) < std::max(c(p), c(q)))) return whole;

  // Of a line that both have, a vertical triangle yields to another; between equals the numbers decide.
  const bool wallO = o.state == kVertical;
  const bool wallT = t.state == kVertical;
  const bool yields = wallO == wallT ? YieldsTo(t, o, k) : wallT && o.draw[k];
  if ((Same3(p, a) && Same3(q, b)) || (Same3(p, b) && Same3(q, a))) return yields ? Stretches() : whole;

  const double ta = (c(a) - c(p)) / (c(q) - c(p));
  const double tb = (c(b) - c(p)) / (c(q) - c(p));
  const double da = (a.z() - p.z()) - (q.z() - p.z()) * ta;
  const double db = (b.z() - p.z()) - (q.z() - p.z()) * tb;
  const auto sign = [](double d) { return d > kPair.eps ? 1 : d < -kPair.eps ? -1 : 0; };
  const int sa = sign(da);
  const int sb = sign(db);
  if (sa == 0 && sb == 0) return yields ? NotCovered(p, q, a, b) : whole;
  if (sa <= 0 && sb <= 0) return whole;

  const double meet = ta + da / (da - db) * (tb - ta);
  const double from = sa > 0 ? ta : meet;
  const double to = sb > 0 ? tb : meet;
  if (Within(to - from, kPair.eps2)) return whole;
  double r0 = 0.0;
  double r1 = 0.0;
  switch (Difference(0.0, 1.0, from, to, r0, r1, kPair.eps)) {
    case 0:
      return {};
    case 1:
      return {Piece(p, q, r0, r1)};
    default:
      return {{p, p + (q - p) * r0, 0.0, r0}, {p + (q - p) * r1, q, r1, 1.0}};
  }
}

// The same for all edges of the vertical triangle o.
Stretches LeftByWall(const ZBR_PT3& p, const ZBR_PT3& q, const Triangle& t, const Triangle& o) {
  Stretches left = {{p, q, 0.0, 1.0}};
  bool first = true;
  for (int k = 0; k < 3; ++k) {
    if (o.edgeState[k] != kGeneral) continue;
    const Stretches list = LeftByEdge(p, q, t, o, k);
    if (list.empty()) return {};
    if (first) left = list;
    if (!first) Intersect(left, list, kPair.eps);
    first = false;
  }
  return left;
}

// The part of p-q right of the projected line a->b. False when there is none.
bool RightOfLine(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b, Stretch& r) {
  r = {p, q, 0.0, 1.0};
  if (Same3(a, b)) return true;
  const int sp = Side(p, a, b);
  const int sq = Side(q, a, b);
  if ((sp == 0 && sq > 0) || (sp > 0 && sq >= 0)) return false;
  if (sp * sq >= 0) return true;
  const ZBR_PT3 d1 = q - p;
  const ZBR_PT3 d2 = b - a;
  const ZBR_PT3 d3 = p - a;
  const double den = Cross2(d1, d2);
  if (!(std::abs(den) > kPair.eps2)) return true;
  const double t = (d3.y() * d2.x() - d3.x() * d2.y()) / den;
  if (sp > 0) r = {p + d1 * t, q, t, 1.0};
  if (sp < 0 && t + kPair.eps < 1.0) r = {p, p + d1 * t, 0.0, t};
  return true;
}

// The vertex of o at which the two edges meet that bound, along the line s-e, what o covers; -1 when o covers nothing of the line.
// Given are the vertices right of the line, on it and left of it. When one is on the line and the others on either side, the line
// leaves through the edge between those: that edge and another must meet at the apex. Vertex 1 is an end of it if 0 is on the line,
// and vertex 0 is if 1 or 2 is.
int Apex(unsigned right, unsigned on, unsigned left) {
  if (on == 0) return right == 1 || left == 1 ? 0 : right == 2 || left == 2 ? 1 : 2;
  if (right == 0 || left == 0) return -1;
  return on == 1 ? 1 : 0;
}

// Appends what is outside o's projection of the stretch s, which lies behind o's plane or (coplanar) in it. fromStart: it begins
// where the edge does; otherwise it ends there.
void AppendOutside(const Stretch& s, const Triangle& t, const Triangle& o, bool fromStart, bool coplanar, Stretches& out) {
  if (Same3(s.ps, s.pe)) return;
  Sides line;
  for (int k = 0; k < 3; ++k) {
    const int side = Side(o.pt[k], s.ps, s.pe);
    (side < 0 ? line.front : side == 0 ? line.on : line.behind) |= 1U << static_cast<unsigned>(k);
  }
  // Only one end of a part can lie inside the stretch, and only that one is measured along the edge; the other may run on into what
  // is visible anyway.
  const auto append = [&](Stretch r) {
    double& u = r.s != 0.0 ? r.s : r.e;
    u = fromStart ? u * s.e : (1.0 - s.s) * u + s.s;
    out.push_back(r);
  };
  if (line.front == 7 || line.behind == 7) return out.push_back(s);
  if (line.on == 3 || line.on == 5 || line.on == 6) {
    const int k = line.on == 6 ? 1 : line.on == 5 ? 2 : 0;
    if (o.edgeState[k] != kGeneral) return out.push_back(s);
    for (const Stretch& r : LeftByEdge(s.ps, s.pe, t, o, k)) append(r);
    return;
  }
  const int apex = line.on == 7 || coplanar ? -1 : Apex(line.front, line.on, line.behind);
  if (apex < 0) return out.push_back(s);
  const ZBR_PT3& a = o.pt[apex];
  const ZBR_PT3& next = o.pt[(apex + (o.clockwise ? 2 : 1)) % 3];
  const ZBR_PT3& before = o.pt[(apex + (o.clockwise ? 1 : 2)) % 3];
  Stretch r;
  if (RightOfLine(s.ps, s.pe, a, next, r)) append(r);
  if (RightOfLine(s.ps, s.pe, before, a, r)) append(r);
}

bool BoxesApart(const ZBR_PT3& p, const ZBR_PT3& q, const Triangle& o) {
  const auto apart = [](double a, double b, double lo, double hi) {
    return std::min(a, b) > hi + kPair.eps || lo > std::max(a, b) + kPair.eps;
  };
  return apart(p.x(), q.x(), o.min.x(), o.max.x()) || apart(p.y(), q.y(), o.min.y(), o.max.y());
}

// The parts of edge i of t that o does not hide.
Stretches LeftByTriangle(const Triangle& t, int i, const Triangle& o, const Sides& sides) {
  const ZBR_PT3& p = t.pt[i];
  const ZBR_PT3& q = t.pt[(i + 1) % 3];
  const Stretch whole = {p, q, 0.0, 1.0};
  const unsigned front = OfEdge(sides.front, i);
  const unsigned on = OfEdge(sides.on, i);
  const bool wall = o.state == kVertical;
  if (o.state == kInvalid || std::min(p.z(), q.z()) > o.max.z() || BoxesApart(p, q, o)) return {whole};
  if ((wall && on != 3) || front == 3 || (front != 0 && on != 0)) return {whole};
  Stretches out;
  if (on == 3 && wall) {
    out = LeftByWall(p, q, t, o);
  } else if (front == 0) {
    AppendOutside(whole, t, o, true, on == 3, out);
  } else {
    const ZBR_PT3 d = q - p;
    const double slope = o.normal.InnerProduct(d);
    if (std::abs(slope) < 1e-100) return {whole};
    const double u = -Over(o, p) / slope;
    const ZBR_PT3 x = p + d * u;
    const Stretch first = {p, x, 0.0, u};
    const Stretch second = {x, q, u, 1.0};
    const bool endInFront = front == 2;
    out.push_back(endInFront ? second : first);
    AppendOutside(endInFront ? first : second, t, o, endInFront, false, out);
  }
  std::stable_sort(out.begin(), out.end(), [](const Stretch& a, const Stretch& b) { return a.s < b.s; });
  Optimize(out, kPair.eps);
  return out;
}

// The edge of o that edge i of t is; -1 when none.
int SharedEdge(const Triangle& t, int i, const Triangle& o) {
  if (t.adjEdge[i] != -1) return t.adjEdge[i];
  const ZBR_PT3& p = t.pt[i];
  const ZBR_PT3& q = t.pt[(i + 1) % 3];
  for (int k = 0; k < 3; ++k) {
    const ZBR_PT3& a = o.pt[k];
    const ZBR_PT3& b = o.pt[(k + 1) % 3];
    if (o.adj[k] == t.idx && ((Same3(p, a) && Same3(q, b)) || (Same3(p, b) && Same3(q, a)))) return k;
  }
  return -1;
}

// Neighbours over edge i of t and k of o, neither of them vertical. True when o hides nothing more of t.
bool BesideSurface(Triangle& t, int i, const Triangle& o, int k, Sides& sides, bool& known) {
  if (YieldsTo(t, o, k)) Remove(t, i);
  const bool sameWay = Same3(t.pt[i], o.pt[k]);
  if (sameWay == (t.clockwise != o.clockwise)) return true;  // the surface goes on beyond the edge
  const double over = Over(o, t.pt[(i + 2) % 3]);
  if (o.clockwise ? over < 0.0 : over > 0.0) return true;  // folded back above o
  if (Within(over, kPair.eps)) return false;               // folded flat onto o: compared as any two
  const unsigned third = 1U << static_cast<unsigned>((i + 2) % 3);
  sides = {0, 7U & ~third, 0};
  (o.clockwise ? sides.front : sides.behind) = third;
  known = true;
  return false;
}

bool ByNeighbour(Triangle& t, int i, const Triangle& o, int k, Sides& sides, bool& known) {
  if (o.edgeState[k] == kVertical) return true;
  const bool wallT = t.state == kVertical;
  const bool wallO = o.state == kVertical;
  const auto byWall = [&] { Narrow(t, i, LeftByWall(t.pt[i], t.pt[(i + 1) % 3], t, o)); };
  const auto yield = [&] {
    if (YieldsTo(t, o, k)) Remove(t, i);
  };
  if (!wallT && !wallO) return BesideSurface(t, i, o, k, sides, known);
  if (!wallT) {
    if ((k == o.longEdge) == o.upper) byWall();
    return true;
  }
  if (!wallO) {
    Remove(t, i);
    if (!t.upper && i == t.longEdge) {
      Remove(t, (i + 1) % 3);
      Remove(t, (i + 2) % 3);
    }
    return true;
  }
  if (t.upper && !o.upper && i == t.longEdge && k == o.longEdge) {
    yield();
    return true;
  }
  if (t.upper && o.upper && i != t.longEdge && k != o.longEdge) {
    yield();
    return false;
  }
  byWall();
  return false;
}

}  // namespace

void HideByTriangle(Triangle& t, const Triangle& o) {
  if (&t == &o) return;
  Sides sides;
  bool known = false;
  bool handled[3] = {false, false, false};
  for (int i = 0; i < 3; ++i) {
    if (t.edgeState[i] != kGeneral || t.adj[i] != o.idx || t.shell != o.shell) continue;
    const int k = SharedEdge(t, i, o);
    if (k < 0) continue;
    if (ByNeighbour(t, i, o, k, sides, known)) return;
    if (t.seen[(i + 1) % 3].empty() && t.seen[(i + 2) % 3].empty()) return;
    handled[i] = true;
  }
  if (!known) {
    for (int k = 0; k < 3; ++k) {
      const double over = Over(o, t.pt[k]);
      (over > kPair.eps ? sides.front : over < -kPair.eps ? sides.behind : sides.on) |= 1U << static_cast<unsigned>(k);
    }
  }
  const bool oneOn = sides.on == 1 || sides.on == 2 || sides.on == 4;
  if (o.state == kVertical && (sides.on == 0 || oneOn)) return;
  if (o.clockwise) std::swap(sides.front, sides.behind);
  if (sides.front == 7 || (sides.behind == 0 && oneOn)) return;
  for (int i = 0; i < 3; ++i) {
    if (!handled[i] && !t.seen[i].empty()) Narrow(t, i, LeftByTriangle(t, i, o, sides));
  }
}

}  // namespace literal
