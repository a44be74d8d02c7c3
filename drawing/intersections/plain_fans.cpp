#include "drawing/intersections/plain_fans.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace zbr::drawing {
namespace {

// Cosine of the largest angle between a triangle and the sheet. Steeper ones would be seen nearly edge-on.
constexpr double kSteepest = 0.25;
// Area of a triangle, in parts of the square of its longest edge: what is flatter has an uncertain normal.
constexpr double kFlattest = 1e-6;

struct Fan {
  ZBR_PT3 axis;    // sum of the normals
  ZBR_PT3 across;  // perpendicular to it
  int turns = 0;   // of the edges around the point, seen along the axis
  bool isPlain = true;
};

// A direction perpendicular to u, which need not have the length 1.
ZBR_PT3 Perpendicular(const ZBR_PT3& u) {
  const double x = std::abs(u.x()), y = std::abs(u.y()), z = std::abs(u.z());
  if (x <= y && x <= z) return {0.0, u.z(), -u.y()};
  return y <= z ? ZBR_PT3(-u.z(), 0.0, u.x()) : ZBR_PT3(u.y(), -u.x(), 0.0);
}

bool IsFlat(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) {
  const ZBR_PT3 u = b - a, v = c - a, w = c - b;
  const double longest = std::max({u.InnerProduct(u), v.InnerProduct(v), w.InnerProduct(w)});
  return !(u.OuterProduct(v).Length() > kFlattest * longest);
}

}  // namespace

// Seen along the axis, each triangle turns to the left by less than half a turn, so the edges come round once for each time that
// one of them goes over the direction `across` from below it.
std::vector<bool> FindPlainFans(const Model& model, const Connectivity& mesh) {
  std::vector<Fan> fans(mesh.points.size());
  for (std::size_t t = 0; t < mesh.corners.size(); ++t) {
    for (const std::uint32_t p : mesh.corners[t]) fans[p].axis = fans[p].axis + model.normals[t];
  }
  for (Fan& fan : fans) {
    fan.axis = fan.axis * (1.0 / std::max(fan.axis.Length(), 1e-300));
    fan.across = Perpendicular(fan.axis);
  }
  for (std::size_t t = 0; t < mesh.corners.size(); ++t) {
    const auto& c = mesh.corners[t];
    const bool isFlat = IsFlat(mesh.points[c[0]], mesh.points[c[1]], mesh.points[c[2]]);
    for (std::size_t i = 0; i < 3; ++i) {
      Fan& fan = fans[c[i]];
      const auto hasOneSide = [&](std::size_t k) { return mesh.sides[mesh.edges[t][k]][1] == Connectivity::kNone; };
      if (isFlat || hasOneSide(i) || hasOneSide((i + 2) % 3)) fan.isPlain = false;
      if (!(model.normals[t].InnerProduct(fan.axis) > kSteepest)) fan.isPlain = false;
      const auto side = [&](std::size_t k) { return fan.across.InnerProduct(mesh.points[c[k]] - mesh.points[c[i]]); };
      if (side((i + 1) % 3) < 0.0 && side((i + 2) % 3) >= 0.0) ++fan.turns;
    }
  }
  std::vector<bool> plain(fans.size());
  for (std::size_t p = 0; p < fans.size(); ++p) plain[p] = fans[p].isPlain && fans[p].turns == 1;
  return plain;
}

}  // namespace zbr::drawing
