// Loop against loop by samples, and the loop tree.
#include "literal/loops.h"

#include <algorithm>

namespace literal {

namespace {

// +1 when p lies inside b, -1 outside, 0 undecided or on the boundary.
int Sample(const ZBR_PT& p, const Loop& b, const Tol& tol) {
  std::vector<ZBR_POS_PT_PT> pos;
  const ZBR_POLY_INSIDE r = IsInside(p, b, pos, tol);
  if (r == ZBR_PI_IN) return 1;
  return r == ZBR_PI_OUT ? -1 : 0;
}

// Samples one edge of a between the vertices of b that lie on it.
int SampleBetween(const ZBR_PT& from, const ZBR_PT& to, const Loop& b, const Tol& tol) {
  std::vector<double> stops{0.0, 1.0};
  for (const ZBR_PT& v : b.pt) {
    double t = 0.0;
    if (zbrIsOnSeg(v, from, to, nullptr, &t) && 0.0 < t && t < 1.0) stops.push_back(t);
  }
  std::sort(stops.begin(), stops.end());
  for (std::size_t k = 1; stops.size() > 2 && k < stops.size(); ++k) {
    const int r = Sample(from + (to - from) * ((stops[k - 1] + stops[k]) / 2.0), b, tol);
    if (r != 0) return r;
  }
  return 0;
}

// The first sample of a that is clearly inside (+1) or outside (-1) b: vertices, edge midpoints, stretches between b's vertices.
int SampleInside(const Loop& a, const Loop& b, const Tol& tol) {
  for (const ZBR_PT& v : a.pt) {
    if (const int r = Sample(v, b, tol); r != 0) return r;
  }
  const std::size_t n = a.pt.size();
  for (std::size_t i = 0; i < n; ++i) {
    if (const int r = Sample((a.pt[(i + n - 1) % n] + a.pt[i]) / 2.0, b, tol); r != 0) return r;
  }
  for (std::size_t i = 0; i < n; ++i) {
    if (const int r = SampleBetween(a.pt[(i + n - 1) % n], a.pt[i], b, tol); r != 0) return r;
  }
  return 0;
}

ZBR_LOOP_REL RelationToHoles(const Loop& a, const Loop& b, const Tol& tol) {
  for (const auto& child : b.children) {
    const ZBR_POLY_REL r = CheckInclude(a, *child, tol);
    if (r == ZBR_PR_SAME) return ZBR_LR_SAME_AS_HOLE;
    if (r == ZBR_PR_A_IN_B) return ZBR_LR_IN_HOLE;
  }
  return ZBR_LR_INSIDE;
}

void InsertLoop(Loops& forest, const std::shared_ptr<Loop>& loop, const Tol& tol) {
  for (const auto& root : forest) {
    if (IsInside(*loop, *root, tol)) {
      InsertLoop(root->children, loop, tol);
      return;
    }
  }
  for (std::size_t i = 0; i < forest.size();) {
    if (IsInside(*forest[i], *loop, tol)) {
      loop->children.push_back(forest[i]);
      forest.erase(forest.begin() + static_cast<std::ptrdiff_t>(i));
    } else {
      ++i;
    }
  }
  forest.push_back(loop);
}

void FlattenLoopTree(Loops& list) {
  for (;;) {
    Loops lifted;
    for (const auto& top : list) {
      for (const auto& child : top->children) {
        lifted.insert(lifted.end(), child->children.begin(), child->children.end());
        child->children.clear();
      }
    }
    if (lifted.empty()) return;
    list.insert(list.end(), lifted.begin(), lifted.end());
  }
}

}  // namespace

void Loop::Setup() {
  area = ZBR_POLYGON(pt).get_area();
  xmin = xmax = pt.empty() ? 0.0 : pt[0].x();
  ymin = ymax = pt.empty() ? 0.0 : pt[0].y();
  for (const ZBR_PT& p : pt) {
    if (p.x() > xmax) xmax = p.x();
    if (p.y() > ymax) ymax = p.y();
    if (p.x() < xmin) xmin = p.x();
    if (p.y() < ymin) ymin = p.y();
  }
}

void Loop::Reverse() {
  std::reverse(pt.begin(), pt.end());
  area = -area;
}

std::shared_ptr<Loop> FromRing(const std::vector<ZBR_PT>& ring) {
  auto loop = std::make_shared<Loop>();
  loop->pt = ring;
  loop->Setup();
  return loop;
}

Loops FromZbr(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  Loops copies;
  for (const auto& loop : loops) {
    copies.push_back(FromRing(loop->pt()));
    Loop& copy = *copies.back();
    copy.level = loop->level();
    if (loop->IsSetuped()) copy.area = loop->area();
    copy.children = FromZbr(loop->children());
  }
  return copies;
}

bool IsInside(const Loop& a, const Loop& b, const Tol& tol) {
  const double e = tol.eps;
  if (!(b.xmin - e <= a.xmax && b.ymin - e <= a.ymax && a.xmin - e <= b.xmax && a.ymin - e <= b.ymax)) return false;
  return SampleInside(a, b, tol) >= 0;
}

ZBR_POLY_REL CheckInclude(const Loop& a, const Loop& b, const Tol& tol) {
  const double e = tol.eps;
  if (b.xmin > a.xmax + e || b.ymin > a.ymax + e || a.xmin > b.xmax + e || a.ymin > b.ymax + e) return ZBR_PR_APART;
  const int ab = SampleInside(a, b, tol);
  if (ab > 0) return ZBR_PR_A_IN_B;
  const int ba = SampleInside(b, a, tol);
  if (ba > 0) return ZBR_PR_B_IN_A;
  return ab == 0 && ba == 0 ? ZBR_PR_SAME : ZBR_PR_APART;
}

ZBR_LOOP_REL CheckIncludeInnermost(const Loop& a, const Loops& loops, const Tol& tol) {
  ZBR_LOOP_REL answer = ZBR_LR_OUTSIDE;
  for (const auto& loop : loops) {
    const ZBR_POLY_REL r = CheckInclude(a, *loop, tol);
    if (r == ZBR_PR_SAME) return ZBR_LR_SAME;
    if (r != ZBR_PR_A_IN_B) continue;
    answer = RelationToHoles(a, *loop, tol);
    if (answer != ZBR_LR_IN_HOLE) return answer;
  }
  return answer;
}

void MakeLoopTree(Loops& loops, const Tol& tol) {
  if (loops.empty()) return;
  const auto size = [](const Loop& loop) { return std::isfinite(loop.area) ? std::abs(loop.area) : 0.0; };
  for (const auto& loop : loops) loop->level = 0;
  std::stable_sort(loops.begin(), loops.end(), [&](const auto& a, const auto& b) { return size(*a) > size(*b); });
  const auto degenerate = std::find_if(loops.begin(), loops.end(), [&](const auto& l) { return Within(size(*l), tol.eps); });
  if (degenerate == loops.begin()) return;
  loops.erase(degenerate, loops.end());

  Loops forest;
  for (const auto& loop : loops) loop->children.clear();
  for (const auto& loop : loops) InsertLoop(forest, loop, tol);
  FlattenLoopTree(forest);
  for (const auto& loop : forest) {
    loop->level = 0;
    if (loop->area < 0.0) loop->Reverse();
    for (const auto& child : loop->children) {
      child->level = 1;
      if (child->area > 0.0) child->Reverse();
    }
  }
  loops = std::move(forest);
}

}  // namespace literal
