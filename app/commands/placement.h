// Moves, turns and the like, as options give them.
#pragma once

#include <zbr-drawing/affine.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/libraries.h"

namespace tool {

// A drawing is mirrored, scaled, turned and then moved.
struct Placement {
  std::string move, mirror, about;  // "X,Y"; the axis whose coordinates are negated; "X,Y"
  double turn = 0.0;                // degrees
  double scale = 1.0;
  bool turns = false;  // mirroring, scaling or turning was asked for, be it by nothing
};

// Fails where a text is not what it should be.
Affine MapOf(const Placement& placement);

// The same for some operands, each value behind the letter of its operand: "B=10,5".
struct Placements {
  std::vector<std::string> move, mirror, about, turn, scale;
};

// A map for each operand that is named.
std::vector<std::optional<Affine>> MapsOf(const Placements& placements, std::size_t operands);

}  // namespace tool
