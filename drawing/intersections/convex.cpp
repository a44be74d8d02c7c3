#include "drawing/intersections/convex.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

// The corner of a triangle that is not on the edge.
std::uint32_t Apex(const Connectivity& mesh, std::uint32_t edge, std::uint32_t t) {
  for (std::size_t i = 0; i < 3; ++i) {
    if (mesh.edges[t][i] == edge) return mesh.corners[t][(i + 2) % 3];
  }
  return mesh.corners[t][0];
}

bool BendsOutwards(const Model& model, const Connectivity& mesh, std::uint32_t edge, double sign) {
  const std::uint32_t t = mesh.sides[edge][0], u = mesh.sides[edge][1];
  const ZBR_PT3 apex = mesh.points[Apex(mesh, edge, u)] - mesh.points[mesh.corners[t][0]];
  return sign * model.normals[t].InnerProduct(apex) <= PlaneTolerance(model);
}

double Angle(const ZBR_PT3& u, const ZBR_PT3& v) {
  return Atan2(u.OuterProduct(v).Length(), u.InnerProduct(v));
}

// The angle or somewhat more, by a quotient in place of the arc tangent.
double AngleAtMost(const ZBR_PT3& u, const ZBR_PT3& v) {
  constexpr double kRoom = 1.08;  // the quotient is up to 7 % too small a part of a quarter turn
  const double across = u.OuterProduct(v).Length(), along = u.InnerProduct(v), sum = std::abs(along) + across;
  const double part = sum > 0 ? across / sum : 0.0;
  return along >= 0 ? kRoom * (kPi / 2) * part : kPi - part;  // the part is less than its angle
}

// Sums of the angles of a shell's triangles around its points.
template <class AngleOf>
std::vector<double> AngleSums(const Model& model, const Connectivity& mesh, std::size_t shell, AngleOf angle) {
  const std::uint32_t begin = model.shellBegin[shell], end = model.shellBegin[shell + 1];
  const std::uint32_t firstPoint = mesh.pointBegin[shell];
  std::vector<double> sums(mesh.pointBegin[shell + 1] - firstPoint);
  for (std::uint32_t t = begin; t < end; ++t) {
    const auto& c = mesh.corners[t];
    for (std::size_t i = 0; i < 3; ++i) {
      const ZBR_PT3& p = mesh.points[c[i]];
      sums[c[i] - firstPoint] += angle(mesh.points[c[(i + 1) % 3]] - p, mesh.points[c[(i + 2) % 3]] - p);
    }
  }
  return sums;
}

// Around a point of a convex body the angles of the triangles sum up to less than a turn; where the surface winds round twice, to
// about two turns. That takes no exact angles, unless they are many and small.
bool WindsOnce(const Model& model, const Connectivity& mesh, std::size_t shell) {
  const auto areSmall = [](const std::vector<double>& sums) {
    return std::all_of(sums.begin(), sums.end(), [](double sum) { return sum <= 3.0 * kPi; });
  };
  return areSmall(AngleSums(model, mesh, shell, AngleAtMost)) || areSmall(AngleSums(model, mesh, shell, Angle));
}

}  // namespace

bool IsConvex(const Model& model, const Connectivity& mesh, std::size_t shell) {
  const ZBR_ZBREPS& records = model.Shell(shell);
  if (model.facing[shell] == Facing::kUnknown) return false;
  if (records.GetVertexCnt() - records.GetEdgeCnt() + records.GetTriangleCnt() != 2) return false;
  const double sign = model.facing[shell] == Facing::kOutward ? 1.0 : -1.0;
  for (std::uint32_t e = model.edgeBegin[shell]; e < model.edgeBegin[shell + 1]; ++e) {
    if (!BendsOutwards(model, mesh, e, sign)) return false;
  }
  return WindsOnce(model, mesh, shell);
}

}  // namespace zbr::drawing
