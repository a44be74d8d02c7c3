// Triangles of a polygon with holes in the plane, and the way there from a polygon in space. AddPolygon (mesh.h) does it for
// polygons without holes.
#pragma once

#include <zbr/spatial.h>

#include <array>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Splits the polygon into triangles, counter-clockwise, with no other points than its own; of the ways to do so, the one that
// avoids sharp corners (a Delaunay triangulation of what the boundary allows).
//
// loops: places in `points`; the outer loop first, counter-clockwise, then its holes, clockwise. They do not touch. Points may lie
// straight between their neighbours. About quadratic in the number of points. Empty for loops that cross or turn the wrong way.
std::vector<std::array<std::uint32_t, 3>> Triangulate(const std::vector<ZBR_PT>& points,
                                                      const std::vector<std::vector<std::uint32_t>>& loops);

// Of a closed line that is about plane, by the right-hand rule; its length is twice the area.
ZBR_PT3 NormalOf(const std::vector<ZBR_PT3>& corners);

// The points as seen from where the normal points to, by leaving out the coordinate in which it is longest.
std::vector<ZBR_PT> Flattened(const std::vector<ZBR_PT3>& corners, const ZBR_PT3& normal);

}  // namespace zbr::drawing
