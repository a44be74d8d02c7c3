// Segment sets beside trying all pairs.
#include <algorithm>
#include <vector>

#include <zbr/segments.h>
#include <zbr/tolerance.h>

#include "fuzz/bytes.h"

namespace {

using Segments = std::vector<ZBR_SEG3>;
using Raw = std::array<std::uint64_t, 6>;

bool Coincide(const ZBR_SEG3& a, const ZBR_SEG3& b) {
  return (a.s() == b.s() && a.e() == b.e()) || (a.s() == b.e() && a.e() == b.s());
}

Segments Without(const Segments& reference, const Segments& segments, bool repeats) {
  Segments kept;
  for (const ZBR_SEG3& s : segments) {
    const Segments& others = repeats ? kept : reference;
    if (std::none_of(others.begin(), others.end(), [&](const ZBR_SEG3& o) { return Coincide(o, s); })) kept.push_back(s);
  }
  return kept;
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const double eps[] = {1e-5, 0.0, 0.25};
  const int choice = bytes.Below(4);
  const ZBR_TmpEps guard(eps[choice % 3]);  // wild ones not with 0, to which squares of tiny numbers round
  Segments lists[2];
  for (Segments& list : lists) {
    list.resize(static_cast<std::size_t>(bytes.Below(30)));
    for (ZBR_SEG3& s : list) {
      ZBR_PT3 p[2];
      for (ZBR_PT3& end : p) end.xy() = bytes.Point(choice == 3), end.SetZ(bytes.Plain());
      s.Set(p[0], p[1]);
    }
  }
  const Segments unique = Without({}, lists[0], true);
  const Segments others = Without(lists[1], lists[0], false);
  const auto same = [](const ZBR_SEG3& a, const ZBR_SEG3& b) { return std::bit_cast<Raw>(a) == std::bit_cast<Raw>(b); };
  Segments got = lists[0];
  zbrRemoveDupSeg(got);
  Require(std::equal(got.begin(), got.end(), unique.begin(), unique.end(), same), "the first of each stays");
  std::vector<ZBR_SEG> plane, flat;  // those without height are as in the plane
  std::vector<ZBR_SEG3> level;
  for (const ZBR_SEG3& s : lists[0]) {
    plane.emplace_back(s.s().xy(), s.e().xy());
    level.emplace_back(ZBR_PT3(s.s().x(), s.s().y(), 0), ZBR_PT3(s.e().x(), s.e().y(), 0));
  }
  flat = plane;
  const Segments uniqueLevel = Without({}, level, true);
  zbrRemoveDupSeg(flat);
  Require(flat.size() == uniqueLevel.size(), "in the plane as in space");
  zbrRemoveSameSeg(flat, plane);
  zbrRemoveSameSeg(uniqueLevel, level);
  Require(plane.size() == level.size(), "those of the reference go from the plane");
  zbrRemoveSameSeg(lists[1], lists[0]);
  Require(std::equal(lists[0].begin(), lists[0].end(), others.begin(), others.end(), same), "those of the reference go");
}
