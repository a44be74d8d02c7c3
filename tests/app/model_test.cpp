// Models: what is one surface, which edges are drawn, and that generated meshes are sound.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/objects.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/survey.h>
#include <zbr-drawing/triangulate.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "models/models.h"

namespace zbr::drawing {
namespace {

std::size_t CountOf(const Model& model, EdgeClass wanted) {
  std::size_t count = 0;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    for (int e = 0; e < model.Shell(s).GetEdgeCnt(); ++e) count += model.Class(s, *model.Shell(s).GetEdge(e)) == wanted ? 1 : 0;
  }
  return count;
}

std::size_t PointCount(const Model& model) {
  std::size_t count = 0;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) count += static_cast<std::size_t>(model.Shell(s).GetVertexCnt());
  return count;
}

bool RunsAlong(const ZBR_ZBREPT& t, const ZBR_ZBREPE& edge) {
  for (std::size_t i = 0; i < 3; ++i) {
    if (&EdgeOf(t, i) == &edge) return VertexOf(t, i).GetIndex() == edge.GetV0();
  }
  ADD_FAILURE() << "not an edge of the triangle";
  return false;
}

// Records and scene tell the same neighbours, which are mutual, in one shell and at one edge; notes say how they run; shells come
// in order, and so do the triangles in each.
void CheckModel(const Model& model) {
  const Scene scene = MakeScene(model, View());
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    const std::size_t begin = model.shellBegin[s];
    ASSERT_EQ(static_cast<std::size_t>(shell.GetTriangleCnt()), model.shellBegin[s + 1] - begin);
    for (int k = 0; k < shell.GetTriangleCnt(); ++k) {
      const ZBR_ZBREPT& t = *shell.GetTriangle(k);
      const ZBR_HL_TRI& seen = scene.shells[s].tris[k];
      if (k > 0) {
        const std::size_t place = begin + static_cast<std::size_t>(k);
        ASSERT_LT(model.source[place - 1], model.source[place]);
      }
      for (std::size_t i = 0; i < 3; ++i) {
        ZBR_ZBREPE& edge = EdgeOf(t, i);
        const ZBR_ZBREPT* const next = model.Across(s, t, edge);
        const EdgeClass edgeClass = model.Class(s, edge);
        ASSERT_EQ(next == nullptr, edgeClass == EdgeClass::kBorder || edgeClass == EdgeClass::kJunction);
        ASSERT_EQ(seen.adj[i], next == nullptr ? -1 : next->GetIndex());
        if (next == nullptr) continue;
        ASSERT_EQ(next, shell.GetTriangle(next->GetIndex()));
        ASSERT_EQ(&EdgeOf(*next, static_cast<std::size_t>(seen.adj_edge[i])), &edge);
        ASSERT_EQ(model.Across(s, *next, edge), &t);
        ASSERT_EQ(model.Note(s, edge).isSameWay, RunsAlong(t, edge) == RunsAlong(*next, edge));
      }
    }
    if (s > 0) {
      ASSERT_LT(model.source[model.shellBegin[s - 1]], model.source[begin]);
    }
  }
}

struct Sound {
  const char* name;
  Mesh mesh;
  std::size_t shells;
  long euler;         // of each shell, or of the first when they differ
  std::size_t drawn;  // drawable edges seen from nowhere; 0: not counted here
};

TEST(Model, GeneratedBodiesAreClosedAndFaceOutwards) {
  const Sound kCases[] = {
      {"box", example::Box(ZBR_PT3(0, 0, 0), ZBR_PT3(1, 2, 3)), 1, 2, 12},
      {"prism of twelve sides, which bends by just the limit", example::Cylinder(12, 1, 2), 1, 2, 24},
      {"prism of eleven sides", example::Cylinder(11, 1, 2), 1, 2, 33},
      {"L", example::LSolid(1), 1, 2, 18},
      {"U", example::USolid(1), 1, 2, 24},
      {"torus", example::Torus(2000), 1, 0, 0},
      {"gear", example::Gear(2300), 1, 0, 0},
      {"fine gear", example::Gear(30000), 1, 0, 0},
      {"boxes", example::BoxesOnPlate(4), 17, 2, 17 * 12},
      {"gears", example::Gears(2, 1000), 8, 0, 0},
      {"housing: a bore, four bolt holes, six in the flange", example::Housing(), 1, 2 - 2 * 11, 0},
      {"cover, boss and pipe", example::Cover(), 3, 2, 0},
      {"cone through a sphere", example::ConeThroughSphere(), 2, 2, 0},
      {"house, first its walls with ten openings", example::House(), 23, 2 - 2 * 10, 0},
  };
  for (const Sound& c : kCases) {
    SCOPED_TRACE(c.name);
    const Model model = MakeModel(c.mesh, 30);
    CheckModel(model);
    EXPECT_EQ(model.TriangleCount(), c.mesh.triangles.size());
    ASSERT_EQ(model.ShellCount(), c.shells);
    EXPECT_TRUE(std::all_of(model.facing.begin(), model.facing.end(), [](Facing f) { return f == Facing::kOutward; }));
    const Survey survey = MakeSurvey(model);
    EXPECT_TRUE(survey.IsClean());
    EXPECT_EQ(survey.shells[0].euler, c.euler);
    EXPECT_EQ(survey.shells[0].genus, (2 - c.euler) / 2);
    if (c.drawn > 0) {
      EXPECT_EQ(CountOf(model, EdgeClass::kCrease), c.drawn);
    }
  }
}

// A mesh whose triangles have points of their own, as in STL files, each moved by up to `noise`.
Mesh Loose(const Mesh& mesh, double noise) {
  Mesh loose;
  for (const auto& t : mesh.triangles) {
    const auto n = static_cast<std::uint32_t>(loose.points.size());
    for (const std::uint32_t p : t) {
      const double d = noise * (static_cast<double>(loose.points.size() % 7) - 3.0) / 6.0;
      loose.points.push_back(mesh.points[p] + ZBR_PT3(d, -d, d / 2));
    }
    loose.triangles.push_back({n, n + 1, n + 2});
  }
  return loose;
}

TEST(Model, LoosePointsAreWelded) {
  const Mesh torus = example::Torus(1000);
  const Model exact = MakeModel(Loose(torus, 0), 30), noisy = MakeModel(Loose(torus, 1e-6), 30);
  EXPECT_EQ(PointCount(exact), torus.points.size());
  EXPECT_EQ(noisy.ShellCount(), torus.triangles.size());
  const Model welded = MakeModel(Loose(torus, 1e-6), 30, 1e-6);
  CheckModel(welded);
  EXPECT_EQ(PointCount(welded), torus.points.size());
  EXPECT_EQ(welded.ShellCount(), 1U);
  EXPECT_EQ(welded.facing[0], Facing::kOutward);
  // A tolerance of the size of the triangles leaves few of them, but nothing invalid.
  const Model coarse = MakeModel(torus, 30, 0.1);
  CheckModel(coarse);
  EXPECT_GT(coarse.collapsed, 0U);
}

TEST(Model, MeshesThatAreNoSurface) {
  Mesh mesh;
  mesh.points = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {0, 0, 4}, {0, -4, 0}, {2, 3e-7, 0}, {-0.0, 0, 0}};
  const auto made = [&](std::vector<std::array<std::uint32_t, 3>> triangles) {
    mesh.triangles = std::move(triangles);
    Model model = MakeModel(mesh, 30);
    CheckModel(model);
    return model;
  };
  // Three leaves of a book: the spine is a junction and parts them.
  const Model book = made({{0, 1, 2}, {0, 1, 3}, {1, 0, 4}});
  EXPECT_EQ(CountOf(book, EdgeClass::kJunction), 3U);
  EXPECT_EQ(book.ShellCount(), 3U);
  EXPECT_EQ(MakeScene(book, View()).drawable, 7U);
  // Repeated triangles, turned round or not, and those that end where they start, 0 and -0 being the same.
  const Model twice = made({{0, 1, 2}, {1, 3, 2}, {2, 1, 0}, {1, 2, 0}, {0, 6, 1}, {5, 5, 1}});
  EXPECT_EQ(twice.repeated, 2U);
  EXPECT_EQ(twice.collapsed, 2U);
  EXPECT_EQ(twice.TriangleCount(), 2U);
  EXPECT_EQ(made({{0, 1, 2}, {2, 1, 0}}).repeated, 1U);
  // A flat triangle between a long edge and two short ones, turned over by rounding, is no reason to draw them.
  const Model gap = made({{0, 1, 2}, {0, 5, 1}, {5, 0, 4}, {1, 5, 4}});
  EXPECT_EQ(CountOf(gap, EdgeClass::kCrease), 0U);
  EXPECT_EQ(CountOf(gap, EdgeClass::kBorder), 4U);
  // Neighbours of opposite orientation are flat still, and their fold is not.
  EXPECT_EQ(CountOf(made({{0, 1, 2}, {0, 1, 4}}), EdgeClass::kCrease), 0U);
  EXPECT_EQ(CountOf(made({{0, 1, 2}, {0, 1, 3}}), EdgeClass::kCrease), 1U);
  // Nothing at all.
  const Model empty = made({});
  EXPECT_EQ(empty.ShellCount(), 0U);
  EXPECT_EQ(MakeScene(empty, View()).drawable, 0U);
}

TEST(Survey, TellsPinchesFromHandles) {
  Mesh mesh = example::Torus(1000);
  for (auto& t : mesh.triangles) {
    for (std::uint32_t& p : t) p = p == 250 ? 0 : p == 350 ? 100 : p;
  }
  const Survey pinched = MakeSurvey(MakeModel(mesh, 30));
  ASSERT_EQ(pinched.shells.size(), 1U);
  EXPECT_EQ(pinched.pinches, 2U);
  EXPECT_EQ(pinched.shells[0].euler, -2);
  EXPECT_EQ(pinched.shells[0].genus, 1);
  // A fin on two edges makes junctions of them, and no pinch between them.
  const auto edge = mesh.triangles[400];
  mesh.points.emplace_back(5, 5, 5);
  const auto tip = static_cast<std::uint32_t>(mesh.points.size() - 1);
  mesh.triangles.push_back({edge[0], edge[1], tip});
  mesh.triangles.push_back({edge[1], edge[2], tip});
  const Survey fin = MakeSurvey(MakeModel(mesh, 30));
  EXPECT_EQ(fin.junctions, 2U);
  EXPECT_EQ(fin.borders, 2U);
  EXPECT_EQ(fin.pinches, 2U);
  EXPECT_EQ(fin.shells[0].genus, -1);
}

// A band of n quads that is turned by half on the way round.
Mesh Moebius(std::uint32_t n) {
  Mesh mesh;
  for (std::uint32_t i = 0; i < n; ++i) {
    const double a = 6.283185307179586 * i / n, c = std::cos(a / 2) * 0.3, s = std::sin(a / 2) * 0.3;
    for (const double side : {-1.0, 1.0})
      mesh.points.emplace_back((1 + side * c) * std::cos(a), (1 + side * c) * std::sin(a), side * s);
  }
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint32_t a = 2 * i, b = a + 1, c = i + 1 < n ? a + 2 : 1, d = i + 1 < n ? a + 3 : 0;
    mesh.triangles.push_back({a, c, b});
    mesh.triangles.push_back({b, c, d});
  }
  return mesh;
}

TEST(Model, OneSidedBandIsSmoothThroughout) {
  const Model model = MakeModel(Moebius(60), 30);
  CheckModel(model);
  EXPECT_EQ(model.ShellCount(), 1U);
  EXPECT_EQ(model.facing[0], Facing::kUnknown);
  EXPECT_EQ(CountOf(model, EdgeClass::kCrease), 0U);
  EXPECT_EQ(CountOf(model, EdgeClass::kBorder), 120U);
}

// A plate of four facets, one of which lies in the longest edge of its neighbour: whichever way each of them runs, all is flat.
TEST(Model, PlatesAreSmoothWhicheverWayTheirFacetsRun) {
  const std::array<std::array<std::uint32_t, 3>, 4> facets = {{{0, 1, 3}, {1, 0, 2}, {2, 0, 4}, {1, 2, 4}}};
  for (unsigned flips = 0; flips < 16; ++flips) {
    Mesh plate;
    plate.points = {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, -1, 0}};
    for (std::size_t t = 0; t < facets.size(); ++t) {
      plate.triangles.push_back(facets[t]);
      if ((flips >> t & 1U) != 0) std::swap(plate.triangles.back()[0], plate.triangles.back()[1]);
    }
    const Model model = MakeModel(plate, 30);
    CheckModel(model);
    EXPECT_EQ(CountOf(model, EdgeClass::kCrease), 0U) << flips;
    EXPECT_EQ(CountOf(model, EdgeClass::kBorder), 4U) << flips;
  }
}

TEST(Triangulate, AreasAddUp) {
  // A comb with a hole, points in line, and a corner that an ear's diagonal would pass.
  const std::vector<ZBR_PT> points = {{0, 0}, {3, 0}, {6, 0}, {6, 4}, {5, 4}, {5, 1}, {4, 1}, {4, 4}, {2, 4},
                                      {2, 3}, {1, 3}, {1, 4}, {0, 4}, {1, 1}, {1, 2}, {2, 2}, {2, 1}};
  const auto triangles = Triangulate(points, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, {13, 14, 15, 16}});
  EXPECT_EQ(triangles.size(), 17U);  // points + 2 holes - 2
  double area = 0.0;
  for (const auto& t : triangles) {
    const double twice = (points[t[1]] - points[t[0]]).OuterProduct(points[t[2]] - points[t[0]]);
    EXPECT_GT(twice, 0.0);
    area += twice / 2;
  }
  EXPECT_DOUBLE_EQ(area, 24 - 3 - 1 - 1);
  EXPECT_TRUE(Triangulate(points, {{2, 1, 0, 12}}).empty());
}

// A frame of unit squares: every other bridge is as long as the shortest, and both diagonals of a square will do. Which way they
// run follows from the bridge taken, the first, whatever sorts the bridges.
TEST(Triangulate, OfEquallyLongBridgesTheFirstIsTaken) {
  std::vector<ZBR_PT> points;
  std::vector<std::vector<std::uint32_t>> loops(2);
  const auto addSquare = [&](double low, int side, std::vector<std::uint32_t>& loop) {
    for (int i = 0; i < 4 * side; ++i) {
      const double at = low + i % side, back = low + side - i % side, high = low + side;
      const std::array<ZBR_PT, 4> sides = {ZBR_PT(at, low), ZBR_PT(high, at), ZBR_PT(back, high), ZBR_PT(low, back)};
      loop.push_back(static_cast<std::uint32_t>(points.size()));
      points.push_back(sides[static_cast<std::size_t>(i / side)]);
    }
  };
  addSquare(0.0, 4, loops[0]);
  addSquare(1.0, 2, loops[1]);
  std::reverse(loops[1].begin(), loops[1].end());
  int rising = 0;
  const auto triangles = Triangulate(points, loops);
  for (const auto& t : triangles) {
    for (std::size_t i = 0; i < 3; ++i) {
      const ZBR_PT along = points[t[(i + 1) % 3]] - points[t[i]];
      rising += along.x() * along.y() > 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(triangles.size(), 24U);
  EXPECT_EQ(rising, 10);
}

// What programs may get wrong is told before it does harm.
TEST(Model, MeshesThatAreNone) {
  const auto cause = [](const Mesh& mesh, double weld = 0.0) {
    try {
      MakeModel(mesh, 30.0, weld);
    } catch (const Failure& failure) {
      return failure.Cause();
    }
    return std::string();
  };
  Mesh mesh;
  EXPECT_EQ(cause(mesh), "");
  mesh.points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  mesh.triangles = {{0, 1, 2}};
  EXPECT_EQ(cause(mesh), "");
  EXPECT_EQ(cause(mesh, std::nan("")), "the angle of creases and the weld must be finite numbers");
  mesh.objects = {{0, 0}, {3, 1}};
  EXPECT_EQ(cause(mesh), "");
  mesh.triangles.push_back({0, 1, 2});
  EXPECT_EQ(cause(mesh), "triangle 1 has the corner 0, which is no point of its object");
  mesh.objects.clear();
  mesh.triangles[1][2] = 3;
  EXPECT_EQ(cause(mesh), "triangle 1 has the corner 3, which is no point of its object");
  mesh.points[1].Set(HUGE_VAL, 0, 0);
  EXPECT_EQ(cause(mesh), "a coordinate of point 1 is too large or no number");
  EXPECT_THROW(AddPolygon(mesh, {0, 1, 3}), Failure);
}

}  // namespace
}  // namespace zbr::drawing
