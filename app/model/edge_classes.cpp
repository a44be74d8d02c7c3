// Normals, creases, and which side of a shell is the outer one.
//
// Triangulations of polygons leave triangles without area: three points on one line, which fill the gap between a long edge and two
// short ones. Their direction is rounding noise. They take the normal of the neighbour at their longest edge; the short edges then
// get the class that the gap's two sides give them.
#include "model/edge_classes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tool {
namespace {

// Height below which a triangle has no direction of its own, as a part of the model's diagonal: what is left of a height of zero by
// the rounding of coordinates stored with single precision.
constexpr double kFlatHeight = 1e-7;

// Degrees that rounding may add to an angle: prisms with twelve sides bend by exactly the usual limit.
constexpr double kAngleSlack = 0.01;

// The number of flat triangles that may lie side by side before the search for a normal is given up.
constexpr int kLongestDetour = 64;

constexpr double kPi = 3.14159265358979323846;

int LongestEdge(const Model& model, std::size_t t) {
  const auto& triangle = model.triangles[t];
  int longest = 0;
  double length = -1.0;
  for (std::size_t i = 0; i < 3; ++i) {
    const double d = model.points[triangle[i]].Distance(model.points[triangle[(i + 1) % 3]]);
    if (!(d > length)) continue;
    longest = static_cast<int>(i);
    length = d;
  }
  return longest;
}

// In units of the diagonal, so that products neither overflow nor vanish. Zero for a flat triangle.
ZBR_PT3 OwnNormal(const Model& model, const std::array<std::uint32_t, 3>& triangle, double perDiagonal) {
  const ZBR_PT3& a = model.points[triangle[0]];
  const ZBR_PT3 ab = (model.points[triangle[1]] - a) * perDiagonal;
  const ZBR_PT3 ac = (model.points[triangle[2]] - a) * perDiagonal;
  const ZBR_PT3 n = ab.OuterProduct(ac);
  const double doubleArea = n.Length();
  const double longest = std::sqrt(std::max({ab.Length2(), ac.Length2(), (ac - ab).Length2()}));
  return doubleArea > kFlatHeight * longest ? n * (1.0 / doubleArea) : ZBR_PT3();
}

bool IsZero(const ZBR_PT3& n) {
  return n.x() == 0 && n.y() == 0 && n.z() == 0;
}

ZBR_PT3 BorrowedNormal(const Model& model, const std::vector<ZBR_PT3>& own, std::size_t t) {
  double sign = 1.0;
  for (int step = 0; step < kLongestDetour; ++step) {
    const auto edge = static_cast<std::size_t>(LongestEdge(model, t));
    const std::int32_t next = model.adjacent[t][edge];
    if (next < 0) break;
    if (model.SameWay(t, static_cast<int>(edge))) sign = -sign;
    t = static_cast<std::size_t>(next);
    if (!IsZero(own[t])) return own[t] * sign;
  }
  return ZBR_PT3();
}

bool IsClosedAndOriented(const Model& model, std::size_t begin, std::size_t end) {
  for (std::size_t t = begin; t < end; ++t) {
    for (int i = 0; i < 3; ++i) {
      if (model.adjacent[t][static_cast<std::size_t>(i)] < 0 || model.SameWay(t, i)) return false;
    }
  }
  return true;
}

// Six times the volume inside, in diagonals; negative when the triangles face inwards.
double Volume(const Model& model, std::size_t begin, std::size_t end, double perDiagonal) {
  const ZBR_PT3 origin = model.points[model.triangles[begin][0]];
  double sum = 0.0;
  for (std::size_t t = begin; t < end; ++t) {
    ZBR_PT3 corners[3];
    for (std::size_t i = 0; i < 3; ++i) corners[i] = (model.points[model.triangles[t][i]] - origin) * perDiagonal;
    sum += corners[0].InnerProduct(corners[1].OuterProduct(corners[2]));
  }
  return sum;
}

double PerDiagonal(const Model& model) {
  const double diagonal = model.Diagonal();
  return diagonal > 0 ? 1.0 / diagonal : 1.0;
}

}  // namespace

void SetNormals(Model& model) {
  const double perDiagonal = PerDiagonal(model);
  model.normals.clear();
  model.normals.reserve(model.triangles.size());
  std::vector<std::size_t> flat;
  for (std::size_t t = 0; t < model.triangles.size(); ++t) {
    model.normals.push_back(OwnNormal(model, model.triangles[t], perDiagonal));
    if (IsZero(model.normals.back())) flat.push_back(t);
  }
  std::vector<ZBR_PT3> borrowed;
  for (const std::size_t t : flat) borrowed.push_back(BorrowedNormal(model, model.normals, t));
  for (std::size_t k = 0; k < flat.size(); ++k) model.normals[flat[k]] = borrowed[k];
}

void FindCreases(Model& model, double creaseDegrees) {
  const double limit = std::cos(std::clamp(creaseDegrees + kAngleSlack, 0.0, 180.0) * kPi / 180.0);
  for (std::size_t t = 0; t < model.triangles.size(); ++t) {
    for (std::size_t i = 0; i < 3; ++i) {
      const auto u = static_cast<std::size_t>(model.adjacent[t][i]);
      if (model.adjacent[t][i] < 0 || u < t) continue;
      if (IsZero(model.normals[t]) || IsZero(model.normals[u])) continue;
      const double cosine = model.normals[t].InnerProduct(model.normals[u]);
      if (!((model.SameWay(t, static_cast<int>(i)) ? -cosine : cosine) < limit)) continue;
      model.classes[t][i] = EdgeClass::kCrease;
      model.classes[u][static_cast<std::size_t>(model.adjacentEdge[t][i])] = EdgeClass::kCrease;
    }
  }
}

void FindFacing(Model& model) {
  const double perDiagonal = PerDiagonal(model);
  model.facing.clear();
  for (std::size_t s = 0; s + 1 < model.shellBegin.size(); ++s) {
    const std::size_t begin = model.shellBegin[s], end = model.shellBegin[s + 1];
    const double volume = IsClosedAndOriented(model, begin, end) ? Volume(model, begin, end, perDiagonal) : 0.0;
    model.facing.push_back(volume > 0 ? Facing::kOutward : volume < 0 ? Facing::kInward : Facing::kUnknown);
  }
}

}  // namespace tool
