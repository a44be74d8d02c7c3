// The circles of a model: which of its edges are chords of one circle, as at the rims of holes, bosses and fillets.
//
//   const Circles circles = FindCircles(model);
//   const std::uint32_t k = circles.ofEdge[model.edgeBegin[shell] + edge.GetIndex()];
//   if (k != kNoCircle) Dimension(circles.all[k].radius);
//
// Triangles hold a circle as a chain of chords. What counts as one: at least four edges that are drawn in every view, each a chord
// of at most 30 degrees and none far longer than most, so that hexagons and flats stay what they are; whose points lie in one plane
// and at one distance from a centre within the rounding of coordinates or a fiftieth of the distance between a chord and its arc;
// with few other lines starting in between; and which the chain leaves at once where it leaves it, as splines and spirals do not.
// Two or three edges, alike in length, are chords of a circle that is known from elsewhere, or an arc of their own where the edges
// before and behind them are its tangents.
#pragma once

#include <zbr-drawing/model.h>
#include <zbr/spatial.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

inline constexpr std::uint32_t kNoCircle = 0xffffffffU;

// In the coordinates of the model; the axis has length 1.
struct Circle {
  ZBR_PT3 centre, axis;
  double radius = 0.0;
};

// Edges of one circle in different places of the model share its record.
struct Circles {
  std::vector<Circle> all;
  std::vector<std::uint32_t> ofEdge;  // parallel to the model's edges: place in `all`, or kNoCircle
};

// Time and memory linear in the edges, but for chains that nearly are circles, which cost a logarithm more.
Circles FindCircles(const Model& model);

}  // namespace zbr::drawing
