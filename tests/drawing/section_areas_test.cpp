// Areas of cut faces beside those of slices made the plain way: every triangle by itself, its cut's ends named by edges, and what
// an odd number of rings encloses by GEOS.
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

}  // namespace
}  // namespace zbr::drawing
