// Walls along circles, in views along their axes.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/model.h>
#include <zbr-drawing/view.h>

#include <cstdint>
#include <vector>

#include "drawing/curves/chord_sides.h"

namespace zbr::drawing {

struct RoundWalls {
  static constexpr std::uint32_t kNone = 0xffffffffU;

  ChordSides sides;                   // those that lie on a wall and are no chords of its rims, as chords of one, in its plane
  std::vector<std::uint32_t> ofRims;  // by circle the wall that it is a rim of; empty if the view is along no wall
};

// Linear in the facets of the walls that the view is along.
RoundWalls FindRoundWalls(const Model& model, const Circles& circles, const ChordSides& sides, const View& view);

}  // namespace zbr::drawing
