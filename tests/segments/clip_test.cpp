// Clipping of segments and polylines: forms, limits, random ones. By named case: data/clips.txt.
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

// Pieces go on across joints and repeated points, each line by itself.
TEST(Clip, Polylines) {
  const LoopList region = ParseRegion("0 0, 4 0, 4 4, 0 4; 1 1, 1 3, 3 3, 3 1");
  const std::vector<ZBR_PT3> lines[] = {{{-1, 0.5, 0}, {2, 0.5, 0}, {2, 0.5, 0}, {2, 2, 0}, {2, 0.5, 0}, {6, 0.5, 0}},
                                        {{0.5, 0.5, 1}},
                                        {{0.5, 0.5, 1}, {0.5, 0.5, 1}, {0.75, 0.5, 1}},
                                        {{4, 2, 0}, {4, 2, 0}, {5, 2, 0}}};
  Polylines sides[2];
  std::vector<int> of[2];
  EXPECT_EQ(zbrClipPolylines({lines[0], lines[1], lines[2], lines[3]}, region, sides[1], &sides[0], &of[1], &of[0]), 3);
  EXPECT_EQ(of[0], std::vector<int>({0, 0, 0, 3}));
  EXPECT_EQ(of[1], std::vector<int>({0, 0, 2}));
  std::string text;
  for (const Polylines& side : sides) {
    for (const auto& piece : side) {
      for (const ZBR_PT3& p : piece)
        text += std::to_string(std::lround(2 * p.x())) + "," + std::to_string(std::lround(2 * p.y())) + " ";
      text += "; ";
    }
  }
  EXPECT_EQ(text,                                                  // doubled
            "-2,1 0,1 ; 4,2 4,4 4,2 ; 8,1 12,1 ; 8,4 8,4 10,4 ; "  // outside
            "0,1 4,1 4,1 4,2 ; 4,2 4,1 8,1 ; 1,1 1,1 2,1 ; ");
}

TEST(Clip, RegionsWithoutRingsHoldNothing) {
  const Pieces segments = {{{0, 0, 0}, {1, 0, 1}}, {{0, 0, 0}, {0, 0, 1}}};
  const LoopList regions[] = {{}, {nullptr}, ParseLoops("0 0, 1 0"), MakeLoops({Ring()})};
  for (const LoopList& region : regions) {
    Pieces inside, outside;
    EXPECT_EQ(zbrClipSegs(segments, region, inside, &outside), 0);
    EXPECT_TRUE(Same(outside, segments));
    EXPECT_EQ(zbrClipSegs(segments, region.empty() ? nullptr : region[0], inside, nullptr), 0);
    Polylines lines;
    EXPECT_EQ(zbrClipPolyline({{0, 0, 0}, {1, 0, 1}}, region, lines, nullptr), 0);
  }
}

}  // namespace
