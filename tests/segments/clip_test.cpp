// Clipping of segments and polylines, case by case.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "support/shapes.h"

namespace {

using Pieces = std::vector<ZBR_SEG3>;
using Polylines = std::vector<std::vector<ZBR_PT3>>;

// To the last bit.
bool Same(const ZBR_PT3& a, const ZBR_PT3& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
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

// The pieces follow each other along the segment, to the bit, and the sides take turns.
void ExpectInOrder(const ZBR_SEG3& segment, const Clip& clip) {
  const std::size_t count = clip.sides[0].size() + clip.sides[1].size();
  ZBR_PT3 at = segment.s();
  bool inside = !clip.sides[1].empty() && Same(clip.sides[1][0].s(), at);
  for (std::size_t n = 0; n < count; ++n, inside = !inside) {
    const Pieces& side = clip.sides[inside ? 1 : 0];
    ASSERT_TRUE(n / 2 < side.size() && Same(side[n / 2].s(), at)) << "piece " << n;
    at = side[n / 2].e();
  }
  EXPECT_TRUE(count > 0 && Same(at, segment.e()));
}

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
    ExpectInOrder({row.s, row.e}, clip);
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

// Pieces go on across joints and repeated points, each line by itself.
TEST(Clip, Polylines) {
  const LoopList region = ParseRegion("0 0, 4 0, 4 4, 0 4; 1 1, 1 3, 3 3, 3 1");
  const std::vector<ZBR_PT3> lines[] = {{{-1, 0.5, 0}, {2, 0.5, 0}, {2, 0.5, 0}, {2, 2, 0}, {2, 0.5, 0}, {6, 0.5, 0}},
                                        {{0.5, 0.5, 1}},
                                        {{0.5, 0.5, 1}, {0.5, 0.5, 1}, {0.75, 0.5, 1}}};
  Polylines sides[2];
  std::vector<int> of[2];
  EXPECT_EQ(zbrClipPolylines({lines[0], lines[1], lines[2]}, region, sides[1], &sides[0], &of[1], &of[0]), 3);
  EXPECT_EQ(of[0], std::vector<int>({0, 0, 0}));
  EXPECT_EQ(of[1], std::vector<int>({0, 0, 2}));
  std::string text;
  for (const Polylines& side : sides) {
    for (const auto& piece : side) {
      for (const ZBR_PT3& p : piece)
        text += std::to_string(std::lround(2 * p.x())) + "," + std::to_string(std::lround(2 * p.y())) + " ";
      text += "; ";
    }
  }
  EXPECT_EQ(text,                                   // doubled
            "-2,1 0,1 ; 4,2 4,4 4,2 ; 8,1 12,1 ; "  // outside
            "0,1 4,1 4,1 4,2 ; 4,2 4,1 8,1 ; 1,1 1,1 2,1 ; ");
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
