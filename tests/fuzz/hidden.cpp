// Hidden lines of small scenes: the driver and the walk over its quadtree agree to the bit; visible and hidden stretches make up
// each edge.
#include <algorithm>

#include "fuzz/scenes.h"

namespace {

using Shells = std::vector<ZBR_HL_SHELL>;

// The list is sorted, disjoint and within the edge; what it leaves of a drawable edge is among the hidden segments.
bool MakesUpEdge(const ZBR_HL_TRI& t, int i, const std::vector<ZBR_SEG>& hidden) {
  const ZBR_PT p = t.pt[i].xy();
  const ZBR_PT along = t.pt[(i + 1) % 3].xy() - p;
  const auto isHidden = [&](double from, double to) {
    const ZBR_PT s = p + along * from;
    const ZBR_PT e = p + along * to;
    const auto isIt = [&](const ZBR_SEG& h) { return (h.s() == s && h.e() == e) || (h.s() == e && h.e() == s); };
    return s.Distance(e) < 1e-4 || std::any_of(hidden.begin(), hidden.end(), isIt);
  };
  double from = 0.0;
  for (const ZBR_HL_INTERVAL& v : t.intvl_v[i]) {
    if (!(v.s.t >= from) || !(v.e.t > v.s.t) || !(v.e.t <= 1.0) || !isHidden(from, v.s.t)) return false;
    from = v.e.t;
  }
  return !t.dispj[i] || isHidden(from, 1.0);
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const auto points = static_cast<Points>(std::max(0, bytes.Below(5) - 2));
  Bytes again = bytes;
  Drawing driven = DecodeScene(bytes, points);
  Drawing walked = DecodeScene(again, points);
  Shells shells = driven.Shells();
  Shells walkedShells = walked.Shells();
  const auto count = static_cast<unsigned>(shells.size());
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), count);
  WalkTrees(walkedShells);
  Require(StateText(shells) == StateText(walkedShells), "driver and walk agree");

  std::vector<std::vector<ZBR_PT>> lines;
  zbrOptimizeHiddenLine(shells.data(), lines, count);
  std::vector<ZBR_SEG> hidden;
  for (int mode = 3; mode >= 0; --mode) ZBR_HiddenLine::GetHiddenLineObj(shells.data(), hidden, mode, count);
  if (points == Points::kWild) return;
  ForEachTriangle(shells, [&](const ZBR_HL_TRI& t) {
    for (int i = 0; i < 3; ++i) Require(MakesUpEdge(t, i, hidden), "visible + hidden = whole");
  });
}
