// Tracing: paths that alternate between A and B, loops from paths, polygons that no crossing touches.
#include <set>

#include <zbr/tolerance.h>

#include "literal/boolean.h"

namespace literal {

namespace {

struct Walk {
  std::vector<ZBR_CROSS>& crosses;
  const std::vector<int>* sorted;
  bool forward[2];  // along A, along B
};

// The next crossing of the same polygon along a side that is not done and of the direction that ends a stretch there; -1 if none.
int NextAlong(const Walk& w, int from, int side) {
  const std::vector<int>& list = w.sorted[side];
  const ZBR_CROSS& start = w.crosses[static_cast<std::size_t>(from)];
  const std::int64_t loop = SideOf(start, side).loop.value;
  const int n = static_cast<int>(list.size());
  const auto onLoop = [&](int k) {
    return SideOf(w.crosses[static_cast<std::size_t>(list[static_cast<std::size_t>(k)])], side).loop.value == loop;
  };
  int lo = SideOf(start, side).seq;
  int hi = lo;
  while (lo > 0 && onLoop(lo - 1)) --lo;
  while (hi + 1 < n && onLoop(hi + 1)) ++hi;
  const ZBR_CROSS_DIR wanted = side == 0 ? ZBR_CROSS_TO_RIGHT : ZBR_CROSS_TO_LEFT;
  int k = SideOf(start, side).seq;
  for (int step = lo; step <= hi; ++step) {
    k = w.forward[side] ? k + 1 : k - 1;
    if (k > hi) k = lo;
    if (k < lo) k = hi;
    const int i = list[static_cast<std::size_t>(k)];
    if (i == from) return -1;
    const ZBR_CROSS& c = w.crosses[static_cast<std::size_t>(i)];
    if (!c.done && c.dir == wanted) return i;
  }
  return -1;
}

// One path from s; empty when it does not close.
std::vector<int> TracePath(const Walk& w, int s) {
  const auto done = [&](int i) -> bool& { return w.crosses[static_cast<std::size_t>(i)].done; };
  std::vector<int> path = {s};
  int x = NextAlong(w, s, 0);
  if (x == -1) done(s) = true;
  while (x != -1) {
    const int y = NextAlong(w, x, 1);
    if (y == -1) {
      done(s) = done(x) = true;
      break;
    }
    path.push_back(x);
    path.push_back(y);
    done(x) = done(y) = true;
    if (y == s) return path;
    x = NextAlong(w, y, 0);
  }
  return {};
}

std::vector<std::vector<int>> ChainPaths(const Walk& w) {
  SetFollowingCrossDone(w.crosses, 0, w.sorted[0], ZBR_CROSS_TO_RIGHT, w.forward[0]);
  SetFollowingCrossDone(w.crosses, 1, w.sorted[1], ZBR_CROSS_TO_LEFT, w.forward[1]);
  std::vector<std::vector<int>> paths;
  for (;;) {
    int start = -1;
    for (const int i : w.sorted[1]) {
      const ZBR_CROSS& c = w.crosses[static_cast<std::size_t>(i)];
      if (!c.done && c.dir == ZBR_CROSS_TO_LEFT) {
        start = i;
        break;
      }
    }
    if (start == -1) return paths;
    if (std::vector<int> path = TracePath(w, start); !path.empty()) paths.push_back(std::move(path));
  }
}

void AppendPoint(Loop& loop, const ZBR_PT& p) {
  if (loop.pt.empty() || !(p == loop.pt.back())) loop.pt.push_back(p);
}

void AppendStretch(Loop& loop, const std::vector<ZBR_PT>& ring, const ZBR_CROSS& c1, const ZBR_CROSS& c2, int side, bool forward,
                   const Tol& tol) {
  const int n = static_cast<int>(ring.size());
  const auto folded = [n](double pos) { return pos == n ? 0.0 : pos; };
  const auto whole = [](double pos) { return pos == std::floor(pos); };
  double p1 = SideOf(c1, side).pos;
  double p2 = SideOf(c2, side).pos;
  const int seq1 = SideOf(c1, side).seq;
  const int seq2 = SideOf(c2, side).seq;
  if (p2 - tol.eps <= p1 && p1 <= p2 + tol.eps && (forward ? seq1 + 1 == seq2 : seq2 + 1 == seq1)) return;
  AppendPoint(loop, c1.pt);
  if (forward ? seq1 < seq2 && p2 <= p1 : seq2 < seq1 && p1 <= p2) return;  // tied
  // Only now: the end of a ring is near its beginning on the plane, but a whole turn away from it along the ring.
  p1 = folded(p1);
  p2 = folded(p2);

  int first = 0;
  int last = 0;
  bool empty = false;
  const int step = forward ? 1 : n - 1;
  if (forward) {
    first = (static_cast<int>(std::ceil(p1)) + (whole(p1) ? 1 : 0)) % n;
    last = (static_cast<int>(std::floor(p2)) - (whole(p2) ? 1 : 0) + n) % n;
    empty = p2 > p1 || (p2 == 0.0 && p1 != 0.0);
  } else {
    first = (static_cast<int>(std::floor(p1)) - (whole(p1) ? 1 : 0) + n) % n;
    last = (static_cast<int>(std::ceil(p2)) + (whole(p2) ? 1 : 0)) % n;
    empty = p2 < p1 || (p1 == 0.0 && p2 != 0.0);
  }
  if ((last + step) % n == first && empty) return;
  for (int k = first;; k = (k + step) % n) {
    AppendPoint(loop, ring[static_cast<std::size_t>(k)]);
    if (k == last) break;
  }
}

void TraceLoops(const Loops& A, const Loops& B, const Walk& w, Loops& result, const Tol& tol) {
  for (const std::vector<int>& path : ChainPaths(w)) {
    const auto loop = std::make_shared<Loop>();
    for (std::size_t k = 1; k < path.size(); ++k) {
      const ZBR_CROSS& c1 = w.crosses[static_cast<std::size_t>(path[k - 1])];
      const ZBR_CROSS& c2 = w.crosses[static_cast<std::size_t>(path[k])];
      const int side = c1.dir == ZBR_CROSS_TO_LEFT ? 0 : 1;
      const Loop& polygon = PolygonOf(side == 0 ? A : B, SideOf(c1, side).loop);
      AppendStretch(*loop, polygon.pt, c1, c2, side, w.forward[side], tol);
    }
    if (loop->pt.size() <= 2) continue;
    loop->Setup();
    if (!Within(loop->area, tol.eps)) result.push_back(loop);
  }
}

// Whether a polygon of family A (isB: of B) stays, for A op B.
bool Keeps(int op, bool isB, bool isHole, ZBR_LOOP_REL rel) {
  const bool outside = rel == ZBR_LR_IN_HOLE || rel == ZBR_LR_OUTSIDE;
  const bool sameKind = rel == (isHole ? ZBR_LR_SAME_AS_HOLE : ZBR_LR_SAME);
  const bool otherKind = rel == (isHole ? ZBR_LR_SAME : ZBR_LR_SAME_AS_HOLE);
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return isB ? rel == ZBR_LR_INSIDE : outside || otherKind;
    case ZBR_BOOL_B_MINUS_A:
      return isB ? outside || otherKind : rel == ZBR_LR_INSIDE;
    case ZBR_BOOL_OR:
      return outside || (!isB && sameKind);
    case ZBR_BOOL_AND:
      return rel == ZBR_LR_INSIDE || (!isB && sameKind);
    case ZBR_BOOL_XOR:
      return outside || rel == ZBR_LR_INSIDE;
    default:
      return false;
  }
}

void AddUncrossed(const Loops& own, const Loops& other, const std::vector<ZBR_CROSS>& crosses, int side, int op, Loops& result,
                  const Tol& tol) {
  std::set<std::int64_t> touched;
  for (const ZBR_CROSS& c : crosses) touched.insert(SideOf(c, side).loop.value);
  for (int i = 0; i < static_cast<int>(own.size()); ++i) {
    const int holes = static_cast<int>(own[static_cast<std::size_t>(i)]->children.size());
    for (int j = 0; j <= holes; ++j) {
      const ZBR_CROSS_LOOP key(i, j);
      const Loop& polygon = PolygonOf(own, key);
      if (touched.count(key.value) > 0 || !Finite(polygon.pt)) continue;
      if (!Keeps(op, side == 1, j > 0, CheckIncludeInnermost(polygon, other, tol))) continue;
      result.push_back(std::make_shared<Loop>(polygon));
      result.back()->children.clear();
    }
  }
}

void SetForward(Walk& w, int op) {
  w.forward[0] = op != ZBR_BOOL_B_MINUS_A && op != ZBR_BOOL_AND;
  w.forward[1] = op != ZBR_BOOL_A_MINUS_B && op != ZBR_BOOL_AND && op != ZBR_BOOL_XOR;
}

void ClearDone(std::vector<ZBR_CROSS>& crosses) {
  for (ZBR_CROSS& c : crosses) c.done = false;
}

}  // namespace

BooleanResult BooleanLoops(const Loops& A, const Loops& B, const std::vector<ZBR_BOOLEAN_OPE>& ops) {
  const Tol tol(1e-9);
  const ZBR_TmpEps guard(tol.eps);
  BooleanResult out;
  std::vector<int> sorted[2];
  GetLoopsCross(A, B, out.crosses, tol);
  out.manyAtOneSpot = OptimizeCross(A, B, out.crosses, sorted, true, tol);
  for (const ZBR_BOOLEAN_OPE op : ops) {
    ClearDone(out.crosses);
    Loops result;
    Walk w = {out.crosses, sorted, {true, true}};
    SetForward(w, op);
    if (out.crosses.size() > 1) TraceLoops(A, B, w, result, tol);
    if (op == ZBR_BOOL_XOR && out.crosses.size() > 1) {
      ClearDone(out.crosses);
      SetForward(w, ZBR_BOOL_B_MINUS_A);
      TraceLoops(A, B, w, result, tol);
    }
    AddUncrossed(A, B, out.crosses, 0, op, result, tol);
    AddUncrossed(B, A, out.crosses, 1, op, result, tol);
    MakeLoopTree(result, tol);
    out.loops.push_back(std::move(result));
  }
  return out;
}

}  // namespace literal
