// The triangles of a model as plain arrays, for what walks over all of them.
#pragma once

#include <zbr-drawing/model.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "drawing/unfilled.h"

namespace zbr::drawing {

// Points, triangles and edges are numbered through all shells.
struct Connectivity {
  static constexpr std::uint32_t kNone = 0xffffffffU;

  std::vector<ZBR_PT3> points;
  std::vector<std::uint32_t> pointBegin;           // of shells; one more than shells
  Unfilled<std::array<std::uint32_t, 3>> corners;  // of triangles
  Unfilled<std::array<std::uint32_t, 3>> edges;    // of triangles; edge i runs from corner i to the next
  Unfilled<std::array<std::uint32_t, 2>> sides;    // of edges: the triangles, the second kNone at borders and junctions
  Unfilled<std::uint8_t> shows;                    // of edges: drawn in every view

  std::uint32_t Across(std::uint32_t edge, std::uint32_t triangle) const {
    return sides[edge][0] == triangle ? sides[edge][1] : sides[edge][1] == triangle ? sides[edge][0] : kNone;
  }
};

Connectivity ConnectivityOf(const Model& model, unsigned threads);

// With the patches of all shells (patches.h); none where nobody has asked for them.
struct PatchedConnectivity {
  Connectivity mesh;
  std::vector<std::uint32_t> patches;
};

// Making it takes as long as a tenth of a model: what was made for tangent edges serves the search for intersections. It is taken
// rather than shared, so that its memory is free again when views are drawn. Several threads may ask for it.
struct KeptConnectivity {
  std::mutex mutex;
  std::optional<PatchedConnectivity> made;
};

// As long as the edges that show stay the same.
void KeepConnectivity(PatchedConnectivity&& made, Model& model);
// What is kept, which is not any more then, or made anew.
PatchedConnectivity TakeConnectivity(const Model& model, unsigned threads);
// Nobody will take it.
void DropConnectivity(const Model& model);

}  // namespace zbr::drawing
