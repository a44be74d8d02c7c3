// Rims of one wall in views along it.
#pragma once

#include <vector>

#include "drawing/views/drawn_segments.h"

namespace zbr::drawing {

// Of the rims of a round wall seen along its axis one is left in each direction: visible ones before hidden ones, of these that of
// which most is drawn. n log n in their segments.
void LeaveOutRimsOfOneWall(const DrawnSegments& drawn, std::vector<DrawnSegment>& visible, std::vector<DrawnSegment>& hidden);

}  // namespace zbr::drawing
