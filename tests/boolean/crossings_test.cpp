// Crossing detection by case. A record is written "posA:posB" and L or R for its direction; records in order of detection.
//
// The labels are those of the contacts: StartOnCorner, EndOnCorner (an end of B's edge on A's vertex), CornerOnEdge (A's vertex
// inside B's edge), NextOnEnd (left to A's next vertex), StartOnEdge, EndOnEdge (an end of B's edge on A's edge), Proper.
#include <gtest/gtest.h>

#include <cmath>

#include "support/shapes.h"

namespace {

constexpr const char* kSquare = "0 0, 4 0, 4 4, 0 4";
constexpr const char* kWedge = "0 0, 4 -2, 4 2";                             // convex, apex (0, 0) first
constexpr const char* kNotch = "0 0, 4 -4, 4 4, -4 4, -4 -4";                // reflex at (0, 0)
constexpr const char* kStraight = "0 0, 2 0, 4 0, 4 4, 0 4";                 // straight on at (2, 0)
constexpr const char* kSpike = "0 0, 4 0, 2 0, 2 3";                         // turns back at (4, 0)
constexpr const char* kRepeated = "0 0, 0 0, 4 0, 4 0, 4 0, 4 4, 0 4, 0 4";  // kSquare with repeats

std::string Records(const std::vector<ZBR_CROSS>& crosses) {
  std::string out;
  for (const ZBR_CROSS& c : crosses) {
    char text[80];
    std::snprintf(text, sizeof text, "%s%g:%g%c", out.empty() ? "" : " ", c.a.pos, c.b.pos, c.dir == ZBR_CROSS_TO_LEFT ? 'L' : 'R');
    out += text;
  }
  return out;
}

std::string Detect(const std::shared_ptr<ZBR_LOOP>& a, const std::shared_ptr<ZBR_LOOP>& b, bool closedB = true) {
  std::vector<ZBR_CROSS> crosses;
  zbrGetPolygonCross(a, b, 0, 0, 0, 0, crosses, closedB);
  return Records(crosses);
}

struct Row {
  const char* what;
  const char* a;
  const char* b;
  const char* records;
};

void ExpectRecords(const std::vector<Row>& rows, bool closedB = true) {
  for (const Row& row : rows) EXPECT_EQ(Detect(ParseLoop(row.a), ParseLoop(row.b), closedB), row.records) << row.what;
}

TEST(PolygonCross, StartAndEndOnCorner) {
  ExpectRecords({
      {"passage: two records of one direction", kSquare, "0 0, 3 1, -3 1", "0:0L 0:0L 3.75:1.5R"},
      {"touch from outside", kSquare, "0 0, -1 -3, 1 -3", "0:0L 0:0R"},
      {"touch from inside", kSquare, "0 0, 3 1, 1 3", "0:0R 0:0L"},
      {"leaves along the edge", kSquare, "0 0, 3 0, 3 -2", "0:0L 0.75:1R"},
      {"arrives along the edge", kSquare, "0 0, 3 -2, 3 0", "0:0R 0.75:2L"},
      {"reflex: passage", kNotch, "0 0, 1 -3, 1 3", "0:0R 0:0R 0.25:1.33333L"},
      {"doubling back: nothing", kSpike, "4 0, 6 1, 6 -1", ""},
  });
}

TEST(PolygonCross, CornerOnEdge) {
  ExpectRecords({
      {"right to left", kWedge, "-2 0, 2 0, -2 2", "0:0.5L 2.75:1.25R"},
      {"left to right", kWedge, "-2 2, 2 0, -2 0", "0:1.5R 2.75:0.75L"},
      {"along a diagonal, corner to corner", kSquare, "-1 5, 5 -1, 9 9", "1:0.833333R 3:0.166667L"},
      {"both ends outside", kWedge, "0 -2, 0 2, -2 0", ""},
      {"both ends inside", kNotch, "-2 0, 2 0, 0 2", ""},
      {"from outside onto the edge", kSquare, "-2 0, 2 0, 2 -2", "0:0.5L 0.5:1R"},
      {"from the edge to outside", kSquare, "2 -2, 2 0, -2 0", "0.5:1L 0:1.5R"},
      {"from the edge to inside", kNotch, "-2 -2, 2 2, -2 2", "0:0.5L 4.5:0R"},
      {"from inside onto the edge", kNotch, "-2 2, 2 2, -2 -2", "0:1.5R 4.5:2L"},
      {"along both edges: nothing at the corner", kStraight, "1 0, 3 0, 2 -1", "0.5:0L 1.5:1R"},
      {"doubling back: nothing", kSpike, "4 -1, 4 1, 6 0", ""},
      {"corner on the line beyond the edge", kSquare, "6 0, 8 0, 7 -1", ""},
  });
}

TEST(PolygonCross, EndOnEdge) {
  ExpectRecords({
      {"touch from outside", kSquare, "2 0, 1 -2, 3 -2", "0.5:0L 0.5:0R"},
      {"touch from inside", kSquare, "2 0, 3 2, 1 2", "0.5:0R 0.5:0L"},
      {"passage", kSquare, "2 0, 1 2, 1 -2", "0.5:0L 0.5:0L 0.25:1.5R"},
      {"on the line before the edge", kStraight, "5 0, 6 -1, 6 1", ""},
      {"on the next corner: left to it", kSquare, "4 0, 6 -1, 6 1", "1:0L 1:0R"},
  });
}

TEST(PolygonCross, Proper) {
  ExpectRecords({
      {"in and out", "0 0, 2 0, 2 2, 0 2", "1 1, 3 1, 3 3, 1 3", "1.5:0.5R 2.5:3.5L"},
      {"clockwise A", "0 0, 0 2, 2 2, 2 0", "1 1, 3 1, 3 3, 1 3", "1.5:3.5R 2.5:0.5L"},
      {"apart", kSquare, "5 5, 6 5, 6 6", ""},
      {"closer than the boxes' margin", kSquare, "4.0005 0, 6 0, 6 4, 4.0005 4", ""},
  });
}

TEST(PolygonCross, PositionsAtTheEndOfARing) {
  const ZBR_TmpEps exact(0.0);
  const double h = std::ldexp(1.0, -60);
  const auto square = MakeLoop(Square(0, 0, 1));
  const Ring spear = {{-0.5, h}, {0.5, h}, {-0.5, 0.75}};
  EXPECT_EQ(Detect(square, MakeLoop(spear)), "4:0.5L 3.625:1.5R") << "rounded up to n on A";
  const auto slit = MakeLoop({{-h, -1}, {1, -1}, {1, 0.5}, {-h, 0.5}});
  EXPECT_EQ(Detect(slit, MakeLoop({{0, 0}, {2, 0.25}, {-2, 0.25}})).find(":3"), std::string::npos);
}

TEST(PolygonCross, DegenerateRings) {
  ExpectRecords({
      {"A of two points", "0 0, 4 0", kSquare, ""},
      {"B of two points", kSquare, "-1 2, 5 2", ""},
      {"all points equal", "1 1, 1 1, 1 1, 1 1", kSquare, ""},
      {"B all equal", kSquare, "1 1, 1 1, 1 1, 1 1", ""},
      {"repeats in A shift its positions", kRepeated, "2 2, 6 2, 6 6, 2 6", "4.5:0.5R 5.5:3.5L"},
      {"repeats at a corner of A", kRepeated, "0 0, 3 1, -3 1", "1:0L 1:0L 7.75:1.5R"},
      {"a repeated vertex of B counts as its last copy", kSquare, "-3 1, 0 0, 0 0, 0 0, 3 1", "0:3L 0:3L 3.75:4.5R"},
      {"a run over the end of B", kSquare, "0 0, 3 1, -3 1, 0 0, 0 0", "0:0L 0:0L 3.75:1.5R"},
  });
}

TEST(PolygonCross, OpenPolyline) {
  ExpectRecords({{"segment", kSquare, "-1 1, 5 1", "1.25:0.833333R 3.75:0.166667L"},
                 {"one point", kSquare, "1 1", ""},
                 {"ends on the boundary", kSquare, "2 0, 2 2", "0.5:0L"},
                 {"ends where it began, in repeats", kSquare, "2 0, 2 0, 3 2, 1 2, 2 0", "0.5:1L 0.5:4R"},
                 {"last point is no start", kSquare, "-1 1, 2 1, 2 4", "2.5:2R 3.75:0.333333L"}},
                false);
}

TEST(PolygonCross, NonFiniteRingsGiveNothing) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    for (std::size_t at = 0; at < 4; ++at) {
      Ring ring = Square(1, 1, 9);
      ring[at] = at % 2 == 0 ? ZBR_PT(bad, 1) : ZBR_PT(1, bad);
      EXPECT_EQ(Detect(MakeLoop(ring), ParseLoop(kSquare)), "");
      EXPECT_EQ(Detect(ParseLoop(kSquare), MakeLoop(ring)), "");
    }
  }
}

TEST(PolygonCross, RecordsAreAppendedWithTheirNames) {
  std::vector<ZBR_CROSS> crosses(3);
  const auto a = ParseLoop("0 0, 2 0, 2 2, 0 2");
  const auto b = ParseLoop("1 1, 3 1, 3 3, 1 3");
  zbrGetPolygonCross(a, b, 7, 8, 2, 3, crosses, true);
  ASSERT_EQ(crosses.size(), 5U);
  const ZBR_CROSS& c = crosses[4];
  EXPECT_EQ(c.a.loop.value, (std::int64_t{7} << 32) + 2);
  EXPECT_EQ(c.b.loop.loop(), 8);
  EXPECT_EQ(c.b.loop.poly(), 3);
  EXPECT_EQ(c.pt.x(), 1.0);
  EXPECT_EQ(c.pt.y(), 2.0);
  EXPECT_EQ(c.index, 4);
  EXPECT_EQ(c.a.seq, -1);
  EXPECT_EQ(c.b.order, 0);
  EXPECT_TRUE(c.valid);
  EXPECT_FALSE(c.done);
  EXPECT_TRUE(a->IsSetuped());
}

TEST(LoopsCross, OrderOfLoopsThenPolygons) {
  const LoopList A = ParseRegion("0 0, 8 0, 8 8, 0 8; 1 1, 7 1, 7 7, 1 7; 10 0, 17 0, 17 7, 10 7");
  const LoopList B = ParseRegion("-1 4, 20 4, 20 5, -1 5; 30 0, 31 0, 31 1");
  std::vector<ZBR_CROSS> crosses(1);
  zbrGetLoopsCross(A, B, crosses);
  ASSERT_EQ(crosses.size(), 13U);
  for (std::size_t i = 2; i < crosses.size(); ++i) {
    EXPECT_LE(crosses[i - 1].a.loop.value, crosses[i].a.loop.value);
    EXPECT_EQ(crosses[i].index, static_cast<int>(i));
  }
  std::vector<ZBR_CROSS> one;
  zbrGetLoopCross(A[0], B[0], 5, 6, one);
  ASSERT_EQ(one.size(), 8U);
  EXPECT_EQ(one[7].a.loop.value, ZBR_CROSS_LOOP(5, 1).value);
  EXPECT_EQ(one[7].b.loop.value, ZBR_CROSS_LOOP(6, 0).value);
  zbrGetLoopsCross({}, B, one);
  zbrGetLoopsCross(A, {}, one);
  EXPECT_EQ(one.size(), 8U);
}

}  // namespace
