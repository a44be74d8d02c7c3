// Nesting and point location on any rings.
#include "fuzz/rings.h"
#include "loops/check.h"
#include "support/expect.h"

void Fuzz(Bytes& bytes) {
  const double eps[] = {1e-5, 1e-9, 0.125};  // not 0, with which it is rounding that decides
  const double tolerance = eps[bytes.Below(3)];
  const ZBR_TmpEps guard(tolerance);
  const bool wild = bytes.Below(4) == 0;
  std::vector<Ring> rings = AnyRings(bytes, wild);
  for (Ring& ring : Drawn(bytes, "cells").a) rings.push_back(std::move(ring));
  LoopList tree = MakeLoops(rings);
  zbrMakeLoopTree(tree);
  const ZBR_LOOP_LOCATOR region(tree);
  region.IsInside(bytes.Point(true));
  if (wild) return;
  Require(bool(Holds(zbr::NestingFault(tree, tolerance))), "the tree is nested", [&] { return ToText(tree); });
  for (const Ring& ring : rings) {
    const ZBR_PT p = bytes.Point(false);
    const auto loop = MakeLoop(ring);
    std::vector<ZBR_POS_PT_PT> pos;
    const ZBR_POLY_INSIDE got = zbrIsInside(p, *loop, pos);
    Require(got == ZBR_PI_UNKNOWN || ZBR_LOOP_LOCATOR(*loop).IsInside(p) == got, "the locator agrees", [&] {
      return ToText({MakeLoop({p}), loop});
    });
  }
}
