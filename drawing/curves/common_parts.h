// Which part of a drawn line another one draws already.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/scene.h>

#include <cstdint>

#include "drawing/curves/chord_sides.h"
#include "drawing/curves/parts_beside.h"

namespace zbr::drawing {

// A stretch of a straight line, or of a chord of a circle that is seen as a curve.
struct DrawnStretch {
  ZBR_SEG segment;  // in the scene
  std::uint32_t circle = kNoCircle;
  double height = 0.0;  // of the arc over the whole chord, in the scene
  double radius = 0.0;  // how far the ends of the whole chord are from the axis, in the scene
  ZBR_PT3 start, end;   // of the stretch, from the circle's centre, in the model

  DrawnStretch PartFrom(double from, double to) const;
};

// `segment` is part of the side, a chord of the circle. In parallel views.
DrawnStretch StretchOfChord(const Scene& scene, const Circle& circle, const ChordSides::Side& side, const ZBR_SEG& segment);

// What of a stretch is, within `contact`, the same line or the same curve as another one.
Part PartInCommon(const Scene& scene, const Circles* circles, double contact, const DrawnStretch& stretch,
                  const DrawnStretch& other);

}  // namespace zbr::drawing
