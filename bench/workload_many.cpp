// The families of many small rings: pairs to be combined each by itself, rings to be united.

#include <cmath>

#include "portable_numbers.h"
#include "workloads.h"

namespace bench {
namespace {

constexpr std::uint64_t kPairSeed = 51;
constexpr std::uint64_t kCircleSeed = 52;
constexpr std::uint64_t kRectangleSeed = 53;

// Shapes of an average radius of 5 in a square so large that each of its places is covered about twice.
constexpr double kRadius = 5.0;
double SideFor(std::size_t n, double averageArea) {
  constexpr double kCover = 2.0;
  return std::sqrt(static_cast<double>(n) * averageArea / kCover);
}

// Simple, as its angle grows from vertex to vertex.
Ring MakeTwelveGon(Random& random, ZBR_PT centre) {
  constexpr std::size_t kCorners = 12;
  Ring ring;
  const double start = random.Between(0.0, 1.0);
  for (std::size_t i = 0; i < kCorners; ++i) {
    const SinCos angle = SinCosOfTurns(start + static_cast<double>(i) / static_cast<double>(kCorners));
    const double radius = random.Between(0.6, 1.4) * kRadius;
    ring.emplace_back(OnGrid(centre.x() + radius * angle.cos), OnGrid(centre.y() + radius * angle.sin));
  }
  return ring;
}

}  // namespace

std::vector<RegionPair> MakePairs(std::size_t n) {
  std::vector<RegionPair> pairs;
  Random random(kPairSeed);
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT centre{random.Between(-500.0, 500.0), random.Between(-500.0, 500.0)};
    const ZBR_PT shift{random.Between(-kRadius, kRadius), random.Between(-kRadius, kRadius)};
    const Ring a = MakeTwelveGon(random, centre);
    const Ring b = MakeTwelveGon(random, centre + shift);
    pairs.push_back({{{a, {}}}, {{b, {}}}});
  }
  return pairs;
}

std::vector<Ring> MakeCircles(std::size_t n) {
  constexpr std::size_t kCorners = 32;
  const double side = SideFor(n, kPi * kRadius * kRadius);
  std::vector<Ring> rings;
  Random random(kCircleSeed);
  for (std::size_t i = 0; i < n; ++i) {
    const ZBR_PT centre{random.Between(0.0, side), random.Between(0.0, side)};
    const double radius = random.Between(0.5, 1.5) * kRadius;
    Ring& ring = rings.emplace_back();
    for (std::size_t k = 0; k < kCorners; ++k) {
      const SinCos angle = SinCosOfTurns(static_cast<double>(k) / static_cast<double>(kCorners));
      ring.emplace_back(OnGrid(centre.x() + radius * angle.cos), OnGrid(centre.y() + radius * angle.sin));
    }
  }
  return rings;
}

std::vector<Ring> MakeRectangles(std::size_t n) {
  constexpr double kSide = 2.0 * kRadius;
  const double side = SideFor(n, kSide * kSide);
  std::vector<Ring> rings;
  Random random(kRectangleSeed);
  for (std::size_t i = 0; i < n; ++i) {
    const double left = OnGrid(random.Between(0.0, side));
    const double low = OnGrid(random.Between(0.0, side));
    const double right = OnGrid(left + random.Between(0.5, 1.5) * kSide);
    const double high = OnGrid(low + random.Between(0.5, 1.5) * kSide);
    rings.push_back({{left, low}, {right, low}, {right, high}, {left, high}});
  }
  return rings;
}

const std::vector<RingsFamily>& RingsFamilies() {
  static const std::vector<RingsFamily> families = {{"circles", MakeCircles}, {"rects", MakeRectangles}};
  return families;
}

}  // namespace bench
