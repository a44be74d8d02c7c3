// Outlines in views of sections: at every place of a cut face it is its object that is filled, and nothing else is.

#include <zbr-drawing/section.h>
#include <zbr-drawing/views.h>
#include <zbr/loop.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

using example::Axis;
using example::Circle;
using example::Minus;

Mesh Ring(double inner, double outer, double from, double to, int sides) {
  example::Solid solid;
  const example::Region disc = Circle(0, 0, outer, sides);
  solid.Extrude(Axis::kZ, inner > 0 ? Minus(disc, Circle(0, 0, inner, sides)) : disc, from, to);
  return solid.Take();
}

Mesh Objects(const std::vector<Mesh>& parts) {
  Mesh mesh;
  for (const Mesh& part : parts) {
    mesh.objects.push_back({static_cast<std::uint32_t>(mesh.points.size()), static_cast<std::uint32_t>(mesh.triangles.size())});
    example::Append(mesh, part);
  }
  return mesh;
}

bool IsIn(const ZBR_LOOP_LOCATOR& region, const ZBR_PT& p) {
  return region.IsInside(p) == ZBR_PI_IN;
}

std::vector<bool> Holding(const std::vector<ZBR_LOOP_LOCATOR>& regions, const ZBR_PT& p) {
  std::vector<bool> holding;
  for (const ZBR_LOOP_LOCATOR& region : regions) holding.push_back(IsIn(region, p));
  return holding;
}

// The same of either side of a place, so that none is judged that lies on a border but for rounding.
bool IsClear(const std::vector<ZBR_LOOP_LOCATOR>& regions, const ZBR_PT& p) {
  constexpr double kAside = 1e-4;
  const std::vector<bool> here = Holding(regions, p);
  return std::ranges::all_of(std::array{ZBR_PT(kAside, 0), ZBR_PT(-kAside, 0), ZBR_PT(0, kAside), ZBR_PT(0, -kAside)},
                             [&](const ZBR_PT& aside) { return Holding(regions, p + aside) == here; });
}

// Holds outlines against the faces that FindSection finds; tells at how many places there was a face.
int ExpectFacesInTheirOutlines(const Mesh& mesh, const std::string& text, std::mt19937& engine) {
  const Model model = MakeModel(mesh, 30.0);
  const SectionPlane plane = ParseSection(text);
  const View view = SectionView(plane);
  DrawingOptions options;
  options.outlines = true;
  const ViewLines drawn = DrawViews(model, {{"A-A", view, plane}}, options).front();
  std::vector<ZBR_LOOP_LOCATOR> faces, outlines;
  std::vector<std::uint32_t> objects;
  for (const SectionFace& face : FindSection(model, view, plane).faces) {
    faces.emplace_back(zbrLoopsOfRegion(face.region.view()));
    objects.push_back(face.object);
  }
  for (const LoopList& loops : drawn.outlines) outlines.emplace_back(loops);
  std::uniform_real_distribution<double> x(drawn.extent.xmin, drawn.extent.xmax), y(drawn.extent.ymin, drawn.extent.ymax);
  int judged = 0;
  for (int i = 0; i < 400; ++i) {
    const ZBR_PT p(x(engine), y(engine));
    if (!IsClear(faces, p) || !IsClear(outlines, p)) continue;
    const std::vector<bool> cut = Holding(faces, p), filled = Holding(outlines, p);
    EXPECT_LE(std::ranges::count(filled, true), 1) << text << ' ' << p.x() << ' ' << p.y();
    const auto first = std::ranges::find(cut, true);  // where objects pass through each other
    if (first == cut.end()) continue;
    EXPECT_TRUE(filled[objects[static_cast<std::size_t>(first - cut.begin())]]) << text << ' ' << p.x() << ' ' << p.y();
    ++judged;
  }
  return judged;
}

TEST(SectionOutlines, PinInABushInAFlange) {
  std::mt19937 engine(1);
  const std::vector<Mesh> parts = {Ring(20, 60, 0, 12, 48), Ring(15, 20, 5, 40, 48), Ring(0, 15, -20, 70, 48)};
  std::vector<std::size_t> order = {0, 1, 2};
  do {
    const Mesh mesh = Objects({parts[order[0]], parts[order[1]], parts[order[2]]});
    for (const char* const plane : {"Y=0", "Y=3", "Z=8", "1,2,0=1", "Y=-2..4"}) {
      const int judged = ExpectFacesInTheirOutlines(mesh, plane, engine);
      EXPECT_GT(judged, 50) << plane << ' ' << order[0] << order[1] << order[2];
    }
  } while (std::ranges::next_permutation(order).found);
}

// Rings about an axis, fitted or loose, faceted differently and passing through each other, with bars across.
TEST(SectionOutlines, AnyPartsAboutAnAxis) {
  std::mt19937 engine(2);
  const auto number = [&](int least, int most) { return std::uniform_int_distribution<int>(least, most)(engine); };
  int judged = 0;
  for (int i = 0; i < 60; ++i) {
    std::vector<Mesh> parts;
    for (int k = number(2, 5); k > 0; --k) {
      const int inner = 4 * number(0, 4), from = number(-20, 20);
      parts.push_back(Ring(inner, inner + 4 * number(1, 3), from, from + number(3, 30), 8 * number(2, 5)));
    }
    const int from = number(-30, 10);
    if (i % 2 == 0) parts.push_back(example::Box({-30.5 + number(0, 20), 1.0 * from, 2.5}, {20.5, from + 25.0, 9.5}));
    std::ranges::shuffle(parts, engine);
    judged += ExpectFacesInTheirOutlines(Objects(parts), i % 3 == 0 ? "Y=1.25" : i % 3 == 1 ? "1,3,0=0" : "Z=5.75", engine);
    if (HasFailure()) FAIL() << "case " << i;
  }
  EXPECT_GT(judged, 5000);
}

}  // namespace
}  // namespace zbr::drawing
