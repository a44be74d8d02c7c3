// The families made of straight pieces (combs, squares, nested squares), and what is common to all.

#include "workloads.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "portable_numbers.h"

namespace bench {
namespace {

constexpr double kToothWidth = 0.95;
constexpr double kToothPitch = 1.9;
constexpr double kSquarePitch = 1.5;

// A comb of n/4 upright teeth, centred on the origin. Spine and tooth tips lie outside the square that the teeth of the comb
// turned by 90 degrees fill, so that every long edge crosses every long edge.
Ring MakeCombRing(std::size_t n) {
  const std::size_t teeth = std::max<std::size_t>(n / 4, 2);
  const double half = 0.5 * (kToothPitch * static_cast<double>(teeth - 1) + kToothWidth);
  Ring ring;
  ring.reserve(4 * teeth);
  for (std::size_t i = teeth; i-- > 0;) {
    const double left = kToothPitch * static_cast<double>(i) - half;
    const double right = left + kToothWidth;
    ring.emplace_back(right, i + 1 == teeth ? -half - 2.0 : -half - 1.0);
    ring.emplace_back(right, half + 1.0);
    ring.emplace_back(left, half + 1.0);
    ring.emplace_back(left, i == 0 ? -half - 2.0 : -half - 1.0);
  }
  return ring;
}

Ring Turned(const Ring& ring, SinCos angle) {
  Ring turned;
  turned.reserve(ring.size());
  for (const ZBR_PT& p : ring) {
    turned.emplace_back(OnGrid(angle.cos * p.x() - angle.sin * p.y()), OnGrid(angle.sin * p.x() + angle.cos * p.y()));
  }
  return turned;
}

RegionPair MakeCombPair(std::size_t n, double turns) {
  const Ring comb = MakeCombRing(n);
  return {{{Turned(comb, SinCosOfTurns(turns)), {}}}, {{Turned(comb, SinCosOfTurns(turns + 0.25)), {}}}};
}

// The square with the given corner, counter-clockwise.
Ring Square(double x, double y, double side) {
  const double left = OnGrid(x);
  const double low = OnGrid(y);
  const double right = OnGrid(x + side);
  const double high = OnGrid(y + side);
  return {{left, low}, {right, low}, {right, high}, {left, high}};
}

Ring Reversed(Ring ring) {
  std::reverse(ring.begin(), ring.end());
  return ring;
}

// Places of n squares side by side, row by row, in a block as wide as it is high.
std::vector<ZBR_PT> BlockPlaces(std::size_t n, double pitch, ZBR_PT shift) {
  const std::size_t columns = std::max<std::size_t>(static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(n)))), 1);
  std::vector<ZBR_PT> places;
  places.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    places.push_back(shift + ZBR_PT(static_cast<double>(i % columns), static_cast<double>(i / columns)) * pitch);
  }
  return places;
}

Region MakeTileRegion(std::size_t n, ZBR_PT shift) {
  Region region;
  for (const ZBR_PT& p : BlockPlaces(n, kSquarePitch, shift)) region.push_back({Square(p.x(), p.y(), 1.0), {}});
  return region;
}

// The margin around the holes is as wide as the gaps between them: wider than the shift of the second region, so that the outer
// rings meet no hole.
Region MakeHoleRegion(std::size_t n, ZBR_PT shift) {
  const double margin = kSquarePitch - 1.0;
  const double side = kSquarePitch * std::ceil(std::sqrt(static_cast<double>(n))) + margin;
  Polygon polygon = {Square(shift.x() - margin, shift.y() - margin, side), {}};
  for (const ZBR_PT& p : BlockPlaces(n, kSquarePitch, shift)) polygon.holes.push_back(Reversed(Square(p.x(), p.y(), 1.0)));
  return {std::move(polygon)};
}

// Appends `count` squares around a centre, of half sides 1, 2, ..., paired from the largest down: outer ring, hole in it.
void AppendConcentric(ZBR_PT centre, std::size_t count, Region& region) {
  const auto ring = [&](std::size_t half) {
    const double h = static_cast<double>(half);
    return Square(centre.x() - h, centre.y() - h, 2.0 * h);
  };
  for (std::size_t half = count; half > 0; half -= std::min<std::size_t>(half, 2)) {
    Polygon polygon = {ring(half), {}};
    if (half > 1) polygon.holes.push_back(Reversed(ring(half - 1)));
    region.push_back(std::move(polygon));
  }
}

}  // namespace

RegionPair MakeComb(std::size_t n) {
  return MakeCombPair(n, 0.0);
}

RegionPair MakeTurnedComb(std::size_t n) {
  return MakeCombPair(n, 0.3 / (2.0 * kPi));
}

RegionPair MakeTiles(std::size_t n) {
  return {MakeTileRegion(n, ZBR_PT()), MakeTileRegion(n, ZBR_PT(0.3, 0.4))};
}

RegionPair MakeHoles(std::size_t n) {
  return {MakeHoleRegion(n, ZBR_PT()), MakeHoleRegion(n, ZBR_PT(0.3, 0.4))};
}

Region MakeNest(std::size_t n) {
  Region region;
  AppendConcentric(ZBR_PT(), n, region);
  return region;
}

Region MakeNestWide(std::size_t n) {
  constexpr std::size_t kDepth = 5;
  constexpr double kClusterPitch = 2.0 * kDepth + 1.0;
  Region region;
  for (const ZBR_PT& centre : BlockPlaces(n / kDepth, kClusterPitch, ZBR_PT())) AppendConcentric(centre, kDepth, region);
  if (n % kDepth != 0) AppendConcentric(ZBR_PT(-kClusterPitch, 0.0), n % kDepth, region);
  return region;
}

std::vector<Ring> ShuffledRings(const Region& region) {
  std::vector<Ring> rings;
  rings.reserve(CountRings(region));
  for (const Polygon& polygon : region) {
    rings.push_back(polygon.outer);
    rings.insert(rings.end(), polygon.holes.begin(), polygon.holes.end());
  }
  Random random(1);
  for (std::size_t i = rings.size(); i > 1; --i) std::swap(rings[i - 1], rings[random.Below(i)]);
  return rings;
}

const std::vector<PairFamily>& PairFamilies() {
  static const std::vector<PairFamily> families = {
      {"star", MakeStar},       {"coast", MakeCoast},      {"tiles", MakeTiles}, {"holes", MakeHoles},
      {"comb", MakeComb},       {"combr", MakeTurnedComb}, {"grid", MakeGrid},   {"countries", MakeCountries},
      {"borders", MakeBorders}, {"revision", MakeRevision}};
  return families;
}

const std::vector<NestFamily>& NestFamilies() {
  static const std::vector<NestFamily> families = {{"nest", MakeNest}, {"nestw", MakeNestWide}};
  return families;
}

std::size_t CountEdges(const Region& region) {
  std::size_t edges = 0;
  for (const Polygon& polygon : region) {
    edges += polygon.outer.size();
    for (const Ring& hole : polygon.holes) edges += hole.size();
  }
  return edges;
}

std::size_t CountRings(const Region& region) {
  std::size_t rings = region.size();
  for (const Polygon& polygon : region) rings += polygon.holes.size();
  return rings;
}

// Relative to the first point, so that small rings far from the origin lose nothing.
double Area(const Ring& ring) {
  double doubled = 0.0;
  for (std::size_t i = 2; i < ring.size(); ++i) doubled += (ring[i - 1] - ring[0]).OuterProduct(ring[i] - ring[0]);
  return 0.5 * doubled;
}

double Area(const Region& region) {
  double sum = 0.0;
  for (const Polygon& polygon : region) {
    sum += Area(polygon.outer);
    for (const Ring& hole : polygon.holes) sum += Area(hole);
  }
  return sum;
}

}  // namespace bench
