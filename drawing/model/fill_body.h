// From a mesh's triangles to the shells of a model.
#pragma once

#include <zbr-drawing/model.h>

#include <cstdint>
#include <vector>

#include "drawing/model/records.h"

namespace zbr::drawing {

// A mesh's triangles on their way into the records: of distinct points, and then the ones that stay, in order of shells.
struct Gathered {
  std::vector<ZBR_PT3> points;
  std::vector<Corners> triangles;
  std::vector<std::uint32_t> source;
  std::vector<std::uint32_t> shell;  // numbers of those that the mesh names, if it does
};

// Fills body, notes but for tangents, source and the numbers that go with shells. Triangles that repeat others are left out and
// counted; so are points and junctions.
void FillBody(Gathered&& gathered, unsigned threads, Model& model);

}  // namespace zbr::drawing
