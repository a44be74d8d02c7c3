// Clipping of segments and polylines against trying every edge, and the cases by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "support/random_shapes.h"

namespace {

using Pieces = std::vector<ZBR_SEG3>;
using Polylines = std::vector<std::vector<ZBR_PT3>>;

struct Stretch {
  double from = 0.0;
  double to = 0.0;
  bool inside = false;
};

// Within an odd number of rings, or on one.
bool IsIn(const ZBR_PT& p, const LoopList& region) {
  std::vector<ZBR_POS_PT_PT> pos;
  int around = 0;
  for (const Ring& ring : RingsOf(region)) {
    const ZBR_POLY_INSIDE place = zbrIsInside(p, *MakeLoop(ring), pos);
    if (place == ZBR_PI_ON_EDGE || place == ZBR_PI_ON_VERTEX) return true;
    around += place == ZBR_PI_IN ? 1 : 0;
  }
  return around % 2 == 1;
}

// Where the segment, or its line a little beyond its ends, meets an edge, and where vertices lie on it.
std::vector<double> Meetings(const ZBR_SEG3& segment, const LoopList& region) {
  const ZBR_PT s = segment.s().xy();
  const ZBR_PT e = segment.e().xy();
  std::vector<double> at = {0.0, 1.0};
  for (const Ring& ring : RingsOf(region)) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ZBR_PT edge = ring[(i + 1) % ring.size()] - ring[i];
      const double det = (e - s).OuterProduct(edge);
      const double u = (ring[i] - s).OuterProduct(e - s) / det;
      if (det != 0.0 && u >= 0.0 && u <= 1.0) at.push_back((ring[i] - s).OuterProduct(edge) / det);
      const double t = (ring[i] - s).InnerProduct(e - s) / s.Distance2(e);
      if (ring[i] == s + (e - s) * t) at.push_back(t);
    }
  }
  const double beyond = 1e-3 / s.Distance(e);
  at.erase(std::remove_if(at.begin(), at.end(), [&](double t) { return !(t >= -beyond && t <= 1.0 + beyond); }), at.end());
  std::sort(at.begin(), at.end());
  return at;
}

// What clipping should give. Not clear where the tolerance decides: on short segments, where two meetings are close, and along
// edges that run almost the same way.
struct Expected {
  std::vector<Stretch> stretches;
  bool clear = true;
};
Expected ExpectedOf(const ZBR_SEG3& segment, const LoopList& region) {
  const ZBR_PT s = segment.s().xy();
  const ZBR_PT e = segment.e().xy();
  Expected expected;
  expected.clear = s.Distance(e) > 1e-3;
  double from = 0.0;
  for (const double to : Meetings(segment, region)) {
    const double step = (to - from) * s.Distance(e);
    if (std::abs(step) < 1e-9) continue;
    expected.clear &= step > 1e-3;
    const bool inside = IsIn(s + (e - s) * ((from + to) / 2), region);
    expected.clear &= inside == IsIn(s + (e - s) * ((3 * from + to) / 4), region);
    if (expected.stretches.empty() || expected.stretches.back().inside != inside) expected.stretches.push_back({from, to, inside});
    expected.stretches.back().to = from = to;
  }
  return expected;
}

// To the last bit.
bool Same(const ZBR_PT3& a, const ZBR_PT3& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}
bool Same(const Polylines& a, const Polylines& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& l, const auto& m) {
    return std::equal(l.begin(), l.end(), m.begin(), m.end(), [](const ZBR_PT3& p, const ZBR_PT3& q) { return Same(p, q); });
  });
}
bool Same(const Pieces& a, const Pieces& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const ZBR_SEG3& s, const ZBR_SEG3& r) { return Same(s.s(), r.s()) && Same(s.e(), r.e()); });
}

struct Clip {
  Pieces sides[2];  // outside, inside
};
Clip ClipOne(const ZBR_SEG3& segment, const LoopList& region) {
  Clip clip;
  const int count = zbrClipSeg(segment, region, clip.sides[1], &clip.sides[0]);
  EXPECT_EQ(count, static_cast<int>(clip.sides[1].size()));
  return clip;
}

struct Piece {
  ZBR_SEG3 segment;
  bool inside = false;
};
// The pieces in their order along the segment: each starts where the one before it ends, to the bit, and the sides take turns.
std::vector<Piece> InOrder(const ZBR_SEG3& segment, const Clip& clip) {
  std::vector<Piece> pieces;
  const std::size_t count = clip.sides[0].size() + clip.sides[1].size();
  bool inside = !clip.sides[1].empty() && Same(clip.sides[1][0].s(), segment.s());
  for (std::size_t n = 0; n < count; ++n, inside = !inside) {
    const ZBR_PT3 at = n == 0 ? segment.s() : pieces.back().segment.e();
    const Pieces& side = clip.sides[inside ? 1 : 0];
    if (n / 2 == side.size() || !Same(side[n / 2].s(), at)) break;
    pieces.push_back({side[n / 2], inside});
  }
  EXPECT_TRUE(pieces.size() == count && count > 0 && Same(pieces.back().segment.e(), segment.e())) << "pieces do not follow";
  return pieces;
}

void ExpectPieces(const ZBR_SEG3& segment, const LoopList& region, const std::vector<Piece>& pieces) {
  const Expected expected = ExpectedOf(segment, region);
  if (!expected.clear) return;
  SCOPED_TRACE(testing::Message() << std::hexfloat << segment.s().x() << ' ' << segment.s().y() << " to " << segment.e().x() << ' '
                                  << segment.e().y() << " by " << ToText(region));
  ASSERT_EQ(pieces.size(), expected.stretches.size());
  for (std::size_t k = 0; k < pieces.size(); ++k) {
    ASSERT_EQ(pieces[k].inside, expected.stretches[k].inside) << "piece " << k;
    const ZBR_PT3 end = segment.s() + (segment.e() - segment.s()) * expected.stretches[k].to;  // x, y and z alike
    ASSERT_LE(end.Distance(pieces[k].segment.e()), 1e-9 * (1.0 + segment.s().Distance(segment.e()))) << "piece " << k;
  }
}

// Points on vertices, on edges, in line with edges, anywhere.
std::vector<ZBR_PT3> DrawLine(const std::vector<Ring>& rings, Random& random) {
  std::vector<ZBR_PT3> line;
  for (int n = 1 + Below(random, 80); n > 0; --n) {
    const Ring& ring = rings[random() % rings.size()];
    const std::size_t i = random() % ring.size();
    const double along[] = {0.0, 1.0, 0.5, -1.0, 2.0, 0.25, Unit(random)};
    ZBR_PT p = ring[i] + (ring[(i + 1) % ring.size()] - ring[i]) * along[Below(random, 7)];
    if (Below(random, 3) == 0) p = p + ZBR_PT{Unit(random) - 0.5, Unit(random) - 0.5} * 4.0;
    if (line.empty() || !(line.back().xy() == p)) line.emplace_back(p.x(), p.y(), 8.0 * Unit(random));
  }
  return line;
}

class ClipOf : public testing::TestWithParam<Family> {};

TEST_P(ClipOf, AgreesWithTryingAllEdges) {
  std::size_t cut = 0;
  for (int seed = 0; seed < Scaled(80); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(static_cast<std::uint64_t>(seed));
    const OperandPair pair = GetParam().draw(random);
    std::vector<Ring> rings = Disguise(pair.a, random);
    if (rings.empty()) continue;
    LoopList region = Nest(rings);
    if (seed % 4 == 0) {  // loops over each other
      for (auto& loop : Nest(pair.b)) region.push_back(loop);
      rings.insert(rings.end(), pair.b.begin(), pair.b.end());
    }
    std::vector<ZBR_PT3> line = DrawLine(rings, random);
    if (seed % 3 == 0 && line.size() > 2) line.push_back(line.front());
    if (seed % 5 == 0) line[line.size() / 2].SetY(std::nan(""));
    Pieces segments;
    Clip sum;
    Polylines joined[2];
    int last = -1;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
      segments.emplace_back(line[i], line[i + 1]);
      const std::vector<Piece> pieces = InOrder(segments[i], ClipOne(segments[i], region));
      ExpectPieces(segments[i], region, pieces);
      ASSERT_FALSE(HasFailure());
      for (const auto& [piece, inside] : pieces) {
        const int side = inside ? 1 : 0;
        sum.sides[side].push_back(piece);
        if (side != last) joined[side].push_back({piece.s()});
        joined[side].back().push_back(piece.e());
        last = side;
      }
    }
    cut += sum.sides[0].size() + sum.sides[1].size() - segments.size();
    Clip many;
    zbrClipSegs(segments, region, many.sides[1], &many.sides[0]);
    ASSERT_TRUE(Same(many.sides[0], sum.sides[0]) && Same(many.sides[1], sum.sides[1]));
    Polylines sides[2];
    std::vector<int> of[2];
    const int count = zbrClipPolylines({{}, line, {line[0]}}, region, sides[1], &sides[0], &of[1], &of[0]);
    ASSERT_EQ(count, static_cast<int>(sides[1].size()));
    ASSERT_EQ(of[0], std::vector<int>(joined[0].size(), 1));
    ASSERT_EQ(of[1], std::vector<int>(joined[1].size(), 1));
    ASSERT_TRUE(Same(sides[0], joined[0]) && Same(sides[1], joined[1]));
    // Repeated points change nothing, be they on the boundary or not.
    if (seed % 5 == 0 || line.size() < 2) continue;
    for (std::size_t i = line.size(); i > 0; --i) line.insert(line.begin() + static_cast<std::ptrdiff_t>(i), line[i - 1]);
    Polylines again[2];
    zbrClipPolyline(line, region, again[1], &again[0]);
    for (Polylines& side : again) {
      for (auto& piece : side) piece.erase(std::unique(piece.begin(), piece.end()), piece.end());
    }
    ASSERT_TRUE(Same(again[0], joined[0]) && Same(again[1], joined[1]));
  }
  EXPECT_GT(cut, 200U);
}

INSTANTIATE_TEST_SUITE_P(Families, ClipOf, testing::ValuesIn([] {
                           std::vector<Family> regions;
                           std::copy_if(Families().begin(), Families().end(), std::back_inserter(regions),
                                        [](const Family& f) { return f.regions; });
                           return regions;
                         }()),
                         [](const auto& family) { return std::string(family.param.name); });

TEST(Clip, CasesByName) {
  const double nan = std::nan("");
  const double inf = std::numeric_limits<double>::infinity();
  const struct {
    const char* name;
    ZBR_PT3 s, e;
    std::vector<double> inside;  // from, to, from, to ...
  } rows[] = {
      {"across the hole", {-2, 2, 0}, {6, 2, 8}, {0.25, 0.375, 0.625, 0.75}},
      {"along an outer side", {-2, 0, 0}, {6, 0, 8}, {0.25, 0.75}},
      {"along an outer side, within the tolerance", {-2, 4.000003, 0}, {6, 4.000003, 8}, {0.25, 0.75}},
      {"along the hole's side", {1, 1, 0}, {3, 1, 8}, {0, 1}},
      {"along the hole's side, then into the material", {0, 1, 0}, {4, 1, 8}, {0, 1}},
      {"past an outer corner", {-1, 1, 0}, {1, -1, 8}, {}},
      {"past the hole's corner", {0, 2, 0}, {2, 0, 8}, {0, 1}},
      {"from corner to corner", {0, 0, 0}, {4, 4, 8}, {0, 0.25, 0.75, 1}},
      {"up to a side from outside", {-4, 2, 0}, {0, 2, 8}, {}},
      {"up to a side from inside", {0.5, 2, 0}, {0, 2, 8}, {0, 1}},
      {"up to a side from the hole", {2, 2, 0}, {3, 2, 8}, {}},
      {"upright inside", {0.5, 0.5, 0}, {0.5, 0.5, 9}, {0, 1}},
      {"upright in the hole", {2, 2, 0}, {2, 2, 9}, {}},
      {"upright on the boundary", {1, 2, 0}, {1, 2, 9}, {0, 1}},
      {"tiny, across a side", {-2e-6, 2, 0}, {1e-6, 2, 8}, {0, 1}},
      {"a point", {3.5, 2, 1}, {3.5, 2, 1}, {0, 1}},
      {"not a number", {0.5, 0.5, nan}, {0.5, 1, 0}, {}},
      {"infinite", {0.5, 0.5, 0}, {inf, 0.5, 0}, {}},
      {"very long", {-1e9 + 2, 0.5, 0}, {1e9 + 2, 0.5, 8}, {0.5 - 1e-9, 0.5 + 1e-9}},
  };
  const LoopList region = ParseRegion("0 0, 4 0, 4 4, 0 4; 1 1, 1 3, 3 3, 3 1");
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Clip clip = ClipOne({row.s, row.e}, region);
    const Pieces& inside = clip.sides[1];
    ASSERT_EQ(inside.size(), row.inside.size() / 2);
    InOrder({row.s, row.e}, clip);
    for (std::size_t k = 0; k < row.inside.size(); ++k) {
      const ZBR_PT3 end = k % 2 == 0 ? inside[k / 2].s() : inside[k / 2].e();
      EXPECT_LE(end.Distance(row.s + (row.e - row.s) * row.inside[k]), 1e-6);
    }
    // A loop alone, in any sense of rotation, is the same region; nothing but what is inside need be asked for.
    region[0]->reverse();
    Pieces alone;
    zbrClipSeg({row.s, row.e}, region[0], alone, nullptr);
    EXPECT_TRUE(Same(alone, inside));
    region[0]->reverse();
  }
}

TEST(Clip, RegionsWithoutRingsHoldNothing) {
  const Pieces segments = {{{0, 0, 0}, {1, 0, 1}}, {{0, 0, 0}, {0, 0, 1}}};
  const LoopList regions[] = {{}, {nullptr}, ParseLoops("0 0, 1 0"), MakeLoops({Ring()})};
  for (const LoopList& region : regions) {
    Clip clip;
    EXPECT_EQ(zbrClipSegs(segments, region, clip.sides[1], &clip.sides[0]), 0);
    EXPECT_TRUE(Same(clip.sides[0], segments));
    EXPECT_EQ(zbrClipSegs(segments, region.empty() ? nullptr : region[0], clip.sides[1], nullptr), 0);
    Polylines inside;
    EXPECT_EQ(zbrClipPolyline({{0, 0, 0}, {1, 0, 1}}, region, inside, nullptr), 0);
  }
}

}  // namespace
