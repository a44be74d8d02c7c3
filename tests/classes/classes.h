// Classes of input on which combinations of regions are measured. The same seed gives the same pairs on every machine.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "classes/engines.h"
#include "support/random_shapes.h"

struct Pair {
  Region a;
  Region b;
};

// Has the engine combine the pair by each operation, judges, and gives the last result; nothing when one of them was wrong.
using Visit = std::function<std::optional<Region>(const Pair&, const std::vector<ZBR_BOOLEAN_OPE>&)>;

struct InputClass {
  std::string name;
  double noise;  // how far the points of the drawing are from where they were meant to be
  int cost;      // one drawing stands for so many: long chains are drawn more seldom
  std::function<void(Random&, const Visit&)> draw;
};

// `faults`: a folder of pairs as text ("A", number of rings, for each ring the number of points and the points; the same for "B");
// its class is left out when the folder is not there.
std::vector<InputClass> InputClasses(const std::string& faults);
