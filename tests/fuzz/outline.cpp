// Outlines of small scenes: sound regions, of the area that the triangles allow, holding the places that triangles cover, and the
// same whatever the order of the triangles.
#include <algorithm>

#include "fuzz/rings.h"
#include "fuzz/scenes.h"
#include "support/expect.h"

namespace {

using Shells = std::vector<ZBR_HL_SHELL>;

void CheckOutline(const Shells& shells) {
  const LoopList& outline = shells[0].outline_all;
  const auto describe = [&] { return ToText(outline); };
  const RegionJudge judge(FacesOf(shells), {}, kFillNonZero);
  Require(!judge.IsWrong(judge.Judge(ZBR_BOOL_OR, RingsOf(outline)), 1e-8 * judge.Extent()), "holds what is covered", describe);
  Require(bool(IsNested(outline, 0.0)), "nested", describe);
}

// What of an edge is outline is told twice: by the mark on the edge, and by asking for what has no triangle beside it.
bool IsMarkedRight(const ZBR_HL_TRI& t, int i, const Shells& shells) {
  std::vector<ZBR_HL_INTERVAL> parts = {{t.pt[i], t.pt[(i + 1) % 3], 0.0, 1.0}};
  for (const ZBR_HL_SHELL& shell : shells) ZBR_HiddenLine::OutLine_TriByShell(t, i, shell, parts);
  double share = 0.0;
  for (const ZBR_HL_INTERVAL& part : parts) share += part.e.t - part.s.t;
  return t.IsTriInvalid() || t.IsTriVertical() || t.profile[i] == (share < 1e-4 ? 0 : share > 1.0 - 1e-4 ? 2 : 1);
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const auto points = static_cast<Points>(std::max(0, bytes.Below(6) - 3));
  Random random(static_cast<std::uint64_t>(bytes.Below(256)));
  Bytes again = bytes;
  Drawing drawing = DecodeScene(bytes, points);
  Shells shells = drawing.Shells();
  const auto count = static_cast<unsigned>(shells.size());
  ZBR_HiddenLine::OutLineObj(shells.data(), count);
  if (points != Points::kWild) CheckOutline(shells);

  Drawing other = DecodeScene(again, points);
  Disguise(other, random);
  Shells otherShells = other.Shells();
  ZBR_HiddenLine::HiddenLineObj(otherShells.data(), nullptr, count);
  const double gap = NetArea(shells[0].outline_all) - NetArea(otherShells[0].outline_all);
  Require(points != Points::kLattice || std::abs(gap) < 1e-6, "the same in another order");
  ForEachTriangle(otherShells, [&](const ZBR_HL_TRI& t) {
    for (int i = 0; i < 3; ++i) Require(points != Points::kLattice || IsMarkedRight(t, i, otherShells), "marks and walks agree");
  });

  if (count == 1) return;
  const double whole = NetArea(shells[0].outline_all);
  const bool both = bytes.Flag();
  ZBR_HiddenLine::HiddenLineObj(shells.data(), nullptr, 1);
  ZBR_HiddenLine::HiddenLineObj(shells.data() + 1, nullptr, count - 1);
  ZBR_HiddenLine::HiddenLineObjByObj(shells.data(), shells.data() + 1, 1, count - 1, both);
  if (points != Points::kLattice) return;
  const double areas[] = {NetArea(shells[0].outline_all), NetArea(shells[1].outline_all)};
  const double taken[] = {areas[0] - NetArea(shells[0].outline), areas[1] - NetArea(shells[1].outline)};
  const double common = areas[0] + areas[1] - whole;
  const auto isNear = [](double a, double b) { return std::abs(a - b) < 1e-4; };
  Require(isNear(taken[0], 0.0) || (isNear(taken[0], common) && isNear(taken[1], 0.0)), "the farther one loses what is common");
  Require(isNear(taken[1], 0.0) || (both && isNear(taken[1], common)), "the other one only if it is to");
  Require(!both || isNear(taken[0] + taken[1], common), "one of them loses it");
}
