// The normals of the smooth surface that facets stand for.
#pragma once

#include <zbr-drawing/model.h>

#include <array>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Corners of triangles of a shell that are smooth with each other share a normal; across edges at which the surface bends they do
// not.
struct SmoothNormals {
  std::vector<std::array<std::uint32_t, 3>> ofCorner;  // place in `all`
  std::vector<ZBR_PT3> all;                            // not of length 1
};

// The mean of the triangles' normals around a point, by their angles there.
SmoothNormals SmoothNormalsOf(const Model& model, std::size_t shell);

// Whether the surface goes on smoothly across the edge: it shows no crease, or on a rough surface none that is sharp.
bool IsSmoothAcross(const Model& model, std::size_t shell, const ZBR_ZBREPE& edge);

}  // namespace zbr::drawing
