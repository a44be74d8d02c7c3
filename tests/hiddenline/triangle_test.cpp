// Intervals, triangle states and the rules of one pair, case by case.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "hiddenline/scenes.h"

namespace {

using Intervals = std::vector<ZBR_HL_INTERVAL>;

const ZBR_PT3 kStart(0, 0, 0);
const ZBR_PT3 kEnd(10, 20, 30);

Intervals Make(const std::vector<double>& ends) {
  Intervals list;
  for (std::size_t k = 0; k < ends.size(); k += 2) list.emplace_back(kEnd * ends[k], kEnd * ends[k + 1], ends[k], ends[k + 1]);
  return list;
}

std::vector<double> EndsOf(const Intervals& list) {
  std::vector<double> ends;
  for (const ZBR_HL_INTERVAL& v : list) ends.insert(ends.end(), {v.s.t, v.e.t});
  return ends;
}
using Ends = std::vector<double>;

// Records may be given their own ends.
TEST(Interval, IsReversedInPlace) {
  ZBR_HL_INTERVAL v(kStart, kEnd, 0.25, 0.75);
  v.Set(v.e, v.s);
  EXPECT_TRUE(v.s.pt == kEnd && v.s.t == 0.75 && v.e.pt == kStart && v.e.t == 0.25);
  v.Set(v.e.pt, v.s.pt, v.e.t, v.s.t);
  EXPECT_TRUE(v.s.pt == kStart && v.s.t == 0.25 && v.e.pt == kEnd && v.e.t == 0.75);
  ZBR_SEG3 segment(kStart, kEnd);
  const ZBR_SEG3& ends = segment;
  segment.Set(ends.e(), ends.s());
  EXPECT_TRUE(ends.s() == kEnd && ends.e() == kStart);
  ZBR_SEG flat(ZBR_PT(1, 2), ZBR_PT(3, 4));
  const ZBR_SEG& flatEnds = flat;
  flat.Set(flatEnds.e(), flatEnds.s());
  EXPECT_TRUE(flatEnds.s() == ZBR_PT(3, 4) && flatEnds.e() == ZBR_PT(1, 2));
}

// The list grows while the pieces are appended.
TEST(Interval, PiecesOfARecordGoToItsOwnList) {
  Intervals list = Make({0.0, 1.0});
  list.shrink_to_fit();
  ZBR_HL_TRI::HiddenLine_DifferenceOfSeg(list[0].s.pt, list[0].e.pt, kEnd * 0.25, kEnd * 0.5, list);
  EXPECT_EQ(EndsOf(list), (Ends{0.0, 1.0, 0.0, 0.25, 0.5, 1.0}));
  EXPECT_EQ(list[2].s.pt.z(), 15.0);
  EXPECT_EQ(list[2].e.pt.z(), 30.0);
}

TEST(Interval, DifferencesByName) {
  const struct {
    double a0, a1, b0, b1;
    int pieces;
    double r0, r1;
  } rows[] = {
      {0, 1, 0.25, 0.5, 2, 0.25, 0.5}, {0, 1, 0.5, 0.25, 2, 0.25, 0.5}, {1, 0, 0.25, 0.5, 2, 0.5, 0.25},
      {0, 1, -1, 0.5, 1, 0.5, 1},      {1, 0, -1, 0.5, 1, 1, 0.5},      {0, 1, 0.5, 2, 1, 0, 0.5},
      {0, 1, 0.5, 1, 1, 0, 0.5},       {0, 1, 1, 2, 1, 0, 1},           {0, 1, 2, 3, 1, 0, 1},
      {0, 1, -2, -1, 1, 0, 1},         {0, 1, -1, 2, 0, 7, 7},          {0, 1, 0, 1, 0, 7, 7},
      {0, 0, 1, 2, 1, 0, 0},           {0, 0, -2, -1, 0, 7, 7},         {0, 1, 1e-6, 1, 0, 7, 7},
      {0, 1, -1, 0.999999, 0, 7, 7},
  };
  for (const auto& row : rows) {
    double r0 = 7;
    double r1 = 7;
    EXPECT_EQ(zbrDifferenceOfRealSeg(row.a0, row.a1, row.b0, row.b1, r0, r1), row.pieces);
    EXPECT_EQ(r0, row.r0) << row.a0 << ' ' << row.a1 << " without " << row.b0 << ' ' << row.b1;
    EXPECT_EQ(r1, row.r1) << row.a0 << ' ' << row.a1 << " without " << row.b0 << ' ' << row.b1;
  }
}

TEST(Interval, IntersectionCountsAndWholeEdges) {
  Intervals work;
  Intervals a = Make({0.1, 0.2, 0.3, 0.4});
  EXPECT_EQ(zbrIntervalIntersection(a, Make({0, 1}), work), 2);
  EXPECT_EQ(EndsOf(a), Ends({0.1, 0.2, 0.3, 0.4}));
  Intervals whole = Make({0, 1});
  EXPECT_EQ(zbrIntervalIntersection(whole, Make({0.1, 0.2, 0.3, 0.4}), work), 1);  // the former size, intended
  EXPECT_EQ(EndsOf(whole), Ends({0.1, 0.2, 0.3, 0.4}));
  EXPECT_EQ(zbrIntervalIntersection(a, {}, work), 0);
  EXPECT_TRUE(a.empty());
  a = Make({0, 0.5, 0.500001, 1});
  EXPECT_EQ(zbrIntervalOptimize(a), 1);
  EXPECT_EQ(EndsOf(a), Ends({0, 1}));
  a = Make({0, 0.000001, 0.5, 0.6});
  EXPECT_EQ(zbrIntervalOptimize(a), 1);
  EXPECT_EQ(EndsOf(a), Ends({0.5, 0.6}));
}

// A shell of triangles given by their vertices, processed or only classified.
struct Body {
  explicit Body(const std::vector<Corners>& corners) : drawing(DrawTriangles(corners)), shell(drawing.Shells()[0]) {}
  ZBR_HL_TRI& Classified() {
    shell.GetMaxMin();
    shell.CheckTriangle();
    return tris[0];
  }
  Drawing drawing;
  std::vector<ZBR_HL_TRI>& tris = drawing.bodies[0];
  ZBR_HL_SHELL shell;
};

TEST(TriangleState, DegenerateTriangles) {
  const ZBR_PT3 o;
  const struct {
    const char* name;
    Corners pt;
    int state;
    std::array<int, 3> edges;
  } rows[] = {
      {"general", {o, ZBR_PT3(1, 0, 0), ZBR_PT3(0, 1, 0)}, 1, {1, 1, 1}},
      {"one point", {o, ZBR_PT3(1e-6, 0, 0), ZBR_PT3(0, 1e-6, 0)}, 3, {3, 3, 3}},
      {"needle", {o, ZBR_PT3(1e-6, 0, 0), ZBR_PT3(1, 0, 0)}, 3, {3, 1, 3}},
      {"upright needle", {o, ZBR_PT3(0, 0, 1e-6), ZBR_PT3(0, 0, 1)}, 3, {3, 3, 3}},
      {"flat line", {o, ZBR_PT3(1, 1, 1), ZBR_PT3(2, 2, 2)}, 3, {3, 3, 3}},
      {"upright line", {o, ZBR_PT3(0, 0, 1), ZBR_PT3(0, 0, 2)}, 3, {3, 3, 3}},
      {"not a number", {o, ZBR_PT3(1, 0, NAN), ZBR_PT3(0, 1, 0)}, 3, {3, 3, 3}},
      {"infinite", {o, ZBR_PT3(INFINITY, 0, 0), ZBR_PT3(0, 1, 0)}, 3, {3, 3, 3}},
      {"too large", {o, ZBR_PT3(1e200, 0, 0), ZBR_PT3(0, 1e200, 0)}, 3, {3, 3, 3}},
      {"almost edge-on", {o, ZBR_PT3(1, 0, 0), ZBR_PT3(0.5, 9e-6, 1)}, 2, {3, 1, 1}},
      {"steep", {o, ZBR_PT3(1, 0, 0), ZBR_PT3(0.5, 2e-5, 1)}, 1, {1, 1, 1}},
  };
  for (const auto& row : rows) {
    Body body({row.pt});
    const ZBR_HL_TRI& t = body.Classified();
    EXPECT_EQ(t.tri_state, row.state) << row.name;
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(t.edge_state[i], row.edges[i]) << row.name << ", edge " << i;
      EXPECT_EQ(t.intvl_v[i].empty(), t.edge_state[i] != 1) << row.name << ", edge " << i;
    }
  }
}

// What a triangle seen edge-on draws. L is its long edge, n and p the next and the previous one; in the second half n is end-on.
struct EdgeOnRow {
  bool endOn, upper, drawN, drawP;
  std::array<const char*, 3> draws;  // of L, n, p: "" nothing, "all", or the part of L "before" or "after" the apex
};

TEST(TriangleState, EdgeOnTrianglesDrawTheirUpperOutline) {
  const EdgeOnRow rows[] = {
      {false, false, true, true, {"all", "", ""}},      {false, false, false, false, {"all", "", ""}},
      {false, true, true, true, {"", "all", "all"}},    {false, true, true, false, {"before", "all", ""}},
      {false, true, false, true, {"after", "", "all"}}, {false, true, false, false, {"all", "", ""}},
      {true, false, true, true, {"all", "", ""}},       {true, false, true, false, {"all", "", ""}},
      {true, true, true, true, {"", "", "all"}},        {true, true, false, true, {"", "", "all"}},
      {true, true, true, false, {"all", "", ""}},
  };
  for (const EdgeOnRow& row : rows) {
    for (int variant = 0; variant < 24; ++variant) {
      const int turn = variant % 3;  // L is edge `turn`
      const bool alongY = variant / 3 % 2 == 1;
      const bool falling = variant / 6 % 2 == 1;
      const bool drawL = variant / 12 == 0;
      const auto place = [&](double along, double z) {
        const double c = falling ? 4.0 - along : along;
        return alongY ? ZBR_PT3(3, c, z) : ZBR_PT3(c, 3, z);
      };
      const Corners pt = {place(0, 0), place(4, 0), place(row.endOn ? 4 : 1, row.upper ? 1 : -1)};
      Corners turned;
      for (std::size_t i = 0; i < 3; ++i) turned[(i + static_cast<std::size_t>(turn)) % 3] = pt[i];
      Body body({turned});
      const bool draw[] = {drawL, row.drawN, row.drawP};
      for (int i = 0; i < 3; ++i) body.tris[0].dispj[(i + turn) % 3] = draw[i];
      const ZBR_HL_TRI& t = body.Classified();
      ASSERT_EQ(t.tri_state, 2);
      EXPECT_EQ(t.vert_edge, turn);
      EXPECT_EQ(t.vert_upper, row.upper);
      EXPECT_EQ(t.vert_axis, alongY ? 2 : 1);
      for (std::size_t i = 0; i < 3; ++i) {
        const std::string draws = draw[i] ? row.draws[i] : "";
        const Ends expected = draws.empty()       ? Ends()
                              : draws == "before" ? Ends({0, 0.25})
                              : draws == "after"  ? Ends({0.25, 1})
                                                  : Ends({0, 1});
        const Intervals& got = t.intvl_v[(static_cast<int>(i) + turn) % 3];
        EXPECT_EQ(EndsOf(got), expected) << "variant " << variant << " edge " << i << " upper " << row.upper << " end-on "
                                         << row.endOn;
        EXPECT_TRUE(draws != "before" || got[0].e.pt.Distance(place(1, 0)) == 0.0);
      }
    }
  }
}

TEST(TriangleState, PriorityAndFlags) {
  ZBR_HL_TRI a;
  ZBR_HL_TRI b;
  a.idx = 5;
  a.shell_idx = 1;
  b.idx = 3;
  b.shell_idx = 2;
  EXPECT_TRUE(a.IsPriorTo(b) && b.IsPriorTo(a));  // key by key, intended
  b.edge_state[0] = 1;
  EXPECT_FALSE(a.ToHide(b, 0));
  a.shell_idx = 2;
  EXPECT_TRUE(a.ToHide(b, 0));
  EXPECT_FALSE(a.ToHide(b, 1));  // not a general edge

  a.intvl_v[0] = a.intvl_v[1] = Make({0, 1});
  a.any_edge_visible = true;
  a.SetEdgeUnavailable(0);
  EXPECT_TRUE(a.any_edge_visible);
  a.SetEdgeUnavailable(1);
  EXPECT_FALSE(a.any_edge_visible);

  EXPECT_EQ(ZBR_HL_TRI::EqualSegSeg(kStart, kEnd, kStart, kEnd, 1e-9), 0);
  EXPECT_EQ(ZBR_HL_TRI::EqualSegSeg(kStart, kEnd, kEnd, kStart, 1e-9), 1);
  EXPECT_EQ(ZBR_HL_TRI::EqualSegSeg(kStart, kEnd, kStart, {10, 21, 30}, 1e-9), -1);
  EXPECT_EQ(ZBR_HL_TRI::EqualSegSegX(kStart, kEnd, kStart, {10, 21, 30}, 1e-9), 0);
  EXPECT_EQ(ZBR_HL_TRI::CheckPosZ({5, 10, 15.1}, kStart, kEnd), 1);
  EXPECT_EQ(ZBR_HL_TRI::CheckPosZ({0, 10, 14.9}, kStart, kEnd), -1);  // y is the wider coordinate
}

// What is left of a triangle beside one neighbour across its edge 0, by the cases of neighbour.cpp: visible lengths of its edges.
TEST(Pair, NeighbourCases) {
  const ZBR_PT3 a(0, 0, 0);
  const ZBR_PT3 b(4, 0, 0);
  const struct {
    const char* label;
    ZBR_PT3 third, neighbours;  // the vertices beyond the shared edge
    bool first;                 // the triangle comes before its neighbour, so that the shared edge is its own to draw
    std::array<double, 3> visible;
  } rows[] = {
      {"GoesOn", {2, 4, 0}, {2, -4, 0}, true, {1, 1, 1}},
      {"GoesOn, second", {2, 4, 0}, {2, -4, 0}, false, {0, 1, 1}},
      {"FoldsInFront", {2, 2, 1}, {2, 4, 0}, true, {1, 1, 1}},
      {"FoldsFlat", {2, 2, 0}, {2, 4, 0}, true, {1, 1, 1}},
      {"FoldsFlat, within the tolerance", {2, 2, -1e-8}, {2, 4, 0}, true, {1, 1, 1}},
      {"FoldsFlat, its double above", {2, 4, 1e-8}, {2, 4, 0}, false, {0, 0, 0}},
      {"FoldsFlat, its double below", {2, 4, -1e-8}, {2, 4, 0}, false, {0, 0, 0}},
      {"FoldsBehind", {2, 2, -1}, {2, 4, 0}, true, {1, 0, 0}},
      {"WallByFace, hanging", {2, 0, -4}, {2, 4, 0}, true, {0, 0, 0}},
      {"WallByFace, standing", {2, 0, 4}, {2, 4, 0}, true, {0, 1, 1}},
      {"FaceByWall, hanging", {2, 4, 0}, {2, 0, -4}, true, {1, 1, 1}},
      {"FaceByWall, standing", {2, 4, 0}, {2, 0, 4}, true, {0, 1, 1}},
      {"LongOverLong", {2, 0, 4}, {2, 0, -4}, true, {0, 1, 1}},
      {"WallByWall", {2, 0, -4}, {2, 0, 4}, true, {0, 0, 0}},
      {"Flanks", {8, 0, -4}, {10, 0, -9}, true, {1, 1, 0}},
      {"Flanks, second", {8, 0, -4}, {10, 0, -9}, false, {0, 1, 0}},
  };
  for (const auto& row : rows) {
    for (const bool reversed : {false, true}) {
      Body body({{a, b, row.third}, {b, a, row.neighbours}});
      if (reversed) body.tris[1].pt[0] = a, body.tris[1].pt[1] = b;
      ZBR_HL_TRI& t = body.tris[0];
      t.idx = row.first ? 0 : 2;
      body.tris[1].idx = 1;
      t.adj[0] = 1;
      body.tris[1].adj[0] = t.idx;
      body.Classified();
      t.HiddenLine_TriByTri(body.tris[1]);
      for (std::size_t i = 0; i < 3; ++i) {
        double sum = 0.0;
        for (const ZBR_HL_INTERVAL& v : t.intvl_v[i]) sum += v.e.t - v.s.t;
        EXPECT_NEAR(sum, row.visible[i], 1e-9) << row.label << ", edge " << i << (reversed ? ", reversed" : "");
      }
    }
  }
}

// A line that two triangles have in common is given up only to one that draws it, whichever of them is a wall.
TEST(Pair, CoincidentLinesAreLeftToWhatDrawsThem) {
  const ZBR_PT3 a(0, 0, 0), b(4, 0, 0), face(2, 4, 0), wall(2, 0, -4);
  for (const ZBR_PT3& own : {face, wall}) {
    for (const ZBR_PT3& others : {face, wall}) {
      for (const bool isFirst : {false, true}) {
        Body body({{a, b, own}, {a, b, others}});
        body.tris[0].idx = isFirst ? 0 : 2;
        body.tris[1].idx = 1;
        for (const bool isDrawn : {false, true}) {
          body.tris[1].dispj[0] = isDrawn;
          body.Classified();
          Intervals left;
          body.tris[0].HiddenLine_EdgeByEdgeCoplaner(a, b, 0, body.tris[1], left);
          const bool keepsLine = own.y() != others.y() ? others.y() != 0 : !isFirst;
          EXPECT_EQ(EndsOf(left), isDrawn && keepsLine ? Ends() : Ends({0, 1})) << own.y() << others.y() << isFirst << isDrawn;
        }
      }
    }
  }
}

TEST(Pair, LinesStayOnANeighbourFoldedFlat) {
  Body body({{ZBR_PT3(0, 0, 0), ZBR_PT3(4, 0, 1), ZBR_PT3(0, 4, 0.1)}, {ZBR_PT3(4, 0, 1), ZBR_PT3(0, 0, 0), ZBR_PT3(1, 2, 0.3)}});
  body.tris[0].adj[0] = 1;
  body.tris[1].adj[0] = 0;
  body.shell.HiddenLineSelf();
  EXPECT_EQ(body.shell.GetDispSegNum(), 5U);  // all but one copy of the shared edge
}

#ifndef _WIN32  // where it goes to a debugger: windows/dump_test.cpp
TEST(Triangle, DumpText) {
  Body body({{ZBR_PT3(0, 0, 0), ZBR_PT3(4, 0, 0.5), ZBR_PT3(4, 0, 2)}});
  body.Classified();
  body.tris[0].dispj[1] = false;
  body.shell.index = 7;
  testing::internal::CaptureStderr();
  body.tris[0].OutputInfo("title ", 3, -1);
  EXPECT_EQ(
      testing::internal::GetCapturedStderr(),
      "*************************\ntitle idx : 0 s(3), shell : 7  ★vertical  ■右回り \nadj : -1 , -1 , -1\nprofile : -1 , -1 , "
      "-1\npt[0] : 0 , 0 , 0\npt[1] : 4 , 0 , 0.5\npt[2] : 4 , 0 , 2\nnormal : 0 , -1 , 0\ndispj : 1 , 0 , 1\ninvalid , vertical "
      ", general , \nintvl_v[0] \nintvl_v[1] \nintvl_v[2] [ 0 , 1 ] , \n********************\n\n");
  testing::internal::CaptureStderr();
  ZBR_HL_TRI().OutputInfo("", -1, 2);
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_NE(text.find("idx : -1 e(2), shell : "), std::string::npos);
  EXPECT_EQ(text.find("回り"), std::string::npos);  // no plane, no sense of rotation
}
#endif

}  // namespace
