// Chaining of segments into polylines: states and limits. By named case: data/chains.txt.
#include <gtest/gtest.h>

#include <cmath>

#include "support/shapes.h"

namespace {

using Lines = std::vector<std::vector<ZBR_PT>>;

struct Chained {
  int open = 0;
  Lines lines;
  std::vector<ZBR_HL_OPT_PT> ends;
};

// Segments given by their ends, in pairs, chained within 0.001.
Chained ChainOf(const std::vector<ZBR_PT>& points) {
  const ZBR_TmpEps guard(0.001);
  Chained out;
  for (const ZBR_PT& p : points) out.ends.emplace_back().pt = p;
  out.lines = {{{9, 9}}};  // to be replaced
  out.open = zbrOptimizeSegs(out.ends, out.lines);
  return out;
}

TEST(Chain, StatesOfTheEnds) {
  const Chained got = ChainOf({{0, 0}, {1, 0}, {1, 0}, {1, 1}, {1, 1}, {1, 0}, {7, 7}, {7, 7}});
  const int states[] = {OPT_FIRST, OPT_PASSED, OPT_PASSED, OPT_FIRST, OPT_ZERO, OPT_ZERO, OPT_ZERO, OPT_ZERO};
  const int links[] = {-1, 2, 1, -1, -1, -1, -1, -1};
  const int vertices[] = {0, 1, 1, 2, 2, 1, -1, -1};
  for (std::size_t k = 0; k < 8; ++k) {
    EXPECT_EQ(got.ends[k].state, states[k]) << k;
    EXPECT_EQ(got.ends[k].link, links[k]) << k;
    EXPECT_EQ(got.ends[k].vertex, vertices[k]) << k;
  }
}

// A point within reach of two vertices joins the left one, though the right one is older, and of equally far left ones the older.
TEST(Chain, LeftmostVertexCountsThenOldest) {
  const Chained left = ChainOf({{1.0015, 0}, {2, 1}, {1, 0}, {0, 1}, {1.00075, 0}, {1, -1}});
  EXPECT_EQ(left.ends[4].vertex, left.ends[2].vertex);
  EXPECT_NE(left.ends[4].vertex, left.ends[0].vertex);
  for (const double older : {0.0, 0.0015}) {
    const Chained level = ChainOf({{1, older}, {2, 1}, {1, 0.0015 - older}, {0, 1}, {1, 0.00075}, {1, -1}});
    EXPECT_EQ(level.ends[4].vertex, level.ends[0].vertex);
  }
}

// A drawing of any size chains alike, to the bit when the factor is a power of two, and every polyline knows its segments.
TEST(Chain, RelativeToleranceAndSources) {
  const Chained drawing = ChainOf({{0, 0},
                                   {50, 0},
                                   {50.0004, 0},
                                   {100, 0},
                                   {100, 60},
                                   {100, 0},
                                   {7, 7},
                                   {8, 8},
                                   {8, 8},
                                   {7, 7},
                                   {100, 60},
                                   {100.0004, 60},
                                   {20, 20},
                                   {30, 20},
                                   {30, 20},
                                   {30, 30},
                                   {20, 20},
                                   {30, 30}});
  const std::vector<std::vector<int>> expected = {{0, 2, 5}, {6}, {12, 14, 17}};
  for (const double factor : {1.0, 0x1p-10, 0x1p40, 0.001, 1e300, 1e-300}) {
    std::vector<ZBR_HL_OPT_PT> ends = drawing.ends;
    for (ZBR_HL_OPT_PT& end : ends) end.pt = end.pt * factor;
    std::vector<std::vector<ZBR_PT>> lines;
    std::vector<std::vector<int>> entered;
    EXPECT_EQ(zbrOptimizeSegs(ends, lines, entered), 2);
    EXPECT_EQ(entered, expected) << factor;
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].size(), 3U);
    EXPECT_TRUE(lines[0][1].x() == 100 * factor && lines[2][2].y() == 30 * factor);
    EXPECT_EQ(zbrOptimizeSegs(ends, lines, entered, 1e-4 * factor), 3) << "the gap of 4e-4 stays";
  }
}

TEST(Chain, PointsThatAreNotFiniteDoNoHarm) {
  const Chained got = ChainOf({{0, 0}, {NAN, 0}, {INFINITY, 1}, {-INFINITY, 1}, {1, 1}, {2, 2}, {1e308, 0}, {-1e308, 0}});
  EXPECT_GE(got.lines.size(), 1U);
}

}  // namespace
