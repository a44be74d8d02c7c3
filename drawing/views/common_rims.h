// Rims that bodies have in common.
#pragma once

#include <vector>

#include "drawing/views/drawn_segments.h"

namespace zbr::drawing {

// Where bodies have a rim in common and some of what is drawn of it is one body's and some another's, all of it becomes that of the
// body of which most is drawn, as far as it has chords there. Linear but for the chords of such rims, which are sorted.
void GiveRimsToOneBody(const Model& model, const DrawnSegments& drawn, std::vector<DrawnSegment>& segments);

}  // namespace zbr::drawing
