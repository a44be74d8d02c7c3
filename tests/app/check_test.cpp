// Commands that examine one drawing.

#include "tool.h"

namespace {

constexpr const char* kNested =  // a square, a hole, an island in it with a hole of its own, and a square apart
    "0 0\n90 0\n90 90\n0 90\n\n10 10\n10 80\n80 80\n80 10\n\n20 20\n70 20\n70 70\n20 70\n\n30 30\n60 30\n60 60\n30 60\n\n"
    "100 0\n101 0\n101 1\n100 1\n";

TEST_F(Tool, CheckNamesEachBreachWithItsPlace) {
  const struct {
    const char* text;
    const char* finding;  // empty: clean
  } kCases[] = {
      {"0 0\n4 4\n4 0\n0 4\n", "t.txt:1: loop crosses itself at (2, 2)\n"},
      {"0 0\n4 0\n4 4\n0 4\n\n2 2\n6 2\n6 6\n2 6\n", "t.txt:1: loop crosses the loop of line 6 at (4, 2) and 1 more places\n"},
      {"0 0\n4 0\n4 4\n0 4\n\n2 -1\n6 -1\n4 4\n3 9\n", "t.txt:1: loop crosses the loop of line 6 at "},
      {"0 0\n4 0\n4 4\n0 4\n\n4 1\n8 1\n8 3\n4 3\n", "t.txt:1: loop runs along the loop of line 6 at (4, 2)\n"},
      {"0 0\n4 0\n4 4\n0 4\n\n1 1\n3 1\n3 0\n5 0\n5 -1\n1 -1\n", "t.txt:1: loop crosses the loop of line 6 at "},
      // Through two corners, and through a vertex of either on an edge of the other.
      {"0 0\n4 0\n4 4\n0 4\n\n-1 -1\n0 0\n2 2.5\n4 4\n6 5\n8 -5\n",
       "t.txt:1: loop crosses the loop of line 6 at (0, 0) and 1 more places\n"},
      {"0 0\n4 0\n4 4\n0 4\n\n2 3\n4 2\n6 1\n6 5\n", "t.txt:1: loop crosses the loop of line 6 at (4, 2) and 1 more places\n"},
      {"0 0\n4 0\n8 0\n4 0\n4 4\n", "t.txt:1: loop turns back on itself at (8, 0)\n"},
      {"0 0\n4 0\n4 0\n4 4\n", "t.txt:1: loop repeats a point at (4, 0)\n"},
      {"\n0 0\n4 0\n", "t.txt:2: loop of 2 different points encloses no area at (0, 0)\n"},
      {"0 0\n1 1\n3 3\n2 2\n", "encloses no area"},
      // Loops may touch: at a vertex, a vertex on an edge, two corners of one loop.
      {"0 0\n4 0\n4 4\n0 4\n\n4 4\n8 4\n8 8\n4 8\n", ""},
      {"0 0\n4 0\n4 4\n0 4\n\n4 2\n8 0\n8 4\n", ""},
      {"0 0\n2 2\n4 0\n4 4\n2 2\n0 4\n", ""},
      {kNested, ""},
  };
  for (const auto& test : kCases) {
    Write("t.txt", test.text);
    const Outcome outcome = Run("check t.txt");
    const bool clean = *test.finding == '\0';
    EXPECT_EQ(outcome.code, clean ? 0 : 1) << test.text;
    EXPECT_NE(outcome.out.find(clean ? "t.txt: clean" : test.finding), std::string::npos) << test.text << outcome.out;
    EXPECT_EQ(outcome.err, "");
  }
}

TEST_F(Tool, CheckFindsOpenContours) {
  Write("o.dxf", DxfText("LINE 10 0 20 0 11 5 21 0; LINE 10 5 20 0 11 5 21 5"));
  const Outcome outcome = Run("check o.dxf");
  EXPECT_EQ(outcome.out, "o.dxf:15: contour does not close, from (0, 0) to (5, 5)\n");
  EXPECT_EQ(outcome.code, 1);
  Write("o.wkt", "POLYGON ((0 0, 1 0, 1 1))");
  EXPECT_EQ(Run("check o.wkt").out, "o.wkt:1: contour does not close, from (0, 0) to (1, 1)\n");
}

TEST_F(Tool, CombiningGoesOnWithAWarning) {
  Write("bow.txt", "0 0\n4 4\n4 0\n0 4\n");
  Write("b.txt", "10 0\n11 0\n11 1\n");
  const Outcome outcome = Run("bool --op union bow.txt b.txt -o u.wkt");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "bow.txt:1: warning: loop crosses itself at (2, 2); results may be wrong there, see 'zbr check'\n");
}

TEST_F(Tool, InfoAndNestTellDepths) {
  Write("n.txt", kNested);
  EXPECT_EQ(Info("n.txt", "depth"), "4");
  EXPECT_EQ(Info("n.txt", "loops"), "5 (3 outer, 2 holes)");
  EXPECT_EQ(Info("n.txt", "vertices"), "20");
  EXPECT_EQ(Info("n.txt", "area"), "4801");
  EXPECT_EQ(Info("n.txt", "box"), "0 0 to 101 90");
  const std::string list = Run("nest n.txt").out;
  for (const char* line : {"loop 1: depth 0, 4 points, area 8100, at (0, 0)\n  hole 1.1: depth 1, 4 points, area -4900,",
                           ": depth 2, 4 points, area 2500, at (20, 20)\n  hole ", ": depth 3, 4 points, area -900,"}) {
    EXPECT_NE(list.find(line), std::string::npos) << line << " in\n" << list;
  }
}

TEST_F(Tool, InsideAnswersPointByPoint) {
  Write("n.txt", kNested);
  const std::string answers = "5 5 in\n-5 5 out\n15 15 out\n25 25 in\n45 45 out\n0 0 vertex\n80 50.5 edge\n1e+300 0 out\n";
  EXPECT_EQ(Run("inside n.txt 5 5 -5 5 15 15 25 25 45 45 0 0 80 50.5 1e300 0").out, answers);
  EXPECT_EQ(Run("inside n.txt", "5 5\n-5,5 # left\n15 15\n\n25 25\n45 45\n0 0\n80 50.5\n1e300 0").out, answers);
  EXPECT_EQ(Run("inside n.txt", "5 5\n1 x\n").err, "-:2: 'x' is not a finite number\n");
}

}  // namespace
