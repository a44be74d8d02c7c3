// The generated inputs of the benchmarks: pairs of regions for the Booleans, rings to be united, flat lists of rings for nesting.
//
// Every family is a function of its size alone (the seeds are fixed) and gives the same bits on every machine. The rings of one
// region are simple, properly nested and do not touch; outer rings run counter-clockwise, holes clockwise.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <zbr/planar.h>

namespace bench {

using Ring = std::vector<ZBR_PT>;

struct Polygon {
  Ring outer;
  std::vector<Ring> holes;
};

using Region = std::vector<Polygon>;

struct RegionPair {
  Region a;
  Region b;
};

// Two star-shaped rings of n edges: a radius of 500 varied by six low harmonics, with noise of 0.6 edge lengths. Large rings that
// cross 12 to 20 times, whatever n.
RegionPair MakeStar(std::size_t n);

// Two coastlines of n vertices made by midpoint displacement, alike down to n/64 vertices and different below, one turned and
// shifted by about an edge length. About n/33 crossings, the rings close to each other everywhere.
RegionPair MakeCoast(std::size_t n);

// Two combs of n/4 teeth, one turned by 90 degrees: n edges each and (n/2)^2 crossings. `combr`: both turned by 0.3 rad, so that
// no edge runs along an axis.
RegionPair MakeComb(std::size_t n);
RegionPair MakeTurnedComb(std::size_t n);

// n unit squares every 1.5 on either side, the second set shifted by (0.3, 0.4): two crossings per square.
RegionPair MakeTiles(std::size_t n);

// The same squares as holes of one large square on either side: two crossings per hole and two of the outer rings.
RegionPair MakeHoles(std::size_t n);

// The cells of an n by n integer grid, 42 % filled at random, and filled further until none meet only at a corner. Very many
// shared edges and vertices, few proper crossings.
RegionPair MakeGrid(std::size_t n);

// Archipelagos of n vertices: rough coasts, a lake or two on every island, half of the islands divided by a border of which one
// side belongs to the region; B is A turned by 0.01 rad and shifted by less.
RegionPair MakeCountries(std::size_t n);

// The same archipelago, every island divided: A holds the western countries, B the eastern ones, with the vertices of the border in
// common.
RegionPair MakeBorders(std::size_t n);

// A rough ring of n vertices, and the same with one vertex in a hundred moved by up to an edge length.
RegionPair MakeRevision(std::size_t n);

// n pairs of 12-gons that overlap by about a half, somewhere each.
std::vector<RegionPair> MakePairs(std::size_t n);

// n circles of 32 edges, or upright rectangles, of sizes up to threefold, thrown at random so that a place is covered about twice.
std::vector<Ring> MakeCircles(std::size_t n);
std::vector<Ring> MakeRectangles(std::size_t n);

// n concentric squares, every other one a hole of the one around it.
Region MakeNest(std::size_t n);

// Clusters of five nested squares side by side, n squares in all.
Region MakeNestWide(std::size_t n);

// The rings of a region in an order that tells nothing of their nesting.
std::vector<Ring> ShuffledRings(const Region& region);

struct PairFamily {
  std::string_view name;
  RegionPair (*make)(std::size_t n);
};

struct NestFamily {
  std::string_view name;
  Region (*make)(std::size_t n);
};

struct RingsFamily {
  std::string_view name;
  std::vector<Ring> (*make)(std::size_t n);
};

const std::vector<PairFamily>& PairFamilies();
const std::vector<RingsFamily>& RingsFamilies();
const std::vector<NestFamily>& NestFamilies();

std::size_t CountEdges(const Region& region);
std::size_t CountRings(const Region& region);
// Positive for a counter-clockwise ring.
double Area(const Ring& ring);
double Area(const Region& region);

}  // namespace bench
