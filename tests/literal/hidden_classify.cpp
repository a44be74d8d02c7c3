// States of a triangle and its edges before anything is hidden.
#include <algorithm>
#include <array>

#include "literal/hidden_line.h"

namespace literal {

namespace {

void SetPlane(Triangle& t, const Tol& tol) {
  t.normal = (t.pt[1] - t.pt[0]).OuterProduct(t.pt[2] - t.pt[0]);
  t.d = -t.pt[0].InnerProduct(t.normal);
  const double length2 = t.normal.InnerProduct(t.normal);
  if (length2 < tol.eps2 * tol.eps2) {
    t.normal = {};
  } else {
    const double length = std::sqrt(length2);
    t.d = t.d / length;
    t.normal = t.normal / length;
  }
  t.clockwise = !(t.normal.z() > 0.0);
}

void SetExtents(Triangle& t) {
  t.min = t.max = t.pt[0];
  for (const ZBR_PT3& p : {t.pt[1], t.pt[2]}) {
    t.min = {std::min(t.min.x(), p.x()), std::min(t.min.y(), p.y()), std::min(t.min.z(), p.z())};
    t.max = {std::max(t.max.x(), p.x()), std::max(t.max.y(), p.y()), std::max(t.max.z(), p.z())};
  }
}

int HeightOverLine(const ZBR_PT3& p, const ZBR_PT3& a, const ZBR_PT3& b, double eps) {
  const bool alongX = std::abs(a.x() - b.x()) > std::abs(a.y() - b.y());
  const double t = alongX ? (p.x() - a.x()) / (b.x() - a.x()) : (p.y() - a.y()) / (b.y() - a.y());
  const double over = p.z() - (a.z() + (b.z() - a.z()) * t);
  return over > eps ? 1 : over < -eps ? -1 : 0;
}

// The coordinate along which a vertical triangle is wider.
double Wide(const Triangle& t, int vertex) {
  return t.max.x() - t.min.x() >= t.max.y() - t.min.y() ? t.pt[vertex].x() : t.pt[vertex].y();
}

// endOn: the edge seen as a point, or -1.
void SetVertical(Triangle& t, int endOn, const Tol& tol) {
  t.state = kVertical;
  std::array<int, 3> order = {0, 1, 2};
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return Wide(t, a) > Wide(t, b); });
  const double low = Wide(t, order[2]);
  t.ratio = std::clamp((Wide(t, order[1]) - low) / (Wide(t, order[0]) - low), 0.0, 1.0);
  if (endOn >= 0) {
    t.longEdge = (endOn + 2) % 3;
    t.upper = t.pt[(endOn + 1) % 3].z() > t.pt[endOn].z();
    return;
  }
  const int i = order[0];
  const int j = order[2];
  t.longEdge = j == (i + 1) % 3 ? i : j;
  t.upper = HeightOverLine(t.pt[(t.longEdge + 2) % 3], t.pt[t.longEdge], t.pt[(t.longEdge + 1) % 3], tol.eps) > 0;
}

// Leaves to a vertical triangle only its upper rim: the long edge, or the two others where they pass above it and are drawn. Where
// one of the two is not drawn, the long edge stands in below it.
void KeepUpperRim(Triangle& t, int endOn) {
  const int L = t.longEdge;
  const int n = (L + 1) % 3;
  const int p = (L + 2) % 3;
  if (endOn >= 0) {  // two edges over the same line; the end-on edge is n
    t.edgeState[t.upper && t.draw[p] ? L : p] = kInvalid;
    return;
  }
  if (t.upper && t.draw[n] && t.draw[p]) {
    t.edgeState[L] = kInvalid;
    return;
  }
  if (!t.upper || !t.draw[n]) t.edgeState[n] = kInvalid;
  if (!t.upper || !t.draw[p]) t.edgeState[p] = kInvalid;
  if (!t.upper || t.draw[n] == t.draw[p] || !t.draw[L]) return;
  const double r = Wide(t, n) > Wide(t, L) ? t.ratio : 1.0 - t.ratio;
  const ZBR_PT3 middle = t.pt[L] + (t.pt[n] - t.pt[L]) * r;
  if (t.draw[n]) t.seen[L] = {{t.pt[L], middle, 0.0, r}};
  if (t.draw[p]) t.seen[L] = {{middle, t.pt[n], r, 1.0}};
}

void Invalidate(Triangle& t) {
  t.state = kInvalid;
  std::fill(std::begin(t.edgeState), std::end(t.edgeState), static_cast<int>(kInvalid));
}

// One edge is a point, so that the other two lie on each other: one of them may still draw.
void ClassifyNeedle(Triangle& t) {
  int first = -1;
  int second = -1;
  bool endOn = false;
  for (int i = 0; i < 3; ++i) {
    if (t.edgeState[i] == kInvalid) continue;
    (first < 0 ? first : second) = i;
    endOn = endOn || t.edgeState[i] == kVertical;
  }
  if (endOn) return Invalidate(t);
  t.state = kInvalid;
  t.edgeState[t.draw[first] ? second : first] = kInvalid;
}

void SetStates(Triangle& t, const Tol& tol) {
  int valid = 0;
  int vertical = 0;
  int endOn = -1;
  for (int i = 0; i < 3; ++i) {
    const ZBR_PT3& p = t.pt[i];
    const ZBR_PT3& q = t.pt[(i + 1) % 3];
    const ZBR_PT3 v = q - p;
    t.edgeState[i] = kInvalid;
    if (Within(v.InnerProduct(v), tol.eps2)) continue;
    ++valid;
    t.edgeState[i] = kGeneral;
    if (!Near(p.x(), q.x(), tol.eps) || !Near(p.y(), q.y(), tol.eps)) continue;
    t.edgeState[i] = kVertical;
    endOn = i;
    ++vertical;
  }
  t.state = kGeneral;
  if (valid < 2) return Invalidate(t);
  if (valid == 2) return ClassifyNeedle(t);
  const bool noNormal = t.normal.x() == 0.0 && t.normal.y() == 0.0 && t.normal.z() == 0.0;
  if (vertical >= 2 || noNormal) return Invalidate(t);
  if (endOn < 0 && !(std::abs(t.normal.z()) <= tol.eps)) return;
  SetVertical(t, endOn, tol);
  KeepUpperRim(t, endOn);
}

}  // namespace

void Classify(Triangle& t, const Tol& tol) {
  SetExtents(t);
  SetPlane(t, tol);
  for (Stretches& list : t.seen) list.clear();
  SetStates(t, tol);
  t.visible = false;
  for (int i = 0; i < 3; ++i) {
    if (t.edgeState[i] != kGeneral || !t.draw[i]) continue;
    if (t.seen[i].empty()) t.seen[i] = {{t.pt[i], t.pt[(i + 1) % 3], 0.0, 1.0}};
    t.visible = true;
  }
}

}  // namespace literal
