// Which triangle is held against which: neighbours first, then all others from the nearest to the farthest.
#include <algorithm>
#include <map>
#include <numeric>

#include "literal/hidden_line.h"

namespace literal {

namespace {

constexpr double kMargin = 0.001;

bool BoxesMeet(const ZBR_PT3& min, const ZBR_PT3& max, const ZBR_PT3& otherMin, const ZBR_PT3& otherMax) {
  return otherMin.x() - kMargin <= max.x() && otherMin.y() - kMargin <= max.y() && min.x() <= otherMax.x() + kMargin &&
         min.y() <= otherMax.y() + kMargin;
}

void SetExtents(Shell& shell) {
  if (shell.tris.empty()) return;
  shell.min = shell.tris[0].min;
  shell.max = shell.tris[0].max;
  for (const Triangle& t : shell.tris) {
    shell.min = {std::min(shell.min.x(), t.min.x()), std::min(shell.min.y(), t.min.y()), std::min(shell.min.z(), t.min.z())};
    shell.max = {std::max(shell.max.x(), t.max.x()), std::max(shell.max.y(), t.max.y()), std::max(shell.max.z(), t.max.z())};
  }
}

// Positions of a shell's triangles, the highest first.
std::vector<std::size_t> ByHeight(const Shell& shell) {
  std::vector<std::size_t> order(shell.tris.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return shell.tris[a].max.z() > shell.tris[b].max.z(); });
  return order;
}

void HideByAll(Triangle& t, const Shell& shell, const std::vector<std::size_t>& order, const std::vector<const Triangle*>& taken) {
  for (const std::size_t k : order) {
    const Triangle& u = shell.tris[k];
    if (!t.visible || u.max.z() < t.min.z()) return;
    if (u.state == kInvalid || u.skip || std::find(taken.begin(), taken.end(), &u) != taken.end()) continue;
    if (BoxesMeet(t.min, t.max, u.min, u.max)) HideByTriangle(t, u);
  }
}

void HideBySelf(Shell& shell) {
  const std::vector<std::size_t> order = ByHeight(shell);
  std::map<int, const Triangle*> byIdx;
  for (const Triangle& t : shell.tris) byIdx.emplace(t.idx, &t);
  for (Triangle& t : shell.tris) {
    std::vector<const Triangle*> taken;
    for (int i = 0; i < 3 && t.visible; ++i) {
      if (t.adj[i] == -1) continue;
      const Triangle* neighbour = byIdx.at(t.adj[i]);
      if (neighbour->state == kInvalid || std::find(taken.begin(), taken.end(), neighbour) != taken.end()) continue;
      taken.push_back(neighbour);
      HideByTriangle(t, *neighbour);
    }
    HideByAll(t, shell, order, taken);
  }
}

void HideByOther(Shell& a, const Shell& b) {
  if (a.tris.empty() || b.tris.empty()) return;
  if (a.min.z() > b.max.z() || !BoxesMeet(a.min, a.max, b.min, b.max)) return;
  const std::vector<std::size_t> order = ByHeight(b);
  for (Triangle& t : a.tris) {
    if (!t.visible || t.min.z() > b.max.z() || !BoxesMeet(t.min, t.max, b.min, b.max)) continue;
    HideByAll(t, b, order, {});
  }
}

}  // namespace

std::vector<Shell> FromZbr(const ZBR_HL_SHELL* shells, unsigned count) {
  std::vector<Shell> out(count);
  for (unsigned s = 0; s < count; ++s) {
    out[s].tris.resize(shells[s].count);
    for (unsigned k = 0; k < shells[s].count; ++k) {
      const ZBR_HL_TRI& from = shells[s].tris[k];
      Triangle& to = out[s].tris[k];
      to.idx = shells[s].tris[0].idx == -1 ? static_cast<int>(k) : from.idx;
      to.shell = static_cast<int>(s);
      to.skip = from.skip;
      for (int i = 0; i < 3; ++i) {
        to.pt[i] = from.pt[i];
        to.adj[i] = from.adj[i];
        to.adjEdge[i] = from.adj_edge[i];
        to.draw[i] = from.dispj[i];
      }
    }
  }
  return out;
}

void HideAll(std::vector<Shell>& shells, const Tol& tol) {
  for (Shell& shell : shells) {
    for (Triangle& t : shell.tris) Classify(t, tol);
    SetExtents(shell);
    HideBySelf(shell);
  }
  for (Shell& a : shells) {
    for (const Shell& b : shells) {
      if (&a != &b) HideByOther(a, b);
    }
  }
}

}  // namespace literal
