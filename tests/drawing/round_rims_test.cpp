// Rims of flat faces at chamfers of about the crease angle: whole or not at all, however the chamfer is divided.
#include "drawing/model/round_rims.h"

#include <zbr-drawing/trigonometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kChords = 36;

// A disc of fans around its middle, at whose rim an irregular ring of facets inscribed in a cone begins. Along x it is `stretch` as
// wide; `turn` is the part of the rim at which the cone begins, the rest being a wall.
Mesh ChamferedDisc(double degrees, std::uint32_t seed, double stretch = 1.0, double turn = 1.0) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> part(0.0, 1.0);
  const double slope = std::tan(degrees * kPi / 180.0);
  Mesh mesh;
  mesh.points.emplace_back(0.0, 0.0, 0.0);
  const auto add = [&](double angle, double reach) {
    mesh.points.emplace_back(Cos(angle) * reach * stretch, Sin(angle) * reach, -(reach - 1.0) * slope);
  };
  const double step = kFullTurn / kChords;
  for (std::uint32_t k = 0; k < kChords; ++k) add(k * step, 1.0);
  for (std::uint32_t k = 0; k < kChords; ++k) add((k + part(random)) * step, 1.05 + 0.5 * part(random));
  for (std::uint32_t k = 0; k < kChords; ++k) {
    const std::uint32_t a = 1 + k, b = 1 + (k + 1) % kChords, c = a + kChords, d = b + kChords;
    mesh.triangles.push_back({0, a, b});
    if (k >= turn * kChords) mesh.points[c].Set(mesh.points[a].x(), mesh.points[a].y(), -1.0);
    mesh.triangles.push_back({a, c, b});
    mesh.triangles.push_back({b, c, d});
  }
  return mesh;
}

// How many chords of the rim are creases.
std::size_t DrawnChords(const Mesh& mesh, double creaseDegrees = 30.0) {
  const Model model = MakeModel(mesh, creaseDegrees);
  std::size_t count = 0;
  for (int e = 0; e < model.Shell(0).GetEdgeCnt(); ++e) {
    const ZBR_ZBREPE& edge = *model.Shell(0).GetEdge(e);
    const bool isOnRim = edge.GetVertex0()->GetPt().z() == 0.0 && edge.GetVertex1()->GetPt().z() == 0.0 &&
                         edge.GetVertex0()->GetPt().Length2() > 0.5 && edge.GetVertex1()->GetPt().Length2() > 0.5;
    count += isOnRim && model.Class(0, edge) == EdgeClass::kCrease ? 1 : 0;
  }
  return count;
}

TEST(RoundRims, AreDrawnWholeOrNotAtAll) {
  std::size_t flat = 0;
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    SCOPED_TRACE(seed);
    EXPECT_EQ(DrawnChords(ChamferedDisc(30.0, seed)), kChords);
    EXPECT_EQ(DrawnChords(ChamferedDisc(30.0, seed), 25.0), kChords);
    EXPECT_EQ(DrawnChords(ChamferedDisc(27.0, seed)), 0U);
    EXPECT_EQ(DrawnChords(ChamferedDisc(30.0, seed), 45.0), 0U);
    // No circle: what bends by more than the angle, and no more than that.
    const std::size_t oval = DrawnChords(ChamferedDisc(30.0, seed, 1.2));
    EXPECT_LT(oval, kChords);
    flat += oval;
  }
  EXPECT_GT(flat, 0U);
}

TEST(RoundRims, GoRoundMostOfTheirCircle) {
  std::size_t some = 0;
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    SCOPED_TRACE(seed);
    EXPECT_EQ(DrawnChords(ChamferedDisc(30.0, seed, 1.0, 0.7)), kChords);
    const std::size_t quarter = DrawnChords(ChamferedDisc(30.0, seed, 1.0, 0.25));
    some += quarter > kChords * 3 / 4 && quarter < kChords ? 1 : 0;
  }
  EXPECT_GT(some, 20U);
}

}  // namespace
}  // namespace zbr::drawing
