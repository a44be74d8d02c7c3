// The sides of a model's triangles that are chords of circles, with their ends: all that lines along circles need of the model's
// records, which may be given back then. With them the lines between bodies that are chords of a rim.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/model.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
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

  // A line in which bodies pass through each other that stands for a part of a rim: a pin that is divided otherwise than its bore
  // sticks out of it between the chords of the bore's rim.
  struct Crossing {
    std::array<std::uint32_t, 2> triangles{};  // as of the line (intersections.h)
    std::uint32_t shell = 0;                   // whose rim it is
    Side side;                                 // its number tells nothing
  };

  ChordSides() = default;
  // `circles` may be null.
  ChordSides(const Model& model, const Circles* circles, unsigned threads);

  // In any order; of those of one number the first counts.
  ChordSides(std::vector<Side> sides, std::size_t triangleCount);

  // Null where the edge is no chord.
  const Side* Find(std::size_t triangle, std::size_t edge) const;

  // Calls use(triangle, side) for all, in order.
  template <class Use>
  void ForEach(const Use& use) const {
    for (const Side& side : sides_) use(side.number / 3, side);
  }

  // In the order of their triangles, of which no two have more than one line in common.
  void SetCrossings(std::vector<Crossing> crossings) { crossings_ = std::move(crossings); }
  // Null where the line stands for itself.
  const Crossing* FindCrossing(const std::array<std::uint32_t, 2>& triangles) const;

 private:
  static constexpr std::size_t kBlock = 64;

  void FindBlocks(std::size_t triangleCount);

  std::vector<Side> sides_;
  std::vector<std::uint32_t> begins_;  // of blocks, and the end
  std::vector<Crossing> crossings_;
};

}  // namespace zbr::drawing
