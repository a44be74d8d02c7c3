// The families of maps: an archipelago beside its turned copy, neighbouring countries, a ring and its revision.

#include <algorithm>
#include <cmath>
#include <utility>

#include "portable_numbers.h"
#include "workloads.h"

namespace bench {
namespace {

constexpr std::uint64_t kMapSeed = 41;
constexpr std::uint64_t kRevisionSeed = 42;

// Noise in [-1, 1] on a circle of circumference 1: octaves of values joined by straight lines, each with twice the frequency and
// 0.55 times the height of the one before, so that the curve grows rougher the closer one looks, as coasts do.
double Rough(std::uint64_t seed, double turns) {
  constexpr int kOctaves = 16;
  constexpr double kShrink = 0.55;
  double sum = 0.0;
  double height = 1.0 - kShrink;
  std::uint64_t period = 4;
  for (int octave = 0; octave < kOctaves; ++octave, period *= 2, height *= kShrink) {
    const double place = (turns - std::floor(turns)) * static_cast<double>(period);
    const auto cell = static_cast<std::uint64_t>(place);
    const double share = place - static_cast<double>(cell);
    const std::uint64_t octaveSeed = Mix(seed) + static_cast<std::uint64_t>(octave);
    sum += height * ((1.0 - share) * SignedUnit(octaveSeed, cell % period) + share * SignedUnit(octaveSeed, (cell + 1) % period));
  }
  return sum;
}

// A ring around a centre, simple as its angle grows from vertex to vertex; its radius is between 0.75 and 1.25 of the one given.
Ring MakeShore(ZBR_PT centre, double radius, std::size_t n, std::uint64_t seed) {
  constexpr double kRoughness = 0.25;
  Ring ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double turns = static_cast<double>(i) / static_cast<double>(n);
    const SinCos angle = SinCosOfTurns(turns);
    ring.push_back(centre + ZBR_PT(angle.cos, angle.sin) * (radius * (1.0 + kRoughness * Rough(seed, turns))));
  }
  return ring;
}

struct Island {
  ZBR_PT centre;
  double radius;
  Ring coast;               // the vertices a quarter and three quarters around lie due north and south of the centre
  std::vector<Ring> lakes;  // one in the west, one in the east, clear of coast and border; counter-clockwise
  Ring border;              // from north to south, without its ends on the coast
};

Island MakeIsland(ZBR_PT centre, double radius, std::size_t n, std::uint64_t seed) {
  constexpr double kLakeRadius = 0.12;
  constexpr double kLakeDistance = 0.48;
  constexpr double kBorderReach = 0.7;  // less than the least radius of a coast
  constexpr double kBorderWidth = 0.2;
  const std::size_t coast = std::max<std::size_t>(n / 2 / 4, 3) * 4;
  Island island = {centre, radius, MakeShore(centre, radius, coast, seed), {}, {}};
  for (const double side : {-1.0, 1.0}) {
    const ZBR_PT lake = centre + ZBR_PT(side * kLakeDistance * radius, 0.0);
    island.lakes.push_back(MakeShore(lake, kLakeRadius * radius, std::max<std::size_t>(n / 8, 3), seed + (side < 0.0 ? 1 : 2)));
  }
  const std::size_t border = std::max<std::size_t>(n / 4, 3);
  for (std::size_t i = 0; i < border; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(border - 1);
    const double taper = 4.0 * t * (1.0 - t);
    island.border.push_back(centre + ZBR_PT(kBorderWidth * taper * Rough(seed + 3, t), kBorderReach * (1.0 - 2.0 * t)) * radius);
  }
  return island;
}

// Islands of different sizes, n vertices in all, side by side in a square of 1200.
std::vector<Island> MakeArchipelago(std::size_t n) {
  constexpr std::size_t kVerticesOfIsland = 1'000;
  constexpr double kExtent = 1'200.0;
  constexpr double kLeast = 0.1;  // of the pitch; radii vary by a quarter, so that the largest still keep apart
  constexpr double kMost = 0.38;
  const auto columns = static_cast<std::size_t>(
      std::ceil(std::sqrt(std::max(1.0, static_cast<double>(n) / static_cast<double>(kVerticesOfIsland)))));
  const double pitch = kExtent / static_cast<double>(columns);
  const std::size_t count = columns * columns;
  std::vector<double> radii;
  double sum = 0.0;
  Random random(kMapSeed);
  for (std::size_t i = 0; i < count; ++i) sum += radii.emplace_back(pitch * random.Between(kLeast, kMost));
  std::vector<Island> islands;
  for (std::size_t i = 0; i < count; ++i) {
    const ZBR_PT cell(static_cast<double>(i % columns) + 0.5, static_cast<double>(i / columns) + 0.5);
    const auto vertices = static_cast<std::size_t>(static_cast<double>(n) * radii[i] / sum);
    islands.push_back(MakeIsland(cell * pitch - ZBR_PT(0.5 * kExtent, 0.5 * kExtent), radii[i], vertices, kMapSeed + 4 * i));
  }
  return islands;
}

Polygon WholeOf(const Island& island) {
  Polygon polygon = {island.coast, island.lakes};
  for (Ring& lake : polygon.holes) std::reverse(lake.begin(), lake.end());
  return polygon;
}

// The country to one side of the border.
Polygon CountryOf(const Island& island, bool east) {
  const Ring& coast = island.coast;
  const std::size_t north = coast.size() / 4;
  const std::size_t south = 3 * north;
  Polygon country = {{}, {island.lakes[east ? 1 : 0]}};
  std::reverse(country.holes[0].begin(), country.holes[0].end());
  Ring& ring = country.outer;
  for (std::size_t i = east ? south : north; i != (east ? north : south); i = i + 1 < coast.size() ? i + 1 : 0)
    ring.push_back(coast[i]);
  ring.push_back(coast[east ? north : south]);
  if (east) {
    ring.insert(ring.end(), island.border.begin(), island.border.end());
  } else {
    ring.insert(ring.end(), island.border.rbegin(), island.border.rend());
  }
  return country;
}

void Place(Region& region, SinCos angle, ZBR_PT shift) {
  const auto place = [&](Ring& ring) {
    for (ZBR_PT& p : ring) {
      p = ZBR_PT(OnGrid(angle.cos * p.x() - angle.sin * p.y() + shift.x()),
                 OnGrid(angle.sin * p.x() + angle.cos * p.y() + shift.y()));
    }
  };
  for (Polygon& polygon : region) {
    place(polygon.outer);
    std::for_each(polygon.holes.begin(), polygon.holes.end(), place);
  }
}

}  // namespace

// A holds the west of every other island and the whole of the rest; so does B, turned.
RegionPair MakeCountries(std::size_t n) {
  RegionPair pair;
  bool whole = false;
  for (const Island& island : MakeArchipelago(n)) {
    pair.a.push_back(whole ? WholeOf(island) : CountryOf(island, false));
    whole = !whole;
  }
  pair.b = pair.a;
  Place(pair.a, SinCosOfTurns(0.0), ZBR_PT());
  Place(pair.b, SinCosOfRadians(0.01), ZBR_PT(0.3, 0.2));
  return pair;
}

RegionPair MakeBorders(std::size_t n) {
  RegionPair pair;
  for (const Island& island : MakeArchipelago(n)) {
    pair.a.push_back(CountryOf(island, false));
    pair.b.push_back(CountryOf(island, true));
  }
  Place(pair.a, SinCosOfTurns(0.0), ZBR_PT());
  Place(pair.b, SinCosOfTurns(0.0), ZBR_PT());
  return pair;
}

// Vertices move along their radius, so that the ring stays simple.
RegionPair MakeRevision(std::size_t n) {
  constexpr double kRadius = 500.0;
  constexpr double kMovedShare = 0.01;
  const std::size_t count = std::max<std::size_t>(n, 3);
  const double edge = 2.0 * kPi * kRadius / static_cast<double>(count);
  Region a = {{MakeShore(ZBR_PT(), kRadius, count, kRevisionSeed), {}}};
  Region b = a;
  Random random(kRevisionSeed);
  for (ZBR_PT& p : b[0].outer) {
    if (random.Between(0.0, 1.0) < kMovedShare) p = p * (1.0 + random.Between(-1.0, 1.0) * edge / kRadius);
  }
  Place(a, SinCosOfTurns(0.0), ZBR_PT());
  Place(b, SinCosOfTurns(0.0), ZBR_PT());
  return {std::move(a), std::move(b)};
}

}  // namespace bench
