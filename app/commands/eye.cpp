// Idea: the triangles of a closed surface span the whole sphere around a point within, and nothing in sum around one outside. Of an
// open surface they span any part of it: its sum is no whole number, and tells nothing.
#include "app/commands/eye.h"

#include <zbr-drawing/trigonometry.h>

#include <array>
#include <cmath>

#include "app/libraries.h"

namespace tool {
namespace {

// The solid angle of a triangle, positive where its back is seen, after van Oosterom and Strackee.
double SolidAngle(const std::array<ZBR_PT3, 3>& p) {
  const double a = p[0].Length(), b = p[1].Length(), c = p[2].Length();
  const double volume = p[0].InnerProduct(p[1].OuterProduct(p[2]));
  const double divisor = a * b * c + p[0].InnerProduct(p[1]) * c + p[1].InnerProduct(p[2]) * a + p[2].InnerProduct(p[0]) * b;
  return 2 * Atan2(volume, divisor);
}

}  // namespace

bool IsWithinMaterial(const Model& model, const ZBR_PT3& p) {
  constexpr double kWhole = 0.01;  // how far from a whole number the sum may be, in spheres
  double angle = 0.0;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    for (std::size_t t = model.shellBegin[s]; t < model.shellBegin[s + 1]; ++t) {
      const ZBR_ZBREPT& triangle = *model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s]));
      std::array<ZBR_PT3, 3> around;
      for (std::size_t i = 0; i < 3; ++i) around[i] = VertexOf(triangle, i).GetPt() - p;
      angle += SolidAngle(around);
    }
  }
  const double times = angle / (4 * kPi);
  return times > 0.5 && std::abs(times - std::round(times)) <= kWhole;
}

}  // namespace tool
