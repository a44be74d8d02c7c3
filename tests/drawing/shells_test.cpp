// Shells as the caller numbers them, against those that hang together.
#include <zbr-drawing/failure.h>
#include <zbr-drawing/objects.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "models/models.h"

namespace zbr::drawing {
namespace {

std::vector<std::uint32_t> ShellsOf(const Model& model) {
  std::vector<std::uint32_t> shells(model.TriangleCount());
  for (std::uint32_t t = 0; t < shells.size(); ++t) shells[model.source[t]] = model.ShellOf(t);
  return shells;
}

// Two boxes, the one on the other, that share the corners in between.
Mesh Stacked() {
  Mesh mesh;
  for (const double z : {0.0, 1.0, 2.0}) mesh.points.insert(mesh.points.end(), {{0, 0, z}, {1, 0, z}, {1, 1, z}, {0, 1, z}});
  for (const std::uint32_t b : {0U, 4U}) {
    AddPolygon(mesh, {b + 3, b + 2, b + 1, b});
    AddPolygon(mesh, {b + 4, b + 5, b + 6, b + 7});
    for (std::uint32_t i = 0; i < 4; ++i) AddPolygon(mesh, {b + i, b + (i + 1) % 4, b + 4 + (i + 1) % 4, b + 4 + i});
  }
  return mesh;
}

TEST(NamedShells, BoxesThatShareCornersAreBodies) {
  Mesh mesh = Stacked();
  mesh.shells.assign(24, 7);
  std::fill(mesh.shells.begin() + 12, mesh.shells.end(), 3);
  Objects objects;
  for (int k = 0; k < 2; ++k) AddObject(objects, mesh, {"box", std::to_string(k), ZBR_PT3(5.0 * k, 0, 0), 0});
  for (const Mesh& one : {mesh, objects.mesh}) {
    const Model model = MakeModel(one, 30.0);
    EXPECT_EQ(model.facing, std::vector<Facing>(2 * model.ObjectCount(), Facing::kOutward));
    EXPECT_EQ(model.junctions + model.repeated, 0U);
    EXPECT_EQ(model.TriangleCount(), one.triangles.size());
  }
  EXPECT_EQ(MakeModel(objects.mesh, 30.0).objectBegin, (std::vector<std::uint32_t>{0, 2, 4}));  // each has its own 7 and 3
  EXPECT_THROW(AddObject(objects, Stacked(), {"plain", "2", {}, 0}), Failure);
  mesh.shells.pop_back();
  EXPECT_THROW(MakeModel(mesh, 30.0), Failure);
}

// What is found by edges and then told as numbers, backwards, draws the same; and one shell of all of it has as long lines.
TEST(NamedShells, DrawWhatTheyDrawWithoutNames) {
  Mesh mesh = example::BoxesOnPlate(3);
  const Model plain = MakeModel(mesh, 30.0);
  const ViewLines expected = DrawView(plain, "iso");
  mesh.shells = ShellsOf(plain);
  for (std::uint32_t& s : mesh.shells) s = 1000 - s;
  const ViewLines drawn = DrawView(MakeModel(mesh, 30.0), "iso");
  ASSERT_EQ(drawn.lines.size(), expected.lines.size());
  for (std::size_t i = 0; i < drawn.lines.size(); ++i) {
    EXPECT_EQ(drawn.lines[i].shell, expected.lines[i].shell);
    EXPECT_EQ(drawn.lines[i].chain.points, expected.lines[i].chain.points);
  }
  mesh.shells.assign(mesh.triangles.size(), 5);
  const Model one = MakeModel(mesh, 30.0);
  EXPECT_EQ(one.ShellCount(), 1U);
  EXPECT_NEAR(DrawView(one, "iso").VisibleLength(), expected.VisibleLength(), 1e-6 * expected.VisibleLength());
}

}  // namespace
}  // namespace zbr::drawing
