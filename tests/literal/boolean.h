// Crossing detection, clean-up and tracing in their literal form: every edge of A against every edge of B.
//
// One rule has no literal form: how three and more crossings at one spot are ranked is free as long as the regions come out right.
// Such inputs are reported (`manyAtOneSpot`), so that a test can compare their areas instead of their bits.
#pragma once

#include <vector>

#include <zbr/boolean.h>

#include "literal/loops.h"

namespace literal {

void GetPolygonCross(const Loop& A, const Loop& B, ZBR_CROSS_LOOP keyA, ZBR_CROSS_LOOP keyB, std::vector<ZBR_CROSS>& crosses,
                     bool closedB, const Tol& tol);
void GetLoopsCross(const Loops& A, const Loops& B, std::vector<ZBR_CROSS>& crosses, const Tol& tol);

// Crossings after clean-up and the two sorted index lists. Returns whether more than two crossings met at one spot.
bool OptimizeCross(const Loops& A, const Loops& B, std::vector<ZBR_CROSS>& crosses, std::vector<int>* sorted, bool bothClosed,
                   const Tol& tol);
void SetFollowingCrossDone(std::vector<ZBR_CROSS>& crosses, int side, const std::vector<int>& sorted, ZBR_CROSS_DIR dir,
                           bool forward);

struct BooleanResult {
  std::vector<Loops> loops;  // one list per operation
  std::vector<ZBR_CROSS> crosses;
  bool manyAtOneSpot = false;
};
BooleanResult BooleanLoops(const Loops& A, const Loops& B, const std::vector<ZBR_BOOLEAN_OPE>& ops);

inline const ZBR_CROSS_AB& SideOf(const ZBR_CROSS& c, int side) {
  return side == 0 ? c.a : c.b;
}
inline ZBR_CROSS_AB& SideOf(ZBR_CROSS& c, int side) {
  return side == 0 ? c.a : c.b;
}
inline const Loop& PolygonOf(const Loops& list, ZBR_CROSS_LOOP key) {
  const Loop& loop = *list[static_cast<std::size_t>(key.loop())];
  return key.poly() == 0 ? loop : *loop.children[static_cast<std::size_t>(key.poly() - 1)];
}

}  // namespace literal
