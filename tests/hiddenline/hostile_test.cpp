// Input that is no drawing, or once hung, crashed or leaked, and must not again.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "hiddenline/check.h"
#include "hiddenline/scenes.h"

namespace {

// Many triangles that are points in plan, in a corner of the shell, where boxes stop getting smaller.
TEST(Hostile, PointsInPlanDoNotSinkForEver) {
  for (const double size : {1.0, 1e12, 1.5e308}) {
    const ZBR_TmpEps exact(size == 1.0 ? 0.0 : 1e-5);
    const double low = 0.3 * size;
    std::vector<Corners> corners(301, {ZBR_PT3(low, low, 1), ZBR_PT3(low, low, 2), ZBR_PT3(low, low, 3)});
    corners[0] = {ZBR_PT3(low, low, 0), ZBR_PT3(size, low, 0), ZBR_PT3(low, size, 0)};
    Drawing drawing = DrawTriangles(corners);
    ZBR_HL_SHELL shell = drawing.Shells()[0];
    shell.HiddenLineSelf();
    EXPECT_EQ(drawing.bodies[0][0].any_edge_visible, size < 1e75);
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

TEST(Hostile, EdgeNumbersOutOfRangeAreNoNeighbours) {
  for (const int wrong : {3, 1000000, -7}) {
    Drawing drawing = DrawTriangles(
        {{ZBR_PT3(0, 0, 0), ZBR_PT3(1, 0, 0), ZBR_PT3(0, 1, 0)}, {ZBR_PT3(1, 0, 0), ZBR_PT3(0, 0, 0), ZBR_PT3(0, -1, 0)}});
    for (int k = 0; k < 2; ++k) {
      drawing.bodies[0][static_cast<std::size_t>(k)].adj[0] = 1 - k;
      drawing.bodies[0][static_cast<std::size_t>(k)].adj_edge[0] = wrong;
    }
    ZBR_HL_SHELL shell = drawing.Shells()[0];
    std::vector<std::vector<ZBR_PT>> lines;
    ZBR_HiddenLine::HiddenLineObj(&shell, &lines, 1);
    EXPECT_FALSE(lines.empty());
  }
}

// Extents that the caller set, of triangles that were changed since: the one of which they are no numbers is drawn all the same.
TEST(Hostile, ExtentsThatAreNoNumbersLoseNoTriangle) {
  std::vector<Corners> corners;
  for (int i = 0; i < 5000; ++i)  // more than are gone through in one piece
    corners.push_back({ZBR_PT3(i, 0, 0), ZBR_PT3(i + 0.5, 0, 0), ZBR_PT3(i, 0.5, 0)});
  for (const double bad : {NAN, INFINITY}) {
    Drawing drawing = DrawTriangles(corners);
    ZBR_HL_SHELL shell = drawing.Shells()[0];
    shell.GetMaxMin();
    ZBR_HL_TRI& changed = drawing.bodies[0][77];
    changed.min_x = changed.max_x = changed.max_z = bad;
    EXPECT_TRUE(ZBR_HiddenLine::RemoveAll(&shell, 1));
    EXPECT_EQ(changed.GetDispSegNum(), 3U);
    EXPECT_EQ(shell.GetAvailableTriNum(), 5000U);
  }
}

// Where triangles are a few roundings wide, places at which edges pass through planes came to lie beyond their ends.
TEST(Hostile, FarFromTheOriginPartsStayOnTheirEdges) {
  std::size_t parts = 0;
  for (std::uint64_t seed = 0; seed < 40; ++seed) {
    Random random(seed);
    const auto at = [&](double offset) { return offset + 1.52587890625e-5 * static_cast<double>(random() % 12); };
    std::vector<Corners> triangles(30);
    for (Corners& corners : triangles) {
      for (ZBR_PT3& p : corners) p = ZBR_PT3(at(1e11), at(1e11), at(seed % 2 == 0 ? 1e11 : 0.0));
    }
    Drawing drawing = DrawTriangles(triangles);
    ZBR_HL_SHELL shell = drawing.Shells()[0];
    ZBR_HiddenLine::RemoveAll(&shell, 1);
    for (const ZBR_HL_TRI& t : drawing.bodies[0]) {
      ASSERT_EQ(zbr::VisibleFault(t), nullptr) << seed;
      parts += t.GetDispSegNum();
    }
  }
  EXPECT_GT(parts, 1000U);
}

// Triangles that are not finite draw and hide nothing: the others are as if they were not there. Those with very large coordinates
// take part or not, as far as one can compute with them; what is drawn has numbers for coordinates.
TEST(Hostile, BadCoordinatesDoNoHarm) {
  const double bad[] = {NAN, INFINITY, -INFINITY, 1e100, -1e200, std::numeric_limits<double>::max()};
  for (int seed = 0; seed < Scaled(60); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const bool huge = seed % 2 == 1;
    Random random(static_cast<std::uint64_t>(seed));
    const std::vector<Mesh> bodies = SceneFamilies()[static_cast<std::size_t>(seed) / 2 % SceneFamilies().size()].bodies(random);
    const View view = RandomView(random);
    Drawing poisoned = Draw(bodies, view);
    Drawing clean = Draw(bodies, view);
    ForgetNeighbours(poisoned);
    ForgetNeighbours(clean);
    for (std::size_t b = 0; b < clean.bodies.size(); ++b) {
      for (std::size_t k = clean.bodies[b].size(); k-- > 0;) {
        if (Below(random, 5) != 0) continue;
        ZBR_PT3& p = poisoned.bodies[b][k].pt[Below(random, 3)];
        const double c = bad[Below(random, 3) + (huge ? 3 : 0)];
        const int axis = Below(random, 3);
        p.Set(axis == 0 ? c : p.x(), axis == 1 ? c : p.y(), axis == 2 ? c : p.z());
        clean.bodies[b].erase(clean.bodies[b].begin() + static_cast<std::ptrdiff_t>(k));
      }
    }
    std::vector<ZBR_HL_SHELL> shells = poisoned.Shells();
    std::vector<ZBR_HL_SHELL> cleanShells = clean.Shells();
    const auto count = static_cast<unsigned>(shells.size());
    ZBR_HiddenLine::HiddenLine_Shells(shells.data(), count);
    ZBR_HiddenLine::HiddenLine_Shells(cleanShells.data(), count);
    for (std::size_t b = 0; b < count && !huge; ++b) {
      EXPECT_EQ(shells[b].GetDispSegNum(), cleanShells[b].GetDispSegNum());
      EXPECT_TRUE(std::isfinite(shells[b].max_x - shells[b].min_x) && std::isfinite(shells[b].max_z - shells[b].min_y));
    }
    for (int mode = 0; mode <= 3; ++mode) {
      std::vector<ZBR_SEG> hidden;
      ZBR_HiddenLine::GetHiddenLineObj(shells.data(), hidden, mode, count);
      for (const ZBR_SEG& s : hidden) EXPECT_TRUE(std::isfinite(s.s().Distance2(s.e()))) << "mode " << mode;
    }
    std::vector<std::vector<ZBR_PT>> lines;
    zbrOptimizeHiddenLine(shells.data(), lines, count);
    for (const auto& line : lines) {
      for (const ZBR_PT& p : line) ASSERT_TRUE(std::isfinite(p.x()) && std::isfinite(p.y()));
    }
    double z = 0.0;
    ZBR_HiddenLine::PickShells(1.0, 1.0, shells.data(), count, z);
    EXPECT_FALSE(std::isnan(z));
  }
}

}  // namespace
