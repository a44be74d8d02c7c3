// Outlines of random scenes against the projected triangles themselves, and loops closed from pieces.
//
// Lengths are compared on the scale of the object: what is narrower than a billionth of its larger side is nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "hiddenline/scenes.h"
#include "support/expect.h"
#include "support/judge.h"

namespace {

ZBR_PT CornerOf(const std::vector<ZBR_HL_SHELL>& shells, const ZBR_HL_SOURCE& s, int k) {
  return shells[static_cast<std::size_t>(s.shell)].tris[s.triangle].pt[(s.edge + k) % 3].xy();
}

// The pieces lie on the edge from p to q and cover it.
void ExpectCovered(const std::vector<ZBR_HL_SHELL>& shells, const ZBR_PT& p, const ZBR_PT& q, std::span<const ZBR_HL_PIECE> pieces,
                   double tolerance) {
  const ZBR_PT d = (q - p) / q.Distance(p);
  double reached = 0.0;
  for (const ZBR_HL_PIECE& piece : pieces) {
    const ZBR_PT from = CornerOf(shells, piece.source, 0) - p;
    const ZBR_PT to = CornerOf(shells, piece.source, 1) - p;
    const ZBR_PT ends[] = {from + (to - from) * piece.t0, from + (to - from) * piece.t1};
    for (const ZBR_PT& end : ends) EXPECT_LE(std::fabs(d.OuterProduct(end)), tolerance);
    EXPECT_LE(d.InnerProduct(ends[0]) - reached, tolerance) << "a gap";
    EXPECT_GE(d.InnerProduct(ends[1] - ends[0]), -tolerance) << "runs back";
    reached = std::max(reached, d.InnerProduct(ends[1]));
  }
  EXPECT_GE(reached, q.Distance(p) - tolerance) << "an end without source";
}

// Edges are covered by their sources, and corners are vertices to the bit.
void ExpectSources(const std::vector<ZBR_HL_SHELL>& shells, const ZBR_HL_OUTLINE_SOURCES& sources, double tolerance) {
  std::size_t edge = 0;
  ForEachEdge(RingsOf(shells[0].outline_all), [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT& q) {
    ASSERT_LT(edge + 1, sources.offsets.size());
    const std::span pieces(sources.pieces);
    const std::size_t first = sources.offsets[edge];
    ExpectCovered(shells, p, q, pieces.subspan(first, sources.offsets[edge + 1] - first), tolerance);
    const ZBR_HL_SOURCE& corner = sources.corners[edge++];
    if (corner.triangle >= 0) {
      EXPECT_EQ(CornerOf(shells, corner, 0).Distance(p), 0.0);
    }
  });
  EXPECT_EQ(sources.offsets.size(), edge + 1);
  EXPECT_EQ(sources.corners.size(), edge);
}

LoopList OutlineOf(std::vector<ZBR_HL_SHELL>& shells) {
  ZBR_HL_OUTLINE_SOURCES sources;
  ZBR_HiddenLine::OutLineObj(shells.data(), static_cast<unsigned>(shells.size()), sources);
  if (shells.empty()) return {};
  ExpectSources(shells, sources, 1e-8 * RegionJudge(FacesOf(shells), {}).Extent());
  return shells[0].outline_all;
}
LoopList OutlineOf(Drawing& drawing) {
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  return OutlineOf(shells);
}

// Loops are nested, wind once around what the triangles wind around at all, and pass no vertex twice.
void ExpectOutline(const LoopList& loops, Drawing& drawing) {
  EXPECT_TRUE(IsNested(loops, 0.0));
  const RegionJudge judge(FacesOf(drawing.Shells()), {}, kFillNonZero);
  const Verdict verdict = judge.Judge(ZBR_BOOL_OR, RingsOf(loops));
  EXPECT_FALSE(judge.IsWrong(verdict, 1e-9 * judge.Extent()))
      << verdict.area << " near " << verdict.place.x() << ' ' << verdict.place.y();
  for (const Ring& ring : RingsOf(loops)) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      for (std::size_t k = 0; k < i; ++k) EXPECT_GT(ring[i].Distance(ring[k]), 1e-10 * judge.Extent()) << "passed twice";
    }
  }
}

class OutlineOfScenes : public testing::TestWithParam<SceneFamily> {};

TEST_P(OutlineOfScenes, AreTheEdgesOfWhatTrianglesCover) {
  std::size_t loopCount = 0;
  for (int seed = 0; seed < Scaled(40); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Drawing drawing = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    Drawing processed = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    const LoopList loops = OutlineOf(shells);
    loopCount += RingsOf(loops).size();
    ExpectOutline(loops, drawing);
    ASSERT_EQ(ToText(shells[0].outline), ToText(loops));
    if (!loops.empty()) {
      ASSERT_NE(shells[0].outline[0], loops[0]);
    }
    std::vector<ZBR_HL_SHELL> again = processed.Shells();
    ZBR_HiddenLine::HiddenLine_Shells(again.data(), static_cast<unsigned>(again.size()));
    const std::string visible = StateText(again);
    ASSERT_EQ(ToText(OutlineOf(again)), ToText(loops));
    ASSERT_EQ(StateText(again), visible);
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GE(loopCount, static_cast<std::size_t>(Scaled(40)));
}

// Triangles between points of a lattice, which share corners and sides, or of a curve that is almost straight, so that faces are
// seen nearly edge-on; shaken by rounding errors up to a ten-thousandth of the size; near the origin or far from it.
Drawing Crowd(Random& random) {
  const bool isLattice = Below(random, 2) == 0;
  const double shake = std::pow(10.0, Below(random, 2) == 0 ? -9.0 + Unit(random) : -4.0 - Below(random, 12));
  const double bend = Below(random, 3) == 0 ? 0.0 : std::pow(10.0, -1.0 - Below(random, 9));
  const double turn = Unit(random);
  const double far[] = {0.0, 0.0, 1e6, 1e8};
  const ZBR_PT3 place = ZBR_PT3(1, -0.3, 0) * far[Below(random, 4)];
  std::vector<ZBR_PT3> points;
  for (int n = isLattice ? 75 : 4 + Below(random, 60); n > 0; --n) {
    const double t = isLattice ? n % 5 / 5.0 : Below(random, 2) == 0 ? Unit(random) : Below(random, 8) / 8.0;
    const double off = isLattice ? n / 15 / 5.0 : bend * t * (1.0 - t);
    const ZBR_PT3 shaken{shake * Unit(random), shake * Unit(random), Unit(random)};
    points.push_back((ZBR_PT3(t - turn * off, turn * t + off, 0.0) + shaken) * 100.0 + place);
  }
  Drawing drawing;
  drawing.bodies.resize(1);
  for (int n = 6 + Below(random, isLattice ? 15 : 120); n > 0; --n) {
    ZBR_HL_TRI& t = drawing.bodies[0].emplace_back();
    for (ZBR_PT3& p : t.pt) p = points[random() % points.size()];
  }
  return drawing;
}

TEST(OutlineOfCrowds, AreTheEdgesOfWhatTrianglesCover) {
  const ZBR_TmpEps guard(1e-12);
  for (int seed = 0; seed < Scaled(500); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(static_cast<std::uint64_t>(seed));
    Drawing drawing = Crowd(random);
    const LoopList loops = OutlineOf(drawing);
    ExpectOutline(loops, drawing);
    ASSERT_FALSE(HasFailure());
  }
}

// Many crossings close to grid cells' corners, in every frame that the search may be turned to.
TEST(OutlineOfCrowds, BarsAcrossBarsAtAnyAngle) {
  constexpr int kBars = 40;
  const double width = 0.6 / kBars;
  for (const double slope : {0.0, 0.2, 0.31, 0.77, 1.0, 2.9}) {
    const ZBR_PT along = ZBR_PT(1.0, slope) / std::hypot(1.0, slope);
    std::vector<ZBR_HL_TRI> tris(4 * kBars);
    for (int k = 0; k < 2 * kBars; ++k) {
      const double from = static_cast<double>(k / 2) / kBars;
      ZBR_PT corners[] = {{from, -0.1}, {from + width, -0.1}, {from + width, 1.1}, {from, 1.1}};
      for (ZBR_PT& c : corners) {
        if (k % 2 == 1) c.Set(c.y(), c.x());
        c = along * c.x() + ZBR_PT(-along.y(), along.x()) * c.y();
      }
      const int vertices[2][3] = {{0, 1, 2}, {0, 2, 3}};
      for (int t = 0; t < 2; ++t) {
        for (int i = 0; i < 3; ++i) tris[static_cast<std::size_t>(2 * k + t)].pt[i].xy() = corners[vertices[t][i]];
      }
    }
    ZBR_HL_SHELL shell(tris.data(), static_cast<unsigned>(tris.size()));
    ZBR_HiddenLine::OutLineObj(&shell, 1);
    ASSERT_EQ(shell.outline_all.size(), 1U) << slope;
    EXPECT_EQ(shell.outline_all[0]->children().size(), std::size_t{(kBars - 1) * (kBars - 1)}) << slope;
    EXPECT_NEAR(NetArea(shell.outline_all), kBars * width * (2.4 - kBars * width), 1e-9) << slope;
  }
}

INSTANTIATE_TEST_SUITE_P(Families, OutlineOfScenes, testing::ValuesIn(SceneFamilies()), testing::PrintToStringParamName());

// A square of two triangles; either, both or none names the other as its neighbour.
TEST(OutlineOfTriangles, ThatNameNoneOrOneOfTwoNeighbours_IsThatOfAll) {
  for (const unsigned named : {0U, 1U, 2U, 3U}) {
    std::vector<ZBR_HL_TRI> tris(2);
    const ZBR_PT3 corners[2][3] = {{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, {{0, 0, 0}, {10, 10, 0}, {0, 10, 0}}};
    for (std::size_t t = 0; t < 2; ++t) std::copy(corners[t], corners[t] + 3, tris[t].pt);
    if ((named & 1U) != 0) tris[0].adj[2] = 1;
    if ((named & 2U) != 0) tris[1].adj[0] = 0;
    ZBR_HL_SHELL shell(tris.data(), 2);
    ZBR_HiddenLine::OutLineObj(&shell, 1);
    EXPECT_EQ(NetArea(shell.outline_all), 100) << named;
  }
}

// Two lie over each other and name a third one, which can be the neighbour of one only.
TEST(OutlineOfTriangles, OfWhichTwoNameOneNeighbour_IsThatOfAll) {
  std::vector<ZBR_HL_TRI> tris(3);
  const ZBR_PT3 corners[3][3] = {
      {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, {{0, 0, 0}, {10, 10, 0}, {0, 10, 0}}, {{0, 0, 0}, {10, 10, 0}, {2, 8, 0}}};
  for (std::size_t t = 0; t < 3; ++t) std::copy(corners[t], corners[t] + 3, tris[t].pt);
  tris[0].adj[2] = 1;
  tris[1].adj[0] = tris[2].adj[0] = 0;
  ZBR_HL_SHELL shell(tris.data(), 3);
  ZBR_HiddenLine::OutLineObj(&shell, 1);
  EXPECT_EQ(NetArea(shell.outline_all), 100);
  EXPECT_EQ(tris[2].profile[0], 0);
}

// The edge from 0 to 10 has a triangle beside its first three units; run through either way by triangles that turn either way.
TEST(OutlineWalk, TakesWhatATriangleBesideTheEdgeCovers) {
  for (const bool reversed : {false, true}) {
    const ZBR_PT3 a(0, 0, 0), b(10, 0, 0);
    Drawing drawing = DrawTriangles(
        {{reversed ? b : a, reversed ? a : b, ZBR_PT3(5, 5, 0)}, {ZBR_PT3(0, 0, 7), ZBR_PT3(0, -3, 7), ZBR_PT3(3, 0, 7)}});
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
    const ZBR_HL_TRI& t = shells[0].tris[0];
    std::vector<ZBR_HL_INTERVAL> parts = {{t.pt[0], t.pt[1], 0.0, 1.0}};
    ZBR_HiddenLine::OutLine_TriByShell(t, 0, shells[0], parts);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_NEAR(parts[0].s.t, reversed ? 0.0 : 0.3, 1e-12);
    EXPECT_NEAR(parts[0].e.t, reversed ? 0.7 : 1.0, 1e-12);
    ZBR_HiddenLine::OutLineObj(shells.data(), 1);
    EXPECT_TRUE(t.profile[0] == 1 && t.profile[1] == 2 && t.profile[2] == 2);
  }
}

// An outline taken before shells are processed fixes nothing: their triangles may still be moved.
TEST(OutlineWalk, LeavesExtentsToBeFound) {
  Drawing drawing = DrawTriangles({{ZBR_PT3(0, 0, 0), ZBR_PT3(9, 0, 0), ZBR_PT3(0, 9, 0)}});
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  ZBR_HiddenLine::OutLineObj(shells.data(), 1);
  for (ZBR_PT3& p : shells[0].tris[0].pt) p = p + ZBR_PT3(100, 0, 0);
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), 1);
  double z = -1.0;
  EXPECT_TRUE(ZBR_HiddenLine::PickShells(103, 3, shells.data(), 1, z));
}

// A ring and a rod, narrower than what counts as a wall for the hidden lines, in their facets or altogether.
TEST(OutlineOfSlenderParts, HasAllTheirArea) {
  const auto at = [](int k, double r) { return ZBR_PT3(r * std::cos(k * 0.1), r * std::sin(k * 0.1), 0); };
  for (const double width : {1e-4, 1e-5, 1e-6}) {
    std::vector<Corners> ring;
    double expected = 0.0;
    for (int k = 0; k < 60; ++k) {
      ring.push_back({at(k, 100), at(k, 100 + width), at(k + 1, 100 + width)});
      ring.push_back({at(k, 100), at(k + 1, 100 + width), at(k + 1, 100)});
    }
    for (const Corners& t : ring) expected += (t[1].xy() - t[0].xy()).OuterProduct(t[2].xy() - t[0].xy()) / 2.0;
    Drawing drawing = DrawTriangles(ring);
    EXPECT_NEAR(ZBR_LOOP::get_area(OutlineOf(drawing)), expected, 1e-6 * width * 600);
  }
  for (const int sides : {64, 500}) {  // 0.1 mm thick, 1 m long, in metres
    std::vector<Corners> rod;
    const Mesh mesh = example::Cylinder(sides, 5e-5, 1.0);
    for (const auto& t : mesh.triangles) {
      Corners& c = rod.emplace_back();
      for (std::size_t i = 0; i < 3; ++i) c[i] = {mesh.points[t[i]].z(), mesh.points[t[i]].x(), mesh.points[t[i]].y()};
    }
    Drawing drawing = DrawTriangles(rod);
    EXPECT_NEAR(ZBR_LOOP::get_area(OutlineOf(drawing)), 1e-4, 1e-7);
  }
}

}  // namespace
