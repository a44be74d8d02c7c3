// The contour of a body, closed where smooth silhouettes, or crumbs that were dropped, leave it open.
#pragma once

#include <zbr-drawing/scene.h>
#include <zbr-drawing/view_lines.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Twice the area over the longest side, of a triangle and its neighbours: beside the silhouette there may be slivers.
double WidthAround(const Scene& scene, const Model& model, std::uint32_t t);

// Both sides of all that a scene has along edges, by their triangles there.
std::vector<EdgeRef> SilhouetteEdges(const Scene& scene);

// `edges`, by their triangles in the scene, are silhouettes of the facets, each named by both its triangles or one. Adds what of
// them parts the model from the empty paper and has no visible line beside it. Shells must have been prepared.
void CloseContours(const Model& model, const Scene& scene, const std::vector<EdgeRef>& edges, ViewLines& view);

}  // namespace zbr::drawing
