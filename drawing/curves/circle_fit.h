// Circles through points of a chain, and how far points are from them.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr/spatial.h>

#include <cstddef>
#include <span>

namespace zbr::drawing {

// The circle through three points; a radius of 0 when they lie on a line.
Circle CircleThrough(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c);

// The circle through three points of an arc or a whole circle that are far from each other.
Circle RoughCircle(std::span<const ZBR_PT3> arc);

// The circle with the least sum of squared distances in the plane of the arc; a radius of 0 when there is none.
Circle FitCircle(std::span<const ZBR_PT3> arc);

// The distance of a point from the circle, the larger of that from its plane and that from its cylinder.
double DistanceTo(const Circle& circle, const ZBR_PT3& p);

// Of the chords from point to point.
struct ChordLengths {
  double shortest, longest;
};
ChordLengths ChordLengthsOf(std::span<const ZBR_PT3> arc);

// The largest distance of the points from the line through the first and the last, or from the first one where both are one.
double HeightOf(std::span<const ZBR_PT3> arc);

}  // namespace zbr::drawing
