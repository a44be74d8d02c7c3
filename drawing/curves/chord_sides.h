// The sides of a model's triangles that are chords of circles, with their ends: all that lines along circles need of the model's
// records, which may be given back then.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/model.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Mostly few sides are: they are sorted, with the place of the first one in each block of numbers.
class ChordSides {
 public:
  struct Side {
    std::uint32_t number;  // three times that of the triangle through all shells, and the edge
    std::uint32_t circle;
    ZBR_PT3 start, end;
  };

  ChordSides() = default;
  // `circles` may be null.
  ChordSides(const Model& model, const Circles* circles, unsigned threads);

  // Null where the edge is no chord.
  const Side* Find(std::size_t triangle, std::size_t edge) const;

 private:
  static constexpr std::size_t kBlock = 64;

  std::vector<Side> sides_;
  std::vector<std::uint32_t> begins_;  // of blocks, and the end
};

}  // namespace zbr::drawing
