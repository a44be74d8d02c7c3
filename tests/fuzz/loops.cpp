// Nesting and point location on any rings, against trying all pairs.
#include "fuzz/regions.h"

namespace {

void Location(const Ring& ring, const ZBR_PT& p, const literal::Tol& tol) {
  const auto loop = MakeLoop(ring);
  std::vector<ZBR_POS_PT_PT> pos;
  const ZBR_POLY_INSIDE got = zbrIsInside(p, *loop, pos);
  const auto describe = [&] { return ToText({MakeLoop({p}), loop}); };
  Require(got == literal::IsInside(p, *literal::FromRing(ring), pos, tol), "the place is that of all pairs", describe);
  Require(got == ZBR_PI_UNKNOWN || ZBR_LOOP_LOCATOR(*loop).IsInside(p) == got, "the locator agrees", describe);
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const double eps[] = {1e-5, 1e-9, 0.125};  // not 0, with which it is rounding that decides
  const literal::Tol tol(eps[bytes.Below(3)]);
  const ZBR_TmpEps guard(tol.eps);
  const bool wild = bytes.Below(4) == 0;
  std::vector<Ring> rings = AnyRings(bytes, wild);
  for (Ring& ring : Cells(bytes, true).Rings(Skew(bytes), {}, bytes)) rings.push_back(std::move(ring));
  LoopList tree = MakeLoops(rings);
  literal::Loops expected = literal::FromZbr(tree);
  zbrMakeLoopTree(tree);
  const ZBR_LOOP_LOCATOR region(tree);
  region.IsInside(bytes.Point(true));
  if (wild) return;
  literal::MakeLoopTree(expected, tol);
  Require(bool(SameLoops(tree, expected)), "the tree is that of all pairs", [&] { return ToText(MakeLoops(rings)); });
  for (const Ring& ring : rings) Location(ring, bytes.Point(false), tol);
}
