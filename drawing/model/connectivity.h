// The triangles of a model as plain arrays, for what walks over all of them.
#pragma once

#include <zbr-drawing/model.h>

#include <array>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Points, triangles and edges are numbered through all shells.
struct Connectivity {
  static constexpr std::uint32_t kNone = 0xffffffffU;

  std::vector<ZBR_PT3> points;
  std::vector<std::array<std::uint32_t, 3>> corners;  // of triangles
  std::vector<std::array<std::uint32_t, 3>> edges;    // of triangles; edge i runs from corner i to the next
  std::vector<std::array<std::uint32_t, 2>> sides;    // of edges: the triangles, the second kNone at borders and junctions
  std::vector<std::uint8_t> shows;                    // of edges: drawn in every view

  std::uint32_t Across(std::uint32_t edge, std::uint32_t triangle) const {
    return sides[edge][0] == triangle ? sides[edge][1] : sides[edge][1] == triangle ? sides[edge][0] : kNone;
  }
};

Connectivity ConnectivityOf(const Model& model, unsigned threads);

}  // namespace zbr::drawing
