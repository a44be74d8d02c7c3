// Chaining of segments into polylines: against the literal form, and the cases by name.
#include <gtest/gtest.h>

#include <cmath>

#include "differential/compare.h"
#include "literal/hidden_line.h"

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

std::string Text(const Lines& lines) {
  std::string text;
  for (const auto& line : lines) {
    for (const ZBR_PT& p : line) {
      text += (&p == line.data() ? "" : ", ") + std::to_string(std::lround(p.x())) + " " + std::to_string(std::lround(p.y()));
    }
    text += ";";
  }
  return text;
}

TEST(Chain, CasesByName) {
  const struct {
    const char* name;
    std::vector<ZBR_PT> points;
    int open;
    const char* lines;
  } rows[] = {
      {"nothing", {}, 0, ""},
      {"shorter than the tolerance", {{0, 0}, {0.0009, 0}}, 0, ""},
      {"joint within the tolerance, straight", {{0, 0}, {1, 0}, {1.0005, 0}, {2, 0}}, 1, "0 0, 2 0;"},
      {"joint beyond the tolerance", {{0, 0}, {1, 0}, {1.002, 0}, {2, 0}}, 2, "0 0, 1 0;1 0, 2 0;"},
      {"square", {{0, 0}, {4, 0}, {4, 4}, {4, 0}, {4, 4}, {0, 4}, {0, 4}, {0, 0}}, 0, "0 0, 4 0, 4 4, 0 4, 0 0;"},
      {"square started in the middle of a side",
       {{2, 0}, {4, 0}, {4, 0}, {4, 4}, {4, 4}, {0, 4}, {0, 4}, {0, 0}, {0, 0}, {2, 0}},
       0,
       "4 0, 4 4, 0 4, 0 0, 4 0;"},
      {"three ends at one place", {{0, 0}, {1, 0}, {2, 0}, {1, 0}, {1, 0}, {1, 1}}, 2, "0 0, 2 0;1 0, 1 1;"},
      {"doubling back", {{0, 0}, {4, 0}, {4, 0}, {1, 0}}, 1, "0 0, 4 0, 1 0;"},
      {"repeats, either way round", {{0, 0}, {1, 0}, {1, 0}, {0, 0}, {0, 0}, {1, 0.0005}}, 1, "0 0, 1 0;"},
      {"open before closed", {{0, 0}, {1, 0}, {1, 0}, {1, 1}, {1, 1}, {0, 0}, {5, 5}, {6, 6}}, 1, "5 5, 6 6;0 0, 1 0, 1 1, 0 0;"},
  };
  for (const auto& row : rows) {
    const Chained got = ChainOf(row.points);
    EXPECT_EQ(got.open, row.open) << row.name;
    EXPECT_EQ(Text(got.lines), row.lines) << row.name;
    for (std::size_t k = static_cast<std::size_t>(got.open); k < got.lines.size(); ++k) {
      EXPECT_TRUE(SameBits(got.lines[k].front(), got.lines[k].back())) << row.name;
    }
  }
}

TEST(Chain, StatesOfTheEnds) {
  const Chained got = ChainOf({{0, 0}, {1, 0}, {1, 0}, {1, 1}, {7, 7}, {7, 7}, {1, 1}, {1, 0}});
  const int states[] = {OPT_FIRST, OPT_PASSED, OPT_PASSED, OPT_FIRST, OPT_ZERO, OPT_ZERO, OPT_ZERO, OPT_ZERO};
  const int links[] = {-1, 2, 1, -1, -1, -1, -1, -1};
  for (std::size_t k = 0; k < 8; ++k) {
    EXPECT_EQ(got.ends[k].state, states[k]) << k;
    EXPECT_EQ(got.ends[k].link, links[k]) << k;
  }
}

TEST(Chain, OfAVertexTheNearestToTheLeftCounts) {
  // The point between two vertices, within reach of both, joins the left one, though the right one is older.
  const Chained got = ChainOf({{1.0015, 0}, {2, 1}, {1, 0}, {0, 1}, {1.00075, 0}, {1, -1}});
  EXPECT_EQ(got.ends[4].vertex, got.ends[2].vertex);
  EXPECT_NE(got.ends[4].vertex, got.ends[0].vertex);
}

TEST(Chain, PointsThatAreNotFiniteDoNoHarm) {
  const Chained got = ChainOf({{0, 0}, {NAN, 0}, {INFINITY, 1}, {-INFINITY, 1}, {1, 1}, {2, 2}, {1e308, 0}, {-1e308, 0}});
  EXPECT_GE(got.lines.size(), 1U);
}

// Lattice points off by about the tolerance: many ends at a place, repeats, ends in reach of several vertices.
TEST(Chain, AgreesWithTheLiteralForm) {
  std::size_t closed = 0;
  for (int seed = 0; seed < Scaled(300); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const double eps = seed % 2 == 0 ? 1e-3 : 0.3;
    const int size = 2 + Below(random, 6);
    const auto c = [&] { return Below(random, size) + 0.7 * eps * (Below(random, 3) - 1); };
    std::vector<ZBR_HL_OPT_PT> got;
    for (int n = 2 * Below(random, 50); n > 0; --n) {
      const double x = c();
      got.emplace_back().pt = ZBR_PT(x, c());
    }
    std::vector<ZBR_HL_OPT_PT> expected = got;
    Lines lines;
    Lines expectedLines;
    const ZBR_TmpEps guard(eps);
    const int open = zbrOptimizeSegs(got, lines);
    ASSERT_EQ(open, literal::Chain(expected, expectedLines, literal::Tol(eps))) << "seed " << seed;
    ASSERT_EQ(lines.size(), expectedLines.size()) << "seed " << seed;
    for (std::size_t k = 0; k < lines.size(); ++k) {
      ASSERT_TRUE(std::equal(lines[k].begin(), lines[k].end(), expectedLines[k].begin(), expectedLines[k].end(),
                             [](const ZBR_PT& a, const ZBR_PT& b) { return SameBits(a, b); }))
          << "seed " << seed << " line " << k;
    }
    for (std::size_t k = 0; k < got.size(); ++k) {
      const ZBR_HL_OPT_PT& g = got[k];
      const ZBR_HL_OPT_PT& e = expected[k];
      ASSERT_TRUE(g.index == e.index && g.vertex == e.vertex && g.link == e.link && g.state == e.state)
          << "seed " << seed << " end " << k;
    }
    closed += lines.size() - static_cast<std::size_t>(open);
  }
  EXPECT_GT(closed, 20U);
}

}  // namespace
