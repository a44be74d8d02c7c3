// Boxes, prisms, the torus, and scenes of many bodies.
#include <algorithm>
#include <cmath>

#include "bench/portable_numbers.h"
#include "models/models.h"
#include "models/solid.h"

namespace example {
namespace {

using bench::Random;
using bench::SinCosOfTurns;

// A closed surface over an n x m grid that joins up in both directions.
void AddTorusGrid(Mesh& mesh, std::uint32_t n, std::uint32_t m) {
  for (std::uint32_t i = 0; i < n; ++i) {
    for (std::uint32_t j = 0; j < m; ++j) {
      const std::uint32_t a = i * m + j, b = (i + 1) % n * m + j, c = (i + 1) % n * m + (j + 1) % m, d = i * m + (j + 1) % m;
      mesh.triangles.push_back({a, b, c});
      mesh.triangles.push_back({a, c, d});
    }
  }
}

double AxisAt(const ZBR_PT3& axis, int i) {
  return i == 0 ? axis.x() : i == 1 ? axis.y() : axis.z();
}

ZBR_PT3 RandomDirection(Random& random) {
  for (;;) {
    const double x = random.Between(-1, 1), y = random.Between(-1, 1), z = random.Between(-1, 1);
    const double length2 = x * x + y * y + z * z;
    if (length2 > 0.01 && length2 < 1) return ZBR_PT3(x, y, z);
  }
}

}  // namespace

void Append(Mesh& mesh, const Mesh& other) {
  const auto first = static_cast<std::uint32_t>(mesh.points.size());
  mesh.points.insert(mesh.points.end(), other.points.begin(), other.points.end());
  for (const auto& t : other.triangles) mesh.triangles.push_back({t[0] + first, t[1] + first, t[2] + first});
}

void Move(Mesh& mesh, const ZBR_PT3& by) {
  for (ZBR_PT3& p : mesh.points) p += by;
}

void Turn(Mesh& mesh, const ZBR_PT3& axis, double turns) {
  const auto [sin, cos] = SinCosOfTurns(turns);
  const ZBR_PT3 n = axis * (1.0 / axis.Length());
  for (ZBR_PT3& p : mesh.points) p = p * cos + n.OuterProduct(p) * sin + n * (n.InnerProduct(p) * (1 - cos));
}

Mesh Box(const ZBR_PT3& low, const ZBR_PT3& high) {
  Mesh mesh;
  for (int i = 0; i < 8; ++i) {
    const ZBR_PT3 sides[] = {low, high};
    mesh.points.emplace_back(AxisAt(sides[i & 1], 0), AxisAt(sides[i >> 1 & 1], 1), AxisAt(sides[i >> 2], 2));
  }
  mesh.triangles = {{0, 2, 3}, {0, 3, 1}, {4, 5, 7}, {4, 7, 6}, {0, 1, 5}, {0, 5, 4},
                    {2, 6, 7}, {2, 7, 3}, {0, 4, 6}, {0, 6, 2}, {1, 3, 7}, {1, 7, 5}};
  return mesh;
}

Mesh Cylinder(int sides, double radius, double height) {
  Solid solid;
  solid.Extrude(Axis::kZ, Circle(0, 0, radius, sides), 0, height);
  return solid.Take();
}

Mesh Assembly() {
  Mesh mesh = Box({0, 0, -8}, {100, 70, 0});
  for (int k = 0; k < 12; ++k) {
    const ZBR_PT3 at(6.0 + 24 * (k % 4), 6.0 + 22 * (k / 4), 0);
    Mesh body = k % 2 == 0 ? Box({0, 0, 0}, {14, 9.0 + k % 3, 8.0 + 3 * k}) : Cylinder(12 + 5 * k, 6, 6.0 + 2 * k);
    Move(body, k % 2 == 0 ? at : at + ZBR_PT3(7, 6, 0));
    Append(mesh, body);
  }
  return mesh;
}

Mesh LSolid(double height) {
  Solid solid;
  solid.Extrude(Axis::kZ, Polygon({{0, 0}, {3, 0}, {3, 1}, {1, 1}, {1, 2}, {0, 2}}), 0, height);
  return solid.Take();
}

Mesh USolid(double height) {
  Solid solid;
  solid.Extrude(Axis::kZ, Polygon({{0, 0}, {3, 0}, {3, 2}, {2, 2}, {2, 1}, {1, 1}, {1, 2}, {0, 2}}), 0, height);
  return solid.Take();
}

Mesh Torus(std::size_t triangles) {
  constexpr double kRadius = 1.0, kTube = 0.4;
  // Cells are about square: the ring is 2.5 times as long as the tube is round.
  const double half = static_cast<double>(triangles) / 2.0;
  const auto m = static_cast<std::uint32_t>(std::max(3.0, std::round(std::sqrt(half * kTube / kRadius))));
  const auto n = static_cast<std::uint32_t>(std::max(3.0, std::round(half / m)));
  Mesh mesh;
  for (std::uint32_t i = 0; i < n; ++i) {
    const auto around = SinCosOfTurns(static_cast<double>(i) / n);
    for (std::uint32_t j = 0; j < m; ++j) {
      const auto tube = SinCosOfTurns(static_cast<double>(j) / m);
      const double r = kRadius + kTube * tube.cos;
      mesh.points.emplace_back(r * around.cos, r * around.sin, kTube * tube.sin);
    }
  }
  AddTorusGrid(mesh, n, m);
  return mesh;
}

Mesh BoxesOnPlate(int n, bool lattice, std::uint64_t seed) {
  Random random(seed);
  Mesh mesh = Box(ZBR_PT3(0, 0, -0.25), ZBR_PT3(n, n, 0));
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      const double width = lattice ? 0.5 : random.Between(0.45, 0.85);
      const double depth = lattice ? 0.5 : random.Between(0.45, 0.85);
      const double height = lattice ? 0.25 * static_cast<double>(1 + random.Below(6)) : random.Between(0.2, 1.7);
      const double x = i + (1 - width) / 2, y = j + (1 - depth) / 2;
      Append(mesh, Box(ZBR_PT3(x, y, 0), ZBR_PT3(x + width, y + depth, height)));
    }
  }
  return mesh;
}

Mesh Gears(int k, std::size_t triangles, std::uint64_t seed) {
  constexpr double kPitch = 2.4;  // more than the diagonal of a gear
  Random random(seed);
  const Mesh gear = Gear(triangles);
  Mesh mesh;
  for (int i = 0; i < k * k * k; ++i) {
    Mesh turned = gear;
    const ZBR_PT3 axis = RandomDirection(random);
    Turn(turned, axis, random.Between(0, 1));
    const int row = i / k;
    const int layer = row / k;
    Move(turned, ZBR_PT3(i % k, row % k, layer) * kPitch);
    Append(mesh, turned);
  }
  return mesh;
}

}  // namespace example
