// Clipping: the pieces make up the segment and are the same in all forms; those of a sound region lie where they are said to lie.
#include <algorithm>
#include <deque>

#include <zbr/segments.h>

#include "fuzz/rings.h"

namespace {

using Pieces = std::vector<ZBR_SEG3>;

bool Same(const ZBR_PT3& a, const ZBR_PT3& b) {
  return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}
bool Same(const Pieces& a, const Pieces& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const ZBR_SEG3& s, const ZBR_SEG3& r) { return Same(s.s(), r.s()) && Same(s.e(), r.e()); });
}

// Whether the pieces, put back in order, follow one another from the segment's start to its end.
bool MakeUp(const ZBR_SEG3& segment, const Pieces& inside, const Pieces& outside) {
  std::deque<ZBR_SEG3> sides[] = {{inside.begin(), inside.end()}, {outside.begin(), outside.end()}};
  ZBR_PT3 at = segment.s();
  while (!sides[0].empty() || !sides[1].empty()) {
    auto& next = sides[!sides[0].empty() && Same(sides[0].front().s(), at) ? 0 : 1];
    if (next.empty() || !Same(next.front().s(), at)) return false;
    at = next.front().e();
    next.pop_front();
  }
  return Same(at, segment.e());
}

// Whether the longer pieces lie inside or near the boundary, or else outside, where in one place they may touch.
bool Lie(const Pieces& pieces, const LoopList& region, bool inside) {
  const ZBR_TmpEps guard(inside ? 1e-3 : 1e-7);
  const ZBR_LOOP_LOCATOR locator(region);
  return std::all_of(pieces.begin(), pieces.end(), [&](const ZBR_SEG3& piece) {
    const auto isOut = [&](double t) { return locator.IsInside((piece.s() + (piece.e() - piece.s()) * t).xy()) == ZBR_PI_OUT; };
    return piece.s().DistanceXY(piece.e()) < 1e-2 || (inside ? !isOut(0.37) : isOut(0.37) || isOut(0.61));
  });
}

double Length(const std::vector<ZBR_PT3>& line) {
  double sum = 0.0;
  for (std::size_t i = 1; i < line.size(); ++i) sum += line[i - 1].DistanceXY(line[i]);
  return sum;
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const bool sound = bytes.Below(4) != 0;
  const bool wild = bytes.Below(4) == 0;
  const LoopList region = Nest(sound ? Drawn(bytes, "blocks").a : AnyRings(bytes, wild));
  const auto describe = [&] { return ToText(region); };
  std::vector<ZBR_PT3> line(static_cast<std::size_t>(2 + bytes.Below(8)));
  for (ZBR_PT3& p : line) p.xy() = bytes.Flag() ? bytes.Lattice(13, 1).xy() * 0.5 : bytes.Point(wild), p.SetZ(bytes.Plain());
  Pieces segments, inside, outside, allInside, allOutside;
  double length = 0.0;
  for (std::size_t i = 1; i < line.size(); ++i) {
    const ZBR_SEG3& s = segments.emplace_back(line[i - 1], line[i]);
    Pieces in, out;
    Require(zbrClipSeg(s, region, in, &out) == static_cast<int>(in.size()), "the number of inside pieces", describe);
    if (wild) continue;
    Require(MakeUp(s, in, out), "the pieces make up the segment", describe);
    Require(!sound || Lie(in, region, true), "inside is inside", describe);
    Require(!sound || Lie(out, region, false), "outside is outside", describe);
    inside.insert(inside.end(), in.begin(), in.end());
    outside.insert(outside.end(), out.begin(), out.end());
    for (const ZBR_SEG3& piece : in) length += piece.s().DistanceXY(piece.e());
  }
  std::vector<std::vector<ZBR_PT3>> lines[2];
  zbrClipSegs(segments, region, allInside, &allOutside);
  zbrClipPolyline(line, region, lines[0], &lines[1]);
  if (wild) return;
  Require(Same(allInside, inside) && Same(allOutside, outside), "many segments at once are clipped alike", describe);
  double rest = Length(line) - length;
  for (const auto& part : lines[0]) length -= Length(part);
  for (const auto& part : lines[1]) rest -= Length(part);
  Require(std::abs(length) + std::abs(rest) < 1e-3, "a polyline is clipped as its segments are", describe);
}
