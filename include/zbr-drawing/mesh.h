// Triangles as a file or a generator gives them.
#pragma once

#include <zbr/spatial.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Three edges of each triangle can be numbered with 32 bits.
inline constexpr std::size_t kMostMeshPoints = 700'000'000;

// Where the points and the triangles of one object of a mesh start.
struct MeshObject {
  std::uint32_t firstPoint = 0, firstTriangle = 0;
};

// Any number of triangles may share a point, and points may be repeated; nothing is promised about how the triangles connect.
// Coordinates are finite and not above 1e75 in size.
struct Mesh {
  std::vector<ZBR_PT3> points;
  std::vector<std::array<std::uint32_t, 3>> triangles;
  bool yUp = false;                 // the format says that y points up; most say nothing, and z is taken
  std::vector<MeshObject> objects;  // in increasing order, triangles use points of their own object only; none: all is one
};

// Whether a point is finite and small enough: products of four coordinates have to stay finite.
bool IsMeshCoordinate(const ZBR_PT3& p);

}  // namespace zbr::drawing
