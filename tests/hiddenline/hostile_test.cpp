// Input that once hung, crashed or leaked, and must not again.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include <zbr/zbr.h>

namespace {

ZBR_HL_TRI Triangle(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) {
  ZBR_HL_TRI t;
  t.pt[0] = a;
  t.pt[1] = b;
  t.pt[2] = c;
  for (bool& drawn : t.dispj) drawn = true;
  return t;
}

// Many triangles that are points in plan, in a corner of the shell, where boxes stop getting smaller.
TEST(Hostile, PointsInPlanDoNotSinkForEver) {
  for (const double size : {1.0, 1e12, 1.5e308}) {
    const ZBR_TmpEps exact(size == 1.0 ? 0.0 : 1e-5);
    const double low = 0.3 * size;
    std::vector<ZBR_HL_TRI> tris;
    tris.push_back(Triangle({low, low, 0}, {size, low, 0}, {low, size, 0}));
    for (int i = 0; i < 300; ++i) tris.push_back(Triangle({low, low, 1}, {low, low, 2}, {low, low, 3}));
    ZBR_HL_SHELL shell(tris.data(), static_cast<unsigned>(tris.size()));
    shell.HiddenLineSelf();
    EXPECT_EQ(tris[0].any_edge_visible, size < 1e75);
    EXPECT_EQ(shell.GetAvailableTriNum(), size < 1e75 ? 1U : 0U);
  }
}

TEST(Hostile, HalfASegmentTakesNoPart) {
  for (std::size_t ends = 1; ends < 8; ends += 2) {
    std::vector<ZBR_HL_OPT_PT> records(ends);
    for (std::size_t i = 0; i < ends; ++i) records[i].pt.Set(static_cast<double>(i), 0.0);
    std::vector<std::vector<ZBR_PT>> lines;
    EXPECT_EQ(zbrOptimizeSegs(records, lines), static_cast<int>(ends / 2));
    EXPECT_EQ(records.back().state, OPT_ZERO);
  }
}

TEST(Hostile, HiddenSegmentsAreFinite) {
  for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(), 1e308}) {
    std::vector<ZBR_HL_TRI> tris;
    tris.push_back(Triangle({0, 0, 0}, {1, 0, 0}, {0, 1, bad}));
    tris.push_back(Triangle({0, 0, 0}, {bad, 0, 0}, {-bad, 1, 0}));
    ZBR_HL_SHELL shell(tris.data(), 2);
    ZBR_HiddenLine::HiddenLineObj(&shell, nullptr, 1);
    for (int mode = 0; mode <= 3; ++mode) {
      std::vector<ZBR_SEG> hidden;
      ZBR_HiddenLine::GetHiddenLineObj(&shell, hidden, mode, 1);
      for (const ZBR_SEG& s : hidden) EXPECT_TRUE(std::isfinite(s.s().Distance2(s.e()))) << "mode " << mode;
    }
  }
}

TEST(Hostile, EdgeNumbersOutOfRangeAreNoNeighbours) {
  for (const int wrong : {3, 1000000, -7}) {
    std::vector<ZBR_HL_TRI> tris;
    tris.push_back(Triangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
    tris.push_back(Triangle({1, 0, 0}, {0, 0, 0}, {0, -1, 0}));
    tris[0].adj[0] = 1;
    tris[1].adj[0] = 0;
    tris[0].adj_edge[0] = tris[1].adj_edge[0] = wrong;
    ZBR_HL_SHELL shell(tris.data(), 2);
    std::vector<std::vector<ZBR_PT>> lines;
    ZBR_HiddenLine::HiddenLineObj(&shell, &lines, 1);
    EXPECT_FALSE(lines.empty());
  }
}

}  // namespace
