// Sound regions with whole coordinates and every kind of coincidence: areas add up, and are those of the cells where these are the
// same for both; crossings and loops are those of trying all pairs.
#include "fuzz/regions.h"

void Fuzz(Bytes& bytes) {
  const Cells a(bytes, false);
  const Cells b(bytes, false);
  const bool sameCells = bytes.Flag();
  const Skew skewA(bytes);
  const Skew skewB = sameCells ? skewA : Skew(bytes);
  const ZBR_PT shift = sameCells ? ZBR_PT() : bytes.Lattice(64, 1).xy() * 0.25 - ZBR_PT(8, 8);
  const LoopList A = Nest(a.Rings(skewA, {}, bytes));
  const LoopList B = Nest(b.Rings(skewB, shift, bytes));
  const auto describe = [&] { return Describe(A, B); };

  const BooleanResults got = RunAll(A, B);
  const std::array<double, 5> areas = AreasOf(got);
  int common = 0;
  for (int i = 0; i < Cells::kSide * Cells::kSide; ++i) common += a.At(i) && b.At(i) ? 1 : 0;
  Require(bool(AreasAgree(a.Area(), b.Area(), areas, 1e-8)), "areas add up", describe);
  Require(!sameCells || std::abs(areas[3] - common) < 1e-8, "what is in both are the common cells", describe);
  const auto expected = literal::BooleanLoops(literal::FromZbr(A), literal::FromZbr(B), {kOps.begin(), kOps.end()});
  const bool isFree = expected.manyAtOneSpot;  // then their ranking is
  Require(isFree || SameCrosses(got.crosses, expected.crosses), "crossings are those of all pairs", describe);
  for (std::size_t k = 0; k < kOps.size(); ++k) {
    Require(bool(IsNested(got.loops[k], kBooleanEps)), "results are nested", describe);
    Require(isFree || SameLoops(got.loops[k], expected.loops[k]), "loops are those of all pairs", describe);
  }
}
