// Loops, inclusion and nesting in their literal form: every pair of loops, every vertex, no index, no shortcut.
#pragma once

#include <memory>
#include <vector>

#include <zbr/loop.h>

#include "literal/plane.h"

namespace literal {

struct Loop {
  std::vector<ZBR_PT> pt;
  std::vector<std::shared_ptr<Loop>> children;
  int level = -1;
  double area = 0.0;
  double xmin = 0.0, xmax = 0.0, ymin = 0.0, ymax = 0.0;

  void Setup();
  void Reverse();
};
using Loops = std::vector<std::shared_ptr<Loop>>;

std::shared_ptr<Loop> FromRing(const std::vector<ZBR_PT>& ring);
// Deep copies. Areas and boxes that are cached are taken over: the area of a reversed ring is that of its former order, negated.
Loops FromZbr(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

ZBR_POLY_INSIDE IsInside(const ZBR_PT& pt, const Loop& loop, std::vector<ZBR_POS_PT_PT>& pos, const Tol& tol);
bool IsInside(const Loop& a, const Loop& b, const Tol& tol);
ZBR_POLY_REL CheckInclude(const Loop& a, const Loop& b, const Tol& tol);
// The relation to the innermost container: a loop in a hole may lie on an island farther down the list.
ZBR_LOOP_REL CheckIncludeInnermost(const Loop& a, const Loops& loops, const Tol& tol);

void MakeLoopTree(Loops& loops, const Tol& tol);

}  // namespace literal
