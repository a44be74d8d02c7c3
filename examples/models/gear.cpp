// A helical gear: a profile of teeth, turned a little from layer to layer, around a smooth bore.
#include <algorithm>
#include <cmath>

#include "bench/portable_numbers.h"
#include "models/models.h"

namespace example {
namespace {

using bench::SinCosOfTurns;

constexpr double kTip = 1.0, kBore = 0.3, kWidth = 0.4;
constexpr double kTwist = 0.04;  // of the whole width, in turns

// How finely a gear is divided.
struct Division {
  std::uint32_t teeth, steps, layers;  // steps: points of a tooth and the gap behind it
  std::uint32_t Around() const { return teeth * steps; }
};

// Coarse gears have flat flanks; in fine ones teeth, flanks and layers get more alike. Two triangles for each point of a layer, and
// six more for each of the profile: bore and ends.
Division Divide(std::size_t triangles) {
  const bool coarse = triangles < 10000;
  const double points = static_cast<double>(triangles) / 2.0;
  Division division{24, coarse ? 4U : 12U, 0};
  if (!coarse) division.teeth = static_cast<std::uint32_t>(std::max(24.0, std::round(std::sqrt(points / 150.0))));
  if (triangles < 1000) division.teeth = 8;
  const double layers = std::round(points / division.Around()) - 3.0;
  division.layers = static_cast<std::uint32_t>(std::max(1.0, layers));
  return division;
}

// Radius at a place of the profile, 0 to 1 from one gap to the next: gap, flank, tip, flank, with corners at the given places.
double ProfileRadius(std::uint32_t step, const Division& division) {
  const double root = kTip - 4.5 / division.teeth;
  const std::uint32_t quarter = division.steps / 4, part = step / quarter;
  const double t = static_cast<double>(step % quarter) / quarter;
  const double rise = t * (1.6 - 0.6 * t);  // a flank that rounds off towards the tip
  switch (part) {
    case 0:
      return root;
    case 1:
      return root + (kTip - root) * rise;
    case 2:
      return kTip;
    default:
      return kTip - (kTip - root) * (1.0 - (1.0 - t) * (1.6 - 0.6 * (1.0 - t)));
  }
}

// A strip of triangles between two closed rows of points, seen with `upper` above `lower` from outside. The first point of the
// lower row stands below the one at `shift` of the upper.
void AddStrip(Mesh& mesh, std::uint32_t lower, std::uint32_t upper, std::uint32_t count, std::uint32_t shift = 0) {
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t j = (i + 1) % count, over = (i + shift) % count, beyond = (j + shift) % count;
    mesh.triangles.push_back({lower + i, lower + j, upper + beyond});
    mesh.triangles.push_back({lower + i, upper + beyond, upper + over});
  }
}

// A row at a height, turned by an angle; returns the place of its first point.
template <class Radius>
std::uint32_t AddRow(Mesh& mesh, std::uint32_t count, double z, double turn, Radius radius) {
  const auto first = static_cast<std::uint32_t>(mesh.points.size());
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto [sin, cos] = SinCosOfTurns(turn + static_cast<double>(i) / count);
    mesh.points.emplace_back(radius(i) * cos, radius(i) * sin, z);
  }
  return first;
}

}  // namespace

Mesh Gear(std::size_t triangles) {
  const Division division = Divide(triangles);
  const std::uint32_t around = division.Around();
  const auto profile = [&](std::uint32_t i) { return ProfileRadius(i % division.steps, division); };
  const auto bore = [](std::uint32_t) { return kBore; };
  // The teeth are turned by whole points, so that the bore stays straight.
  const auto turned = static_cast<std::uint32_t>(std::round(kTwist * around));
  const double twist = static_cast<double>(turned) / around;
  Mesh mesh;
  std::uint32_t last = 0;
  for (std::uint32_t layer = 0; layer <= division.layers; ++layer) {
    const double t = static_cast<double>(layer) / division.layers;
    const std::uint32_t row = AddRow(mesh, around, kWidth * (t - 0.5), twist * t, profile);
    if (layer > 0) AddStrip(mesh, last, row, around);
    last = row;
  }
  const std::uint32_t lower = AddRow(mesh, around, -kWidth / 2, 0, bore);
  const std::uint32_t upper = AddRow(mesh, around, kWidth / 2, 0, bore);
  AddStrip(mesh, lower, 0, around);
  AddStrip(mesh, last, upper, around, turned);
  AddStrip(mesh, upper, lower, around);  // NOLINT(readability-suspicious-call-argument): the inside of the bore
  return mesh;
}

}  // namespace example
