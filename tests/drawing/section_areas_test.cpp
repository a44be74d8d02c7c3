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
