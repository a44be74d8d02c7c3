// Seeded pairs of operands, drawn so that coincidences are common. The same seed gives the same pair on every machine.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "support/shapes.h"

using Random = std::mt19937_64;

struct OperandPair {
  std::vector<Ring> a;
  std::vector<Ring> b;
  // Areas of the five operations in the order of kOps, where the construction knows them.
  std::optional<std::array<double, 5>> areas;
};

// A way to draw pairs. `regions`: each family consists of simple rings, properly nested, that meet in points at most.
struct Family {
  const char* name;
  OperandPair (*draw)(Random&);
  bool regions;
};
inline void PrintTo(const Family& family, std::ostream* out) {
  *out << family.name;
}

// cells     random cells of an integer grid; saddles make rings that touch in corners; known areas
// blocks    the same with the saddles filled: many shared edges and vertices between A and B, no touching rings in one family
// stars     star-shaped rings with shrunken holes and islands, general position
// nests     concentric squares around two centres: many equal rings
// tiles     squares with square holes on a lattice, B shifted by a quarter, a half or a whole step or at random
// fans      triangles around an apex, and in them rings that share it: up to a dozen boundaries cross at one spot
// scribbles few random integer points per ring, crossing themselves and each other; repeated points
const std::vector<Family>& Families();
std::vector<Family> RegionFamilies();
const Family& FamilyNamed(const std::string& name);

// Adds what changes no region: repeated points, points on edges (exact for even coordinates), another order and start.
void Roughen(std::vector<Ring>& rings, Random& random);

// One pair of a family made harder: other order and starts, repeated points, far away, another size. Seeds give equal pairs.
OperandPair DrawHard(const Family& family, std::uint64_t seed);

// The count times the environment variable ZBR_TEST_SCALE, at least 1.
int Scaled(int count);

inline int Below(Random& random, int n) {
  return static_cast<int>(random() % static_cast<std::uint64_t>(n));
}
inline double Unit(Random& random) {
  return static_cast<double>(random() >> 11U) * 0x1p-53;
}
