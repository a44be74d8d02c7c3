// Lines that are no edges to be drawn in every view: where bodies pass through each other, and where fillets end.

#include <zbr-drawing/intersections.h>
#include <zbr-drawing/removal.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

using example::Append;
using example::Box;
using example::Cylinder;

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  double Between(double a, double b) { return a + (b - a) * std::ldexp(static_cast<double>(engine_() >> 11U), -53); }

 private:
  std::mt19937_64 engine_;
};

Mesh InPose(Mesh mesh, Random& random, double reach) {
  const auto coordinate = [&] { return random.Between(-1, 1); };
  example::Turn(mesh, ZBR_PT3(coordinate(), coordinate(), coordinate() + 1.5), random.Between(0, 1));
  example::Move(mesh, ZBR_PT3(coordinate(), coordinate(), coordinate()) * reach);
  return mesh;
}

// Bodies with and without plane faces, about as many facets as they need to meet in many ways.
Mesh Heap(std::uint64_t seed) {
  Random random(seed);
  Mesh mesh;
  for (int i = 0; i < 3; ++i) {
    Append(mesh, InPose(example::Torus(600), random, 0.8));
    Append(mesh, InPose(example::Gear(400), random, 0.8));
    Append(mesh, InPose(Box(ZBR_PT3(-1, -0.2, -0.3), ZBR_PT3(1, 0.2, 0.3)), random, 0.8));
  }
  return mesh;
}

std::size_t LooseEnds(const std::vector<IntersectionLine>& lines) {
  std::map<std::uint64_t, int> uses;
  for (const IntersectionLine& line : lines) {
    for (const IntersectionEnd& end : line.ends) ++uses[end.Name()];
  }
  return static_cast<std::size_t>(std::count_if(uses.begin(), uses.end(), [](const auto& use) { return use.second % 2 != 0; }));
}

double LengthOf(const std::vector<IntersectionLine>& lines) {
  double length = 0;
  for (const IntersectionLine& line : lines) length += line.ends[0].place.Distance(line.ends[1].place);
  return length;
}

void RoundToFloats(Mesh& mesh) {
  for (ZBR_PT3& p : mesh.points) {
    const auto x = static_cast<float>(p.x()), y = static_cast<float>(p.y()), z = static_cast<float>(p.z());
    p.Set(x, y, z);
  }
}

// How far the nearest triangle above a point of a scene is: negative when none is.
double HeightAbove(const Scene& scene, std::size_t triangles, const ZBR_PT3& p) {
  double most = -1.0;
  for (std::size_t t = 0; t < triangles; ++t) {
    const ZBR_PT3* const q = scene.triangles[t].pt;
    const auto area = [](const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) {
      return (b.xy() - a.xy()).OuterProduct(c.xy() - a.xy());
    };
    const double whole = area(q[0], q[1], q[2]);
    const double a = area(q[1], q[2], p) / whole, b = area(q[2], q[0], p) / whole, c = 1 - a - b;
    if (!(std::abs(whole) > 1e-9) || a < 0 || b < 0 || c < 0) continue;
    most = std::max(most, q[0].z() * a + q[1].z() * b + q[2].z() * c - p.z());
  }
  return most;
}

TEST(Intersections, ClosedBodiesGiveClosedCurves) {
  for (std::uint64_t seed = 1; seed <= 8; ++seed) {
    Mesh mesh = Heap(seed);
    for (const bool rounded : {false, true}) {
      if (rounded) RoundToFloats(mesh);
      const auto lines = FindIntersections(MakeModel(mesh, 30.0));
      EXPECT_GT(lines.size(), 400U) << seed;
      EXPECT_EQ(LooseEnds(lines), 0U) << seed << rounded;
    }
  }
}

// A tube along an eight, whole or as two objects, each of which is half of it and passes once through the other.
Mesh Eight(bool asTwo) {
  constexpr std::uint32_t kRings = 200, kSides = 18;
  constexpr double kTurn = 6.283185307179586;
  Mesh mesh;
  const auto addHalf = [&](std::uint32_t first, std::uint32_t rings) {
    const auto base = static_cast<std::uint32_t>(mesh.points.size());
    for (std::uint32_t i = first; i < first + rings; ++i) {
      const double a = kTurn * i / kRings;
      const ZBR_PT3 centre(std::sin(a), 0.6 * std::sin(2 * a), 0.05 * std::cos(a));
      const ZBR_PT3 along(std::cos(a), 1.2 * std::cos(2 * a), 0), across = along.OuterProduct(ZBR_PT3(0, 0, 1)) / along.Length();
      for (std::uint32_t j = 0; j < kSides; ++j) {
        const double b = kTurn * j / kSides;
        mesh.points.push_back(centre + (across * std::cos(b) + ZBR_PT3(0, 0, std::sin(b))) * 0.15);
      }
    }
    for (std::uint32_t k = 0; k < (rings == kRings ? rings : rings - 1) * kSides; ++k) {
      const std::uint32_t row = k / kSides * kSides, next = row + kSides == rings * kSides ? 0 : row + kSides;
      const std::uint32_t j = k % kSides, side = (j + 1) % kSides;
      mesh.triangles.push_back({base + row + j, base + next + j, base + next + side});
      mesh.triangles.push_back({base + row + j, base + next + side, base + row + side});
    }
  };
  if (!asTwo) {
    addHalf(0, kRings);
    return mesh;
  }
  mesh.objects.push_back({0, 0});
  addHalf(kRings / 4, kRings / 2 + 1);
  mesh.objects.push_back({static_cast<std::uint32_t>(mesh.points.size()), static_cast<std::uint32_t>(mesh.triangles.size())});
  addHalf(3 * kRings / 4, kRings / 2 + 1);
  return mesh;
}

TEST(Intersections, OfABodyThroughItself) {
  const Model one = MakeModel(Eight(false), 30.0), two = MakeModel(Eight(true), 30.0);
  ASSERT_EQ(one.ShellCount(), 1U);
  ASSERT_EQ(two.ShellCount(), 2U);
  const auto lines = FindIntersections(one);
  EXPECT_EQ(LooseEnds(lines), 0U);
  EXPECT_GT(LengthOf(lines), 1.0);
  EXPECT_NEAR(LengthOf(FindIntersections(two)), LengthOf(lines), 1e-9);
  for (const Model* model : {&one, &two}) {
    const auto alone = FindIntersections(*model), shared = FindIntersections(*model, 0.0, 3);
    const auto same = [](const IntersectionLine& a, const IntersectionLine& b) {
      return a.triangles == b.triangles && a.ends[0].Name() == b.ends[0].Name() && a.ends[1].Name() == b.ends[1].Name();
    };
    EXPECT_TRUE(std::equal(alone.begin(), alone.end(), shared.begin(), shared.end(), same));
  }
}

TEST(Intersections, VisibilityIsThatOfRays) {
  double wrong = 0, all = 0;
  for (std::uint64_t seed = 11; seed <= 13; ++seed) {
    const Model model = MakeModel(Heap(seed), 30.0);
    Scene scene = MakeScene(model, *NamedView("iso"), FindIntersections(model));
    RemoveHidden(scene, 1);
    for (std::size_t t = model.TriangleCount(); t < scene.triangles.size(); ++t) {
      const ZBR_HL_TRI& line = scene.triangles[t];
      const double length = line.pt[0].xy().Distance(line.pt[1].xy());
      for (const double at : {0.21, 0.5, 0.83}) {
        const double above = HeightAbove(scene, model.TriangleCount(), line.pt[0] + (line.pt[1] - line.pt[0]) * at);
        const auto& visible = line.intvl_v[0];
        const bool isDrawn =
            std::any_of(visible.begin(), visible.end(), [&](const ZBR_HL_INTERVAL& v) { return v.s.t <= at && at <= v.e.t; });
        all += length;
        if (std::abs(above) > 1e-5 && isDrawn != (above < 1e-5)) wrong += length;
      }
    }
  }
  EXPECT_GT(all, 1000.0);
  EXPECT_LE(wrong, 1e-4 * all);
}

// Faces on faces: exactly, in single precision, sunk in by less than the contact; edges end the contact, no line is added.
TEST(Intersections, ContactIsNone) {
  Mesh boxes = example::BoxesOnPlate(5);
  EXPECT_TRUE(FindIntersections(MakeModel(boxes, 30.0)).empty());
  Mesh turned = boxes;
  example::Turn(turned, ZBR_PT3(1, 2, 0.7), 0.123);
  RoundToFloats(turned);
  EXPECT_LE(LengthOf(FindIntersections(MakeModel(turned, 30.0))), 1e-4);
  Mesh peg = Cylinder(48, 1, 4), hole;  // the hole in a ring, both divided alike, and differently
  for (const int sides : {48, 36}) {
    example::Solid ring;
    ring.Extrude(example::Axis::kZ, example::Minus(example::Circle(0, 0, 3, 60), example::Circle(0, 0, 1, sides)), 1, 3);
    Mesh both = peg;
    Append(both, ring.Take());
    EXPECT_LE(LengthOf(FindIntersections(MakeModel(both, 30.0))), 1e-4) << sides;
  }
  Mesh sunk = Box(ZBR_PT3(0, 0, 0), ZBR_PT3(10, 10, 5));
  Append(sunk, Box(ZBR_PT3(2, 2, 4.9995), ZBR_PT3(5, 5, 9)));
  const Model model = MakeModel(sunk, 30.0);
  EXPECT_NEAR(LengthOf(FindIntersections(model)), 12.0, 1e-9);
  EXPECT_TRUE(FindIntersections(model, 0.001).empty());
}

// Through a face exactly at corners and edges, where every sign is 0: a box whose edges lie in the other's faces.
TEST(Intersections, SignsThatAreZero) {
  Mesh mesh = Box(ZBR_PT3(0, 0, 0), ZBR_PT3(4, 4, 4));
  Append(mesh, Box(ZBR_PT3(2, 0, 2), ZBR_PT3(6, 4, 6)));  // two faces in common planes
  const auto lines = FindIntersections(MakeModel(mesh, 30.0));
  for (const IntersectionLine& line : lines) {
    const ZBR_PT3 middle = (line.ends[0].place + line.ends[1].place) * 0.5;
    const bool isOnSeam = (std::abs(middle.x() - 4) < 1e-12 && std::abs(middle.z() - 2) < 1e-12) ||
                          (std::abs(middle.x() - 2) < 1e-12 && std::abs(middle.z() - 4) < 1e-12);
    EXPECT_TRUE(isOnSeam) << middle.x() << " " << middle.y() << " " << middle.z();
  }
  EXPECT_NEAR(LengthOf(lines), 8.0, 1e-12);
}

TEST(Tangents, FilletsEndAndNothingElseDoes) {
  example::Solid solid;
  solid.Extrude(example::Axis::kZ, example::RoundedRectangle(0, 0, 30, 20, 4, 12), 0, 10);
  Mesh block = solid.Take();
  example::Turn(block, ZBR_PT3(1, 2, 0.7), 0.123);
  const auto tangents = [](const Mesh& mesh) {
    const Model model = MakeModel(mesh, 30.0);
    std::vector<double> lengths;
    for (std::size_t s = 0; s < model.ShellCount(); ++s) {
      for (int e = 0; e < model.Shell(s).GetEdgeCnt(); ++e) {
        const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(e);
        if (model.Class(s, edge) == EdgeClass::kTangent)
          lengths.push_back(edge.GetVertex0()->GetPt().Distance(edge.GetVertex1()->GetPt()));
      }
    }
    return lengths;
  };
  for (const bool rounded : {false, true}) {
    if (rounded) RoundToFloats(block);
    const std::vector<double> lengths = tangents(block);
    ASSERT_EQ(lengths.size(), 8U);
    for (const double length : lengths) EXPECT_NEAR(length, 10.0, 1e-4);
  }
  EXPECT_TRUE(tangents(Cylinder(64, 1, 3)).empty());
  EXPECT_TRUE(tangents(example::Torus(4000)).empty());
  EXPECT_TRUE(tangents(example::Gear(4000)).empty());
  std::mt19937 random(2);  // strips wide and narrow by turns
  for (const double least : {0.0003, 0.01}) {
    std::vector<ZBR_PT> corners;
    for (double a = 0; a < 6.28; a += least * std::pow(0.1 / least, std::uniform_real_distribution<double>(0, 1)(random)))
      corners.emplace_back(80 * std::cos(a), 80 * std::sin(a));
    example::Solid uneven;
    uneven.Extrude(example::Axis::kZ, example::Polygon(corners), 0, 30);
    EXPECT_TRUE(tangents(uneven.Take()).empty()) << least;
  }
}

// A picture shows no hidden lines unless it is asked to, a view along an axis does; hidden tangent edges are never drawn.
TEST(Tangents, HiddenLinesByKindOfView) {
  example::Solid solid;
  solid.Extrude(example::Axis::kZ, example::RoundedRectangle(0, 0, 30, 20, 4, 12), 0, 10);
  const Model model = MakeModel(solid.Take(), 30.0);
  DrawingOptions options;
  const auto hidden = [&](const char* name) {
    const ViewLines view = DrawViews(model, {{name, *NamedView(name)}}, options).front();
    EXPECT_TRUE(std::none_of(view.lines.begin(), view.lines.end(),
                             [](const Line& line) { return line.hidden && line.edgeClass == EdgeClass::kTangent; }));
    return std::count_if(view.lines.begin(), view.lines.end(), [](const Line& line) { return line.hidden; });
  };
  EXPECT_EQ(hidden("iso"), 0);
  options.hidden = HiddenLines::kInAllViews;
  EXPECT_GT(hidden("iso"), 0);
  EXPECT_TRUE(NamedView("bottom")->IsPrincipal() && NamedView("left")->IsPrincipal() && !NamedView("dimetric")->IsPrincipal());
}

}  // namespace
}  // namespace zbr::drawing
