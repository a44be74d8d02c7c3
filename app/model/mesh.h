// Triangles as a file or a generator gives them.
#pragma once

#include <zbr/spatial.h>

#include <array>
#include <cstdint>
#include <vector>

namespace tool {

// Any number of triangles may share a point, and points may be repeated; nothing is promised about how the triangles connect.
// Coordinates are finite and not above 1e75 in size.
struct Mesh {
  std::vector<ZBR_PT3> points;
  std::vector<std::array<std::uint32_t, 3>> triangles;
  bool yUp = false;  // the format says that y points up; most say nothing, and z is taken
};

}  // namespace tool
