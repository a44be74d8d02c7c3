// The families of large, rough rings: stars and coastlines.

#include <algorithm>
#include <array>
#include <cmath>

#include "portable_numbers.h"
#include "workloads.h"

namespace bench {
namespace {

constexpr std::uint64_t kStarSeedA = 15;
constexpr std::uint64_t kStarSeedB = 16;
constexpr std::uint64_t kCoastSeedA = 21;
constexpr std::uint64_t kCoastSeedB = 22;

// A ring that is simple for any seed: its angle grows from vertex to vertex and its radius stays positive (six harmonics of at
// most 0.08 take away less than half).
Ring MakeStarRing(std::size_t n, std::uint64_t seed, ZBR_PT centre) {
  constexpr double kRadius = 500.0;
  constexpr double kAmplitude = 0.08;
  constexpr double kNoise = 0.6;
  struct Harmonic {
    double amplitude;
    double phase;
  };
  Random random(seed);
  std::array<Harmonic, 6> harmonics;
  for (Harmonic& h : harmonics) h = {random.Between(0.0, kAmplitude), random.Between(0.0, 1.0)};

  const double edge = 2.0 * kPi * kRadius / static_cast<double>(n);
  Ring ring;
  ring.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double turns = static_cast<double>(i) / static_cast<double>(n);
    double factor = 1.0;
    for (std::size_t k = 0; k < harmonics.size(); ++k) {
      const double frequency = static_cast<double>(k + 2);
      factor += harmonics[k].amplitude * SinCosOfTurns(frequency * turns + harmonics[k].phase).cos;
    }
    const double radius = kRadius * factor + random.Between(-kNoise, kNoise) * edge;
    const SinCos angle = SinCosOfTurns(turns);
    ring.emplace_back(OnGrid(centre.x() + radius * angle.cos), OnGrid(centre.y() + radius * angle.sin));
  }
  return ring;
}

// One step of midpoint displacement: `extra` of the edges, spread evenly, get a new vertex beside their middle, so far off that
// either half turns by at most `angle`. The random value belongs to the edge, so rings with equal seeds stay equal.
Ring Refine(const Ring& ring, std::size_t extra, double angle, std::uint64_t seed) {
  Ring refined;
  refined.reserve(ring.size() + extra);
  for (std::size_t i = 0; i < ring.size(); ++i) {
    refined.push_back(ring[i]);
    if ((i + 1) * extra / ring.size() == i * extra / ring.size()) continue;
    const ZBR_PT half = (ring[i + 1 < ring.size() ? i + 1 : 0] - ring[i]) * 0.5;
    const SinCos turn = SinCosOfRadians(angle * SignedUnit(seed, i));
    refined.push_back(ring[i] + half + ZBR_PT(-half.y(), half.x()) * (turn.sin / turn.cos));
  }
  return refined;
}

// A coastline of n vertices: levels of up to `shared` vertices use the common seed, the finer ones `seed`. Simple for the seeds
// above at the sizes in use, as check_workloads tells; displacements that shrink by a tenth per level do not ensure it for every
// seed.
Ring MakeCoastRing(std::size_t n, std::size_t shared, std::uint64_t seed) {
  constexpr double kRadius = 600.0;
  constexpr double kAngle = 0.45;
  constexpr double kDecay = 0.9;
  const std::size_t corners = 8 + Random(kCoastSeedA).Below(7);
  Ring ring;
  for (std::size_t i = 0; i < corners; ++i) {
    const SinCos angle = SinCosOfTurns(static_cast<double>(i) / static_cast<double>(corners));
    ring.push_back(ZBR_PT(angle.cos, angle.sin) * kRadius);
  }
  double angle = kAngle;
  for (std::uint64_t level = 1; ring.size() < n; ++level, angle *= kDecay) {
    const std::uint64_t levelSeed = Mix(2 * ring.size() <= shared ? kCoastSeedA : seed) + level;
    ring = Refine(ring, std::min(ring.size(), n - ring.size()), angle, levelSeed);
  }
  return ring;
}

double Perimeter(const Ring& ring) {
  double sum = ring.back().Distance(ring.front());
  for (std::size_t i = 1; i < ring.size(); ++i) sum += ring[i].Distance(ring[i - 1]);
  return sum;
}

Ring Placed(const Ring& ring, SinCos angle, ZBR_PT shift) {
  Ring placed;
  placed.reserve(ring.size());
  for (const ZBR_PT& p : ring) {
    placed.emplace_back(OnGrid(angle.cos * p.x() - angle.sin * p.y() + shift.x()),
                        OnGrid(angle.sin * p.x() + angle.cos * p.y() + shift.y()));
  }
  return placed;
}

}  // namespace

RegionPair MakeStar(std::size_t n) {
  const std::size_t count = std::max<std::size_t>(n, 3);
  return {{{MakeStarRing(count, kStarSeedA, ZBR_PT()), {}}}, {{MakeStarRing(count, kStarSeedB, ZBR_PT(7.3, -4.1)), {}}}};
}

RegionPair MakeCoast(std::size_t n) {
  const Ring a = MakeCoastRing(n, n / 64, kCoastSeedA);
  const Ring b = MakeCoastRing(n, n / 64, kCoastSeedB);
  const double count = static_cast<double>(n);
  const ZBR_PT shift = ZBR_PT(0.8, 0.6) * (Perimeter(a) / count);
  return {{{Placed(a, SinCosOfTurns(0.0), ZBR_PT()), {}}}, {{Placed(b, SinCosOfTurns(2.0 / count), shift), {}}}};
}

}  // namespace bench
