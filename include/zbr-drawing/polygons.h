// Polygons of files as triangles.
#pragma once

#include <zbr-drawing/mesh.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Adds the polygon's triangles to the mesh; the corners are places of its points. What is too crooked to be taken apart, or without
// area, becomes a fan.
void AddPolygon(Mesh& mesh, const std::vector<std::uint32_t>& corners);

}  // namespace zbr::drawing
