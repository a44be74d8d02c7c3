// Outlines of random scenes against the projected triangles themselves, and loops closed from pieces.
//
// Lengths are compared on the scale of the object: what is narrower than a billionth of its larger side is nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "hiddenline/scenes.h"
#include "support/expect.h"

namespace {

LoopList OutlineOf(std::vector<ZBR_HL_SHELL>& shells) {
  ZBR_HiddenLine::OutLineObj(shells.data(), static_cast<unsigned>(shells.size()));
  return shells.empty() ? LoopList() : shells[0].outline_all;
}
LoopList OutlineOf(Drawing& drawing) {
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  return OutlineOf(shells);
}

std::vector<const ZBR_HL_TRI*> Faces(const Drawing& drawing) {
  std::vector<const ZBR_HL_TRI*> faces;
  for (const auto& body : drawing.bodies) {
    for (const ZBR_HL_TRI& t : body) {
      if (t.tri_state == 1) faces.push_back(&t);
    }
  }
  return faces;
}

double SizeOf(const Drawing& drawing) {
  double size = 0.0;
  for (const ZBR_HL_TRI* s : Faces(drawing)) {
    for (const ZBR_HL_TRI* t : Faces(drawing)) size = std::max({size, t->max_x - s->min_x, t->max_y - s->min_y});
  }
  return size;
}

std::vector<ZBR_SEG> EdgesOf(const LoopList& loops) {
  std::vector<ZBR_SEG> edges;
  for (const Ring& ring : RingsOf(loops)) {
    for (std::size_t i = 0; i < ring.size(); ++i) edges.emplace_back(ring[i], ring[(i + 1) % ring.size()]);
  }
  return edges;
}

// Distance from the line a-b, positive on its left.
double Left(const ZBR_PT& p, const ZBR_PT& a, const ZBR_PT& b) {
  return (b - a).OuterProduct(p - a) / a.Distance(b);
}

// The part of a-b, as a range of parameters, along which s runs within `slack`.
std::pair<double, double> Along(const ZBR_PT& a, const ZBR_PT& b, const ZBR_SEG& s, double slack) {
  const double from = (s.s() - a).InnerProduct(b - a) / a.Distance2(b);
  const double to = (s.e() - a).InnerProduct(b - a) / a.Distance2(b);
  const double low = std::max(0.0, std::min(from, to));
  const double high = std::min(1.0, std::max(from, to));
  if (!(high > low)) return {0.0, 0.0};
  for (const double t : {low, high}) {
    const ZBR_PT p = s.s() + (s.e() - s.s()) * ((t - from) / (to - from));
    if (std::abs(Left(p, a, b)) > slack) return {0.0, 0.0};
  }
  return {low, high};
}

// Loops are nested, and their edges neither cross nor, for longer than `alike`, run over each other; no loop passes a vertex twice.
void ExpectSound(const LoopList& loops, double size, double alike = 1e-5) {
  EXPECT_TRUE(IsNested(loops, 0.0));
  const std::vector<ZBR_SEG> edges = EdgesOf(loops);
  const double slack = 1e-8 * size;
  const auto parts = [&](const ZBR_SEG& a, const ZBR_SEG& b) {
    const double s = Left(a.s(), b.s(), b.e());
    const double e = Left(a.e(), b.s(), b.e());
    return std::min(s, e) < -slack && std::max(s, e) > slack;
  };
  for (const ZBR_SEG& a : edges) {
    EXPECT_GT(a.s().Distance2(a.e()), 0.0);
    for (const ZBR_SEG& b : edges) {
      if (&b <= &a) continue;
      const auto [low, high] = Along(a.s(), a.e(), b, 1e-10 * size);
      EXPECT_FALSE(parts(a, b) && parts(b, a)) << "crossing near " << a.s().x() << ' ' << a.s().y();
      EXPECT_LE((high - low) * a.s().Distance(a.e()), alike * size) << "twice near " << a.s().x() << ' ' << a.s().y();
    }
  }
  for (const Ring& ring : RingsOf(loops)) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      for (std::size_t k = 0; k < i; ++k) EXPECT_GT(ring[i].Distance(ring[k]), 1e-10 * size) << "passed twice";
    }
  }
}

// Whether one of the faces lies over p: 1 yes, 0 no, -1 unclear, as p is close to the line of an edge.
int IsCovered(const ZBR_PT& p, const std::vector<const ZBR_HL_TRI*>& faces, double slack) {
  bool covered = false;
  for (const ZBR_HL_TRI* t : faces) {
    int left = 0;
    for (int i = 0; i < 3; ++i) {
      const double off = Left(p, t->pt[i].xy(), t->pt[(i + 1) % 3].xy());
      if (std::abs(off) < slack) return -1;
      left += off > 0.0 ? 1 : 0;
    }
    covered |= left % 3 == 0;
  }
  return covered ? 1 : 0;
}

// Places all over, and beside edges where mistakes are likely, are inside exactly when a triangle lies over them.
void ExpectCovered(const Drawing& drawing, const LoopList& loops, double size, Random& random) {
  const std::vector<const ZBR_HL_TRI*> faces = Faces(drawing);
  const ZBR_TmpEps guard(1e-9 * size);
  const ZBR_LOOP_LOCATOR inside(loops);
  for (int n = faces.empty() ? 0 : 200; n > 0; --n) {
    const ZBR_HL_TRI& t = *faces[random() % faces.size()];
    const double spread = Below(random, 2) == 0 ? 0.5 : 1e-5;
    const ZBR_PT at = t.pt[0].xy() + (t.pt[1].xy() - t.pt[0].xy()) * Unit(random);
    const ZBR_PT p = at + ZBR_PT{Unit(random) - 0.5, Unit(random) - 0.5} * (spread * size);
    const int covered = IsCovered(p, faces, 1e-7 * size);
    if (covered < 0) continue;
    ASSERT_EQ(inside.IsInside(p), covered == 1 ? ZBR_PI_IN : ZBR_PI_OUT) << std::hexfloat << "at " << p.x() << ' ' << p.y();
  }
}

class OutlineOfScenes : public testing::TestWithParam<SceneFamily> {};

TEST_P(OutlineOfScenes, AreTheEdgesOfWhatTrianglesCover) {
  std::size_t loopCount = 0;
  for (int seed = 0; seed < Scaled(40); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(static_cast<std::uint64_t>(seed));
    Drawing drawing = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    Drawing processed = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    const LoopList loops = OutlineOf(shells);
    const double size = SizeOf(drawing);
    loopCount += RingsOf(loops).size();
    ExpectSound(loops, size);
    ExpectCovered(drawing, loops, size, random);
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
    ExpectSound(loops, SizeOf(drawing), 1.0);
    ExpectCovered(drawing, loops, SizeOf(drawing), random);
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

// Size and place do not matter as long as the coordinates can tell the triangles.
TEST_P(OutlineOfScenes, OfAnySize) {
  const ZBR_TmpEps guard(1e-9);
  for (int seed = 0; seed < Scaled(10); ++seed) {
    LoopList loops[2];
    const double factors[] = {1.0, seed % 2 == 0 ? 0x1p30 : 0x1p-10};
    for (int k = 0; k < 2; ++k) {
      Random random(static_cast<std::uint64_t>(seed));
      const std::vector<Mesh> bodies = GetParam().bodies(random);
      Drawing drawing = Draw(bodies, RandomView(random));
      Scale(drawing, ZBR_PT3(1, 1, 1) * factors[k]);
      loops[k] = OutlineOf(drawing);
    }
    EXPECT_EQ(RingsOf(loops[0]).size(), RingsOf(loops[1]).size()) << "seed " << seed;
    EXPECT_NEAR(NetArea(loops[1]) / (factors[1] * factors[1]), NetArea(loops[0]), 1e-9 * NetArea(loops[0])) << "seed " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(Families, OutlineOfScenes, testing::ValuesIn(SceneFamilies()), testing::PrintToStringParamName());

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

TEST(OutlineLoops, CasesByName) {
  const struct {
    const char* name;
    const char* rings;   // as directed
    const char* others;  // open lines of pieces that belong to no loop
    const char* expected;
  } rows[] = {
      {"nothing", "", "", ""},
      {"a square", "0 0, 4 0, 4 4, 0 4", "", "16:1+0 by 4"},
      {"points straight between others", "0 0, 1 0, 4 0, 4 4, 2 4, 0 4", "", "16:1+0 by 4"},
      {"squares touching at a corner", "0 0, 4 0, 4 4, 0 4; 4 4, 8 4, 8 8, 4 8", "", "32:2+0 by 8"},
      {"squares touching at two corners", "0 0, 4 0, 4 4, 0 4; 4 4, 8 4, 8 8, -4 8, -4 4, 0 4, 2 6", "", "60:2+0 by 11"},
      {"a hole", "0 0, 8 0, 8 8, 0 8; 2 2, 2 4, 4 4, 4 2", "", "60:1+1 by 8"},
      {"a hole touching the outer loop", "0 0, 8 0, 8 8, 0 8; 0 0, 2 4, 4 2", "", "58:1+1 by 7"},
      {"holes touching each other", "0 0, 8 0, 8 8, 0 8; 2 2, 2 4, 4 4, 4 2; 4 4, 4 6, 6 6, 6 4", "", "56:1+2 by 12"},
      {"an island touching its hole", "0 0, 8 0, 8 8, 0 8; 2 2, 2 6, 6 6, 6 2; 2 2, 4 3, 3 4", "", "49.5:2+1 by 11"},
      {"repeats", "0 0, 4 0, 4 4, 0 4; 0 0, 4 0, 4 4, 0 4", "", "16:1+0 by 4"},
      {"squares sharing a side", "0 0, 4 0, 4 4, 0 4; 4 0, 8 0, 8 4, 4 4", "", "32:1+0 by 4"},
      {"pieces that do not close", "0 0, 4 0, 4 4, 0 4", "4 4, 5 5, 6 5; 4 4, 3 3, 3 2; 2 2, 0 4; 9 9, 8 9", "16:1+0 by 4"},
      {"a way there and back", "0 0, 4 0, 4 4, 0 4", "4 4, 6 6, 4 4", "16:1+0 by 4"},
      {"a loop without width", "0 0, 4 0, 4 4, 0 4; 1 6, 3 6, 2 6.000000001", "", "16:1+0 by 4"},
      {"points", "0 0, 4 0, 4 4, 0 4", "4 4, 4 4; 1 1, 1 1", "16:1+0 by 4"},
  };
  for (const auto& row : rows) {
    std::vector<ZBR_SEG> pieces = EdgesOf(ParseLoops(row.rings));
    for (const Ring& line : RingsOf(ParseLoops(row.others))) {
      for (std::size_t i = 0; i + 1 < line.size(); ++i) pieces.emplace_back(line[i], line[i + 1]);
    }
    for (std::uint64_t seed = 0; seed < 30; ++seed) {
      SCOPED_TRACE(std::string(row.name) + " seed " + std::to_string(seed));
      Random random(seed);
      std::vector<ZBR_HL_OPT_PT> ends;
      for (std::size_t n = pieces.size(); n > 0; --n) {
        std::swap(pieces[n - 1], pieces[random() % n]);
        ends.emplace_back().pt = pieces[n - 1].s();
        ends.emplace_back().pt = pieces[n - 1].e();
      }
      if (seed % 3 == 0) ends.emplace_back().pt.Set(std::nan(""), 0.0);
      if (seed % 6 == 0) ends.emplace_back().pt.Set(0.0, 0.0);
      LoopList loops = ParseLoops("7 7, 9 7, 9 9");  // to be replaced
      const int count = zbrMakeOutLineLoops(ends, loops);
      EXPECT_EQ(count, static_cast<int>(loops.size()));
      std::size_t points = 0;
      for (const Ring& ring : RingsOf(loops)) points += ring.size();
      char text[64] = "";
      if (count > 0) {
        std::snprintf(text, sizeof text, "%g:%d+%zu by %zu", NetArea(loops), count, RingsOf(loops).size() - loops.size(), points);
      }
      EXPECT_STREQ(text, row.expected) << ToText(loops);
      ExpectSound(loops, 8.0);
    }
  }
}

}  // namespace
