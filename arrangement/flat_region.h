// Regions as flat arrays, and where their edges come from.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/rings.h"

namespace zbr {

// A piece of an input edge that a result edge runs along. Parameters are along the input edge.
struct FlatSource {
  std::uint32_t edge;  // of the input, counted through all rings
  double t0;
  double t1;
};

// Polygons: an outer ring, counter-clockwise, then its holes, clockwise. A list of ends names, for each item, the first index
// behind it in the list below.
struct FlatRegion {
  std::vector<ZBR_PT> points;
  std::vector<std::uint32_t> ringEnds;     // in `points`
  std::vector<std::uint32_t> polygonEnds;  // in `ringEnds`
  std::vector<FlatSource> sources;         // of the edges, when asked for
  std::vector<std::uint32_t> sourceEnds;   // by edge, which starts at the point of the same number

  RingSpan Ring(std::size_t i) const {
    const std::uint32_t begin = i == 0 ? 0 : ringEnds[i - 1];
    return std::span(points).subspan(begin, ringEnds[i] - begin);
  }
  std::vector<RingSpan> Rings() const {
    std::vector<RingSpan> rings;
    for (std::size_t i = 0; i < ringEnds.size(); ++i) rings.push_back(Ring(i));
    return rings;
  }
};

}  // namespace zbr
