// Classes of input on which combinations of regions are measured. Drawings are about 100 large; a program draws the same pairs from
// the same seed.
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
  double noise;     // how far the points of the drawing are from where they were meant to be
  int cost;         // one drawing stands for so many: long chains are drawn more seldom
  bool needsFills;  // not for engines that know the even-odd rule only
  std::function<void(Random&, const Visit&)> draw;
};

// `cases`: a file of entries like tests/data/regressions.txt, which gives a class of its own; may be empty.
std::vector<InputClass> InputClasses(const std::string& cases);
