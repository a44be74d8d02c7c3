// The circles of a model as a view shows them: circles, ellipses or, seen edge-on, lines.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/view_lines.h>

#include <optional>
#include <vector>

#include "drawing/curves/chord_sides.h"
#include "drawing/views/chains.h"

namespace zbr::drawing {

class SeenCircles {
 public:
  // Refers to all three; `circles` may be null.
  SeenCircles(const Model& model, const Scene& scene, const Circles* circles);

  // Tells the segment, a part of a side in the drawing, its circle and its angles there.
  void Locate(const ChordSides::Side& side, EdgeSegment& segment) const;

  // Centre and half axes; the rest of the record is empty.
  CircleRun Curve(std::uint32_t circle) const;

 private:
  // The half axes in the drawing and, in parallel views, in space. None are needed for circles seen edge-on.
  struct Seen {
    bool isCurve = false;
    ZBR_PT3 x, y;
    ZBR_PT centre, u, v;
  };
  Seen Look(const Circle& circle) const;
  Seen LookFromEye(const Circle& circle) const;

  const Model& model_;
  const Scene& scene_;
  const Circles* circles_;
  std::vector<Seen> seen_;  // parallel to the circles
};

}  // namespace zbr::drawing
