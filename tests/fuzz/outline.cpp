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
  std::vector<const ZBR_HL_TRI*> faces;
  double sum = 0.0, largest = 0.0, slack = 1e-6;
  ForEachTriangle(shells, [&](const ZBR_HL_TRI& t) {
    if (t.IsTriInvalid() || t.IsTriVertical()) return;
    faces.push_back(&t);
    const double area = std::abs((t.pt[1] - t.pt[0]).OuterProductXY(t.pt[2] - t.pt[0])) / 2.0;
    sum += area;
    largest = std::max(largest, area);
    for (const ZBR_PT3& p : t.pt) slack = std::max(slack, 1e-6 * p.xy().Length2());
  });
  Require(NetArea(outline) <= sum + slack, "no larger than the triangles together", describe);
  Require(NetArea(outline) >= largest - slack, "no smaller than one triangle", describe);
  Require(bool(IsNested(outline, 0.0)), "nested", describe);
  Require(IsRegion(RingsOf(outline)), "simple", describe);
  const ZBR_LOOP_LOCATOR locator(outline);
  for (int i = 0; i < 64; ++i) {
    const ZBR_PT p(i % 8 - 0.4142, i / 8 - 0.7321);
    double clearance = -INFINITY;
    for (const ZBR_HL_TRI* t : faces) clearance = std::max(clearance, Clearance(*t, p));
    Require(clearance < 1e-4 || locator.IsInside(p) != ZBR_PI_OUT, "holds what is covered", describe);
    Require(clearance > -1e-4 || locator.IsInside(p) != ZBR_PI_IN, "holds nothing else", describe);
  }
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
