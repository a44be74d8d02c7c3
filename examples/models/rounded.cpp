// Bodies with round surfaces, made of rings of points one above the other.
#include <algorithm>
#include <vector>

#include "bench/portable_numbers.h"
#include "models/models.h"

namespace example {
namespace {

using bench::SinCosOfTurns;
using Ring = std::vector<ZBR_PT3>;

// Rings of equal size, counter-clockwise seen from above, each above the one before; a first or last one of a single point is a
// peak, else there is a flat end.
Mesh Stacked(const std::vector<Ring>& rings) {
  Mesh mesh;
  std::vector<std::uint32_t> below;
  for (const Ring& ring : rings) {
    std::vector<std::uint32_t> numbers;
    for (const ZBR_PT3& p : ring) {
      numbers.push_back(static_cast<std::uint32_t>(mesh.points.size()));
      mesh.points.push_back(p);
    }
    const std::size_t n = std::max(numbers.size(), below.size());
    for (std::size_t i = 0; i < n && !below.empty(); ++i) {
      const std::size_t next = (i + 1) % n;
      const auto at = [](const std::vector<std::uint32_t>& of, std::size_t k) { return of[of.size() == 1 ? 0 : k]; };
      if (below.size() > 1) mesh.triangles.push_back({at(below, i), at(below, next), at(numbers, next)});
      if (numbers.size() > 1) mesh.triangles.push_back({at(below, i), at(numbers, next), at(numbers, i)});
    }
    if (below.empty() && numbers.size() > 1) AddPolygon(mesh, {numbers.rbegin(), numbers.rend()});
    below = numbers;
  }
  if (below.size() > 1) AddPolygon(mesh, below);
  return mesh;
}

Ring CircleAt(double radius, double z, int sides) {
  if (radius == 0.0) return {{0.0, 0.0, z}};
  Ring ring;
  for (int i = 0; i < sides; ++i) {
    const auto [sin, cos] = SinCosOfTurns(static_cast<double>(i) / sides);
    ring.emplace_back(radius * cos, radius * sin, z);
  }
  return ring;
}

// A rectangle about the origin with rounded corners, `steps` edges to each.
Ring RoundedAt(double halfX, double halfY, double radius, double z, int steps) {
  Ring ring;
  for (int corner = 0; corner < 4; ++corner) {
    const double x = (corner == 0 || corner == 3 ? 1.0 : -1.0) * (halfX - radius), y = (corner < 2 ? 1.0 : -1.0) * (halfY - radius);
    for (int k = 0; k <= steps; ++k) {
      const auto [sin, cos] = SinCosOfTurns((corner + static_cast<double>(k) / steps) / 4.0);
      ring.emplace_back(x + radius * cos, y + radius * sin, z);
    }
  }
  return ring;
}

constexpr int kSteps = 8;  // of a quarter

}  // namespace

Mesh Cover() {
  constexpr double kHalfX = 60.0, kHalfY = 40.0, kHeight = 30.0, kCorner = 16.0, kFillet = 8.0;
  std::vector<Ring> rings{RoundedAt(kHalfX, kHalfY, kCorner, 0.0, kSteps)};
  for (int k = 0; k <= kSteps; ++k) {
    const auto [sin, cos] = SinCosOfTurns(k / (4.0 * kSteps));
    const double in = kFillet * (1.0 - cos);
    rings.push_back(RoundedAt(kHalfX - in, kHalfY - in, kCorner - in, kHeight - kFillet * (1.0 - sin), kSteps));
  }
  Mesh cover = Stacked(rings);
  std::vector<Ring> boss{CircleAt(16.0, 10.0, 8 * kSteps), CircleAt(16.0, 42.0, 8 * kSteps)};
  for (int k = 1; k <= kSteps; ++k) {
    const auto [sin, cos] = SinCosOfTurns(k / (4.0 * kSteps));
    boss.push_back(CircleAt(13.0 + 3.0 * cos, 42.0 + 3.0 * sin, 8 * kSteps));
  }
  Mesh top = Stacked(boss);
  Move(top, ZBR_PT3(-14.0, 0.0, 0.0));
  Append(cover, top);
  Mesh pipe = Cylinder(6 * kSteps, 9.0, 50.0);  // slanting, through the boss
  Turn(pipe, ZBR_PT3(0.0, 1.0, 0.0), 0.19);
  Move(pipe, ZBR_PT3(-2.0, 0.0, 24.0));
  Append(cover, pipe);
  return cover;
}

Mesh ConeThroughSphere() {
  constexpr int kSides = 48;
  std::vector<Ring> sphere, cone{CircleAt(22.0, -55.0, kSides)};
  for (int k = 0; k <= kSides / 2; ++k) {
    const auto [sin, cos] = SinCosOfTurns(k / static_cast<double>(kSides) - 0.25);
    sphere.push_back(CircleAt(k == 0 || k == kSides / 2 ? 0.0 : 40.0 * cos, 40.0 * sin, kSides));
  }
  cone.push_back(CircleAt(0.0, 75.0, kSides));
  Mesh body = Stacked(cone);
  Turn(body, ZBR_PT3(1.0, 0.0, 0.0), 0.06);
  Move(body, ZBR_PT3(12.0, 0.0, 4.0));
  Mesh both = Stacked(sphere);
  Append(both, body);
  return both;
}

}  // namespace example
