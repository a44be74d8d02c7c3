// Areas of cut faces beside those of slices made the plain way: every triangle by itself, its cut's ends named by edges, and what
// an odd number of rings encloses by GEOS; and of meshes that hang together badly beside those of the sound ones.
#include <zbr-drawing/section.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <random>
#include <utility>

#include "geos/geos_region.h"
#include "models/models.h"

namespace zbr::drawing {
namespace {

using EdgeName = std::pair<std::uint32_t, std::uint32_t>;

// The rings in which a plane in general position meets closed bodies whose triangles share points.
std::vector<Ring> RingsOf(const Mesh& mesh, const View& view, const SectionPlane& plane) {
  std::map<EdgeName, EdgeName> next;
  std::map<EdgeName, ZBR_PT> places;
  for (const auto& t : mesh.triangles) {
    std::array<EdgeName, 2> ends;  // where the triangle's border goes down through the plane, and where up
    int cuts = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const ZBR_PT3 &a = mesh.points[t[i]], &b = mesh.points[t[(i + 1) % 3]];
      const double from = plane.HeightOf(a), to = plane.HeightOf(b);
      if ((from < 0) == (to < 0)) continue;
      const EdgeName name = std::minmax(t[i], t[(i + 1) % 3]);
      places[name] = view.In(a + (b - a) * (from / (from - to))).xy();
      ends[from < 0 ? 1 : 0] = name;
      ++cuts;
    }
    if (cuts > 0) next[ends[0]] = ends[1];
  }
  std::vector<Ring> rings;
  while (!next.empty()) {
    Ring& ring = rings.emplace_back();
    for (auto at = next.begin(); at != next.end();) {
      ring.push_back(places[at->first]);
      const EdgeName to = at->second;
      next.erase(at);
      at = next.find(to);
    }
  }
  return rings;
}

TEST(SectionAreas, AreThoseOfPlainSlices) {
  Mesh tube = example::Cylinder(40, 3, 9), bore = example::Cylinder(31, 2, 7);
  for (auto& t : bore.triangles) std::swap(t[0], t[1]);
  example::Move(bore, {0.2, 0.1, 1.3});
  example::Append(tube, bore);
  const Geos geos;
  std::mt19937 random(5);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (const Mesh& mesh : {example::Housing(), example::Torus(3000), example::Gear(4000), tube, example::Cylinder(60, 2, 5)}) {
    const Model model = MakeModel(mesh, 30.0);
    for (int k = 0; k < 12; ++k) {
      SectionPlane plane;
      plane.normal = ZBR_PT3(unit(random), unit(random), unit(random));
      plane.normal = plane.normal * (1.0 / plane.normal.Length());
      plane.offset = plane.normal.InnerProduct(model.Centre()) + 0.2 * model.Diagonal() * unit(random);
      const View view = SectionView(plane);
      double area = 0.0;
      for (const SectionFace& face : FindSection(model, view, plane).faces) area += face.region.area();
      std::vector<Ring> rings;
      std::vector<std::size_t> ends;
      geos.Read(geos.EvenOdd(RingsOf(mesh, view, plane)), rings, ends);
      ZBR_REGION slice;
      for (const Ring& ring : rings) slice.AddRing(ring);
      EXPECT_NEAR(area, slice.area(), 1e-9 * model.Diagonal() * model.Diagonal()) << k;
    }
  }
}

struct Areas {
  double whole = 0.0;
  std::size_t faces = 0, open = 0;
};

Areas AreasOf(const Mesh& mesh, const SectionPlane& plane) {
  const SectionCut cut = FindSection(MakeModel(mesh, 30.0), SectionView(plane), plane);
  Areas areas{0.0, cut.faces.size(), cut.openLines};
  for (const SectionFace& face : cut.faces) areas.whole += face.region.area();
  return areas;
}

// Each triangle has corners of its own, a little off, and may be turned round: what was a hole is one.
TEST(SectionAreas, OfLooseTriangles) {
  std::mt19937 random(11);
  Mesh housing = example::Housing();
  example::Turn(housing, {0.3, -0.5, 0.8}, 0.7);
  const Model sound = MakeModel(housing, 30.0);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (const unsigned turned : {0U, 4U}) {
    Mesh loose;
    for (auto t : housing.triangles) {
      if (turned > 0 && random() % turned == 0) std::swap(t[0], t[1]);
      for (std::uint32_t& p : t) {
        loose.points.push_back(housing.points[p] + ZBR_PT3(unit(random), unit(random), unit(random)) * (1e-6 * sound.Diagonal()));
        p = static_cast<std::uint32_t>(loose.points.size() - 1);
      }
      loose.triangles.push_back(t);
    }
    for (int k = 0; k < 6; ++k) {
      SectionPlane plane;
      plane.normal = ZBR_PT3(unit(random), unit(random), unit(random));
      plane.normal = plane.normal * (1.0 / plane.normal.Length());
      plane.offset = plane.normal.InnerProduct(sound.Centre()) + 10 * unit(random);
      const double area = AreasOf(housing, plane).whole;
      EXPECT_NEAR(AreasOf(loose, plane).whole, area, 1e-4 * area) << turned << ' ' << k;
    }
  }
}

TEST(SectionAreas, OfBodiesTurnedInsideOutWithTheirHollows) {
  Mesh mesh = example::Box({0, 0, 0}, {6, 6, 6});
  for (auto& t : mesh.triangles) std::swap(t[0], t[1]);
  example::Append(mesh, example::Box({1, 1, 1}, {5, 4, 5}));
  EXPECT_NEAR(AreasOf(mesh, ParseSection("Z=2")).whole, 36.0 - 12.0, 1e-12);
}

TEST(SectionAreas, OfACasingBesideABodyTurnedInsideOut) {
  Mesh hollow = example::Box({1, 1, 1}, {9, 9, 9});
  for (const double width : {4.0, 40.0}) {
    Mesh plate = example::Box({20, 0, 0}, {20 + width, 40, 10});
    Mesh mesh = example::Box({0, 0, 0}, {10, 10, 10});
    for (Mesh* const part : {&hollow, &plate}) {
      for (auto& t : part->triangles) std::swap(t[0], t[1]);
      example::Append(mesh, *part);
    }
    EXPECT_NEAR(AreasOf(mesh, ParseSection("Z=5")).whole, 36.0 + 40 * width, 1e-9) << width;
    for (auto& t : hollow.triangles) std::swap(t[0], t[1]);
  }
}

// Whichever way the wall faces, and wherever it stands.
TEST(SectionAreas, OfAHollowPartedByAWall) {
  for (const double x : {3.0, 5.0}) {
    for (const bool isTurned : {false, true}) {
      Mesh hollow = example::Box({1, 1, 1}, {x, 9, 9});
      example::Append(hollow, example::Box({x, 1, 1}, {9, 9, 9}));
      for (auto& t : hollow.triangles) std::swap(t[0], t[1]);
      std::size_t walls = 0;
      const auto isWall = [&](const auto& t) {
        return std::all_of(t.begin(), t.end(), [&](std::uint32_t p) { return hollow.points[p].x() == x; });
      };
      std::erase_if(hollow.triangles, [&](const auto& t) { return isWall(t) && (++walls <= 2) == isTurned; });
      Mesh mesh = example::Box({0, 0, 0}, {10, 10, 10});
      example::Append(mesh, hollow);
      const Areas areas = AreasOf(mesh, ParseSection("Z=5"));
      EXPECT_NEAR(areas.whole, 36.0, 1e-9) << x << isTurned;
      EXPECT_EQ(areas.open, 0U) << x << isTurned;
    }
  }
}

// A part of a micrometre in a file in metres.
TEST(SectionAreas, OfSmallModels) {
  const Mesh housing = example::Housing();
  Mesh small = housing;
  const double scale = std::ldexp(1.0, -27);
  for (ZBR_PT3& p : small.points) p = p * scale;
  SectionPlane plane = ParseSection("1,0,0.5=3");
  const double area = AreasOf(housing, plane).whole;
  plane.offset *= scale;
  EXPECT_GT(area, 0.0);
  EXPECT_NEAR(AreasOf(small, plane).whole, area * scale * scale, 1e-6 * area * scale * scale);
}

// Blocks side by side, of which walls in common were left once.
TEST(SectionAreas, OfBodiesThatShareWalls) {
  Mesh mesh;
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) example::Append(mesh, example::Box({2.0 * i, 2.0 * k, 0}, {2.0 * i + 2, 2.0 * k + 2, 2}));
  }
  for (const char* const plane : {"Z=1", "Y=0.7", "1,2,3=9"}) {
    const Areas areas = AreasOf(mesh, ParseSection(plane));
    EXPECT_NEAR(areas.whole, AreasOf(example::Box({0, 0, 0}, {6, 6, 2}), ParseSection(plane)).whole, 1e-9) << plane;
    EXPECT_EQ(areas.open, 0U) << plane;
  }
  EXPECT_EQ(AreasOf(mesh, ParseSection("Z=1")).faces, 9U);
}

// The bore between two half shells that share both joints is none of theirs.
TEST(SectionAreas, OfHalfShells) {
  constexpr std::uint32_t kSides = 24;
  Mesh mesh;
  for (const double z : {0.0, 2.0}) {
    for (const double radius : {1.0, 2.0}) {
      for (std::uint32_t k = 0; k < kSides; ++k) {
        const double a = k * 2 * 3.14159265358979 / kSides;
        mesh.points.emplace_back(radius * std::cos(a), radius * std::sin(a), z);
      }
    }
  }
  const auto at = [](std::uint32_t ring, std::uint32_t k) { return ring * kSides + k % kSides; };
  const auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    mesh.triangles.push_back({a, b, c});
    mesh.triangles.push_back({a, c, d});
  };
  for (std::uint32_t k = 0; k < kSides; ++k) {  // inside and outside, low and high: rings 0 to 3
    add(at(1, k), at(1, k + 1), at(3, k + 1), at(3, k));
    add(at(0, k + 1), at(0, k), at(2, k), at(2, k + 1));
    add(at(2, k), at(3, k), at(3, k + 1), at(2, k + 1));
    add(at(1, k), at(0, k), at(0, k + 1), at(1, k + 1));
    if (k % (kSides / 2) == 0) add(at(0, k), at(1, k), at(3, k), at(2, k));
  }
  const Areas areas = AreasOf(mesh, ParseSection("Z=0.7"));
  EXPECT_NEAR(areas.whole, (4 - 1) * kSides / 2.0 * std::sin(2 * 3.14159265358979 / kSides), 1e-9);
  EXPECT_EQ(areas.faces, 2U);
  EXPECT_EQ(areas.open, 0U);
}

}  // namespace
}  // namespace zbr::drawing
