// Rings of any shape and, in half of the runs, any coordinates: outer loops of results run counter-clockwise and stay within the
// operands' box, and areas add up.
#include "fuzz/rings.h"
#include "support/expect.h"

namespace {

// Whether p lies between points of the rings on either axis, but for rounding.
bool IsBetween(const ZBR_PT& p, const std::vector<Ring>& rings) {
  int sides = 0;
  for (const Ring& ring : rings) {
    for (const ZBR_PT& q : ring) {
      const ZBR_PT d = q - p;
      const double slack = 1e-8 * (1.0 + q.Length() + p.Length());
      sides |= (d.x() >= -slack ? 1 : 0) | (d.x() <= slack ? 2 : 0) | (d.y() >= -slack ? 4 : 0) | (d.y() <= slack ? 8 : 0);
    }
  }
  return sides == 15;
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const bool wild = bytes.Flag();
  const bool nested = bytes.Flag();
  std::vector<Ring> rings = AnyRings(bytes, wild);
  const LoopList A = nested ? Nest(rings) : MakeLoops(rings);
  const std::vector<Ring> others = AnyRings(bytes, wild);
  const LoopList B = nested ? Nest(others) : MakeLoops(others);
  rings.insert(rings.end(), others.begin(), others.end());
  const auto describe = [&] { return Describe(A, B); };
  zbrCheckPolyBoolean(A, B, true);
  const BooleanResults got = RunAll(A, B);
  for (const LoopList& loops : got.loops) {
    if (wild || loops.empty() || std::abs(loops[0]->area()) <= kBooleanEps) continue;  // operands without area are passed on
    for (const auto& loop : loops) Require(loop->level() == 0 && loop->area() > 0.0, "outer loops run counter-clockwise", describe);
    for (const Ring& ring : RingsOf(loops)) {
      const bool isInBox = std::all_of(ring.begin(), ring.end(), [&](const ZBR_PT& p) { return IsBetween(p, rings); });
      Require(isInBox, "results stay within the box", describe);
    }
  }
}
