// Which edges make tangent lines: gaps, stubs and what is chance.
#include "drawing/model/tangent_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {
namespace {

// A square of 12 x 12 cells of two triangles each, of which nothing shows but the border.
class Grid {
 public:
  Grid() {
    Mesh mesh;
    for (std::uint32_t y = 0; y <= kCells; ++y) {
      for (std::uint32_t x = 0; x <= kCells; ++x) mesh.points.emplace_back(x, y, 0);
    }
    for (std::uint32_t y = 0; y < kCells; ++y) {
      for (std::uint32_t x = 0; x < kCells; ++x) {
        const std::uint32_t a = y * (kCells + 1) + x, b = a + kCells + 1;
        mesh.triangles.push_back({a, a + 1, b + 1});
        mesh.triangles.push_back({a, b + 1, b});
      }
    }
    model_ = MakeModel(mesh, 30.0);
    mesh_ = ConnectivityOf(model_, 1);
    for (const auto& side : mesh_.sides) mesh_.shows[static_cast<std::size_t>(&side - mesh_.sides.begin())] = side[1] == kNone;
  }

  // The edges on a line along the grid.
  std::vector<std::uint32_t> Along(const ZBR_PT3& from, const ZBR_PT3& to) const {
    std::vector<std::uint32_t> edges;
    for (std::uint32_t t = 0; t < mesh_.corners.size(); ++t) {
      for (std::size_t i = 0; i < 3; ++i) {
        const ZBR_PT3 &a = mesh_.points[mesh_.corners[t][i]], &b = mesh_.points[mesh_.corners[t][(i + 1) % 3]];
        const auto isOn = [&](const ZBR_PT3& p) { return std::abs(from.Distance(p) + p.Distance(to) - from.Distance(to)) < 1e-9; };
        if (isOn(a) && isOn(b)) edges.push_back(mesh_.edges[t][i]);
      }
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    return edges;
  }

  std::vector<std::uint32_t> Connected(std::vector<std::uint32_t> found, const std::vector<std::uint32_t>& near) const {
    const auto mayGoOn = [&](std::uint32_t, std::uint32_t e) { return std::find(near.begin(), near.end(), e) != near.end(); };
    std::vector<std::uint32_t> edges = ConnectedLines(mesh_, std::move(found), 2.5, mayGoOn);
    std::sort(edges.begin(), edges.end());
    return edges;
  }

 private:
  static constexpr std::uint32_t kCells = 12, kNone = Connectivity::kNone;
  Model model_;
  Connectivity mesh_;
};

std::vector<std::uint32_t> Sum(std::vector<std::uint32_t> a, const std::vector<std::uint32_t>& b) {
  a.insert(a.end(), b.begin(), b.end());
  std::sort(a.begin(), a.end());
  a.erase(std::unique(a.begin(), a.end()), a.end());
  return a;
}

// The last edge of a loose end is chance, so that lines lose it.
TEST(TangentLines, GoOnOverGapsThatAreNoLongerThanTheyAre) {
  const Grid grid;
  const auto whole = grid.Along({4, 0, 0}, {4, 12, 0}), low = grid.Along({4, 0, 0}, {4, 5, 0}),
             high = grid.Along({4, 8, 0}, {4, 12, 0});
  const auto shorter = grid.Along({4, 0, 0}, {4, 4, 0});
  EXPECT_EQ(grid.Connected(Sum(low, high), whole), whole);
  EXPECT_EQ(grid.Connected(low, grid.Along({4, 5, 0}, {4, 7, 0})), shorter);  // leads nowhere
  EXPECT_EQ(grid.Connected(low, whole), shorter);                             // 7 for 5
  EXPECT_EQ(grid.Connected(low, grid.Along({4, 5, 0}, {0, 5, 0})), shorter);  // not straight on
}

TEST(TangentLines, HaveNoStubsBeyondTheLastOneTheyMeet) {
  const Grid grid;
  const auto cross = Sum(grid.Along({0, 6, 0}, {12, 6, 0}), grid.Along({4, 0, 0}, {4, 6, 0}));
  EXPECT_EQ(grid.Connected(Sum(cross, grid.Along({4, 6, 0}, {4, 9, 0})), {}), cross);
  EXPECT_EQ(grid.Connected(Sum(cross, grid.Along({4, 6, 0}, {4, 10, 0})), {}), Sum(cross, grid.Along({4, 6, 0}, {4, 9, 0})));
}

}  // namespace
}  // namespace zbr::drawing
