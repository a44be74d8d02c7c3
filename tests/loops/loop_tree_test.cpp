// Nesting: limits and forms; by named case: data/nests.txt. A tree is written as its outer loops in order, each with its holes in
// brackets, by their signed areas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/shapes.h"

namespace {

std::string Tree(const LoopList& loops) {
  std::string out;
  for (const auto& loop : loops) {
    char text[32];
    std::snprintf(text, sizeof text, "%s%g", out.empty() ? "" : " ", loop->area());
    out += text;
    if (!loop->children().empty()) out += '(' + Tree(loop->children()) + ')';
  }
  return out;
}

TEST(LoopTree, AreasAreComparedWithTheLengthTolerance) {
  LoopList loops = MakeLoops({Square(0, 0, 1), Square(5, 5, std::sqrt(0.9e-5)), Square(7, 7, std::sqrt(1.1e-5))});
  zbrMakeLoopTree(loops);
  EXPECT_EQ(loops.size(), 2U) << "an area of 0.9e-5 counts as nothing under eps 1e-5; intended";
}

TEST(LoopTree, NonFiniteLoopsCountAsDegenerate) {
  LoopList loops = MakeLoops({{{0, 0}, {NAN, 0}, {1, 1}}, Square(0, 0, 2), {{0, 0}, {INFINITY, 0}, {1, 1}}, Square(0.5, 0.5, 1)});
  zbrMakeLoopTree(loops);
  EXPECT_EQ(Tree(loops), "4(-1)");
  LoopList bad = MakeLoops({{{0, 0}, {NAN, 0}, {1, 1}}, {{0, 0}, {INFINITY, 1e300}, {1, 1}}});
  zbrMakeLoopTree(bad);
  EXPECT_EQ(bad.size(), 2U);
}

TEST(LoopTree, SameObjectsAndPointsAfterwards) {
  LoopList loops = ParseLoops("0 0, 4 0, 4 4, 0 4; 1 1, 1 2, 2 2, 2 1; 8 8, 9 8, 9 9");
  LoopList objects = loops;
  const std::string before = ToText(loops);
  zbrOptimizeLoops(loops);
  EXPECT_EQ(ToText(loops), before);
  EXPECT_EQ(loops[0], objects[0]);
  EXPECT_EQ(loops[0]->children()[0], objects[1]);
  zbrOptimizeLoops(loops);
  EXPECT_EQ(Tree(loops), "16 0.5") << "the list is flat again: children are dropped before nesting";
}

TEST(LoopTree, OptimizeLoopAppendsWhateverIsThere) {
  LoopList loops = {MakeLoop(Square(0, 0, 1))};
  for (int i = 0; i < 20; ++i) zbrOptimizeLoop(loops[0], loops);
  EXPECT_EQ(loops.size(), 21U);
  EXPECT_EQ(std::count(loops.begin(), loops.end(), loops[0]), 21);
}

// Rings inside each other, apart, touching in a common corner, or with gaps of a few tolerances on the left: outer loops and holes
// alternate.
TEST(LoopTree, DeepNests) {
  const struct {
    int rings;
    double left, bottom;  // of a ring, by its half side
  } rows[] = {{6000, -1.0, -1.0}, {260, 0.0, 0.0}, {260, -5e-5, -1.0}, {260, -1e-5, -1.0}};
  for (const auto& row : rows) {
    std::vector<Ring> rings;
    for (int half = 1; half <= row.rings; ++half) rings.push_back(Square(row.left * half, row.bottom * half, 2.0 * half));
    std::mt19937_64 random(1);
    LoopList loops = MakeLoops(Disguise(rings, random));
    zbrMakeLoopTree(loops);
    ASSERT_EQ(loops.size(), rings.size() / 2) << row.left;
    for (std::size_t i = 0; i < loops.size(); ++i) {
      const double side = 2.0 * (row.rings - 2.0 * static_cast<double>(i));
      ASSERT_NEAR(loops[i]->area(), side * side, 1e-6) << row.left;
      ASSERT_NEAR(loops[i]->children().at(0)->area(), -(side - 2.0) * (side - 2.0), 1e-6) << row.left;
    }
  }
}

// Copies are nested as one, wherever they start; loops that are equal but for points on their edges one by one.
TEST(LoopTree, CopiesNestAsEqualLoopsDo) {
  std::mt19937_64 random(1);
  const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int k = 0; k < 300; ++k) {
    std::vector<Ring> copies;
    std::vector<Ring> turned;
    std::vector<Ring> split;
    for (int n = 1 + below(5); n > 0; --n) {
      const int x = 20 * below(2), half = 1 + below(6);
      Ring ring = Square(x - half, -half, 2 * half);
      Ring longer = ring;
      for (int times = 1 + below(5); times > 0; --times) {
        copies.push_back(Square(x - half, -half, 2 * half));
        turned.push_back(ring);
        split.push_back(longer);
        std::rotate(ring.begin(), ring.begin() + 1, ring.end());
        longer.push_back((longer[0] + longer.back()) * 0.5);
      }
    }
    LoopList a = MakeLoops(copies);
    LoopList b = MakeLoops(turned);
    LoopList c = MakeLoops(split);
    for (LoopList* loops : {&a, &b, &c}) zbrMakeLoopTree(*loops);
    ASSERT_EQ(Tree(a), Tree(c)) << k;
    ASSERT_EQ(Tree(b), Tree(c)) << k;
  }
  std::vector<Ring> rings(50000, Square(0, 0, 4));
  for (std::size_t i = 0; i < rings.size(); ++i) std::rotate(rings[i].begin(), rings[i].begin() + i % 4, rings[i].end());
  LoopList many = MakeLoops(rings);
  zbrMakeLoopTree(many);
  EXPECT_EQ(many.size(), 25000U);
}

}  // namespace
