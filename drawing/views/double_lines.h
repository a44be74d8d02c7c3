// Visible lines that two bodies have in common.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/scene.h>

#include <vector>

#include "drawing/views/drawn_segments.h"

namespace zbr::drawing {

// Of lines of one class that lie within the scene's contact of each other, in the view, those of the earlier shell stay; of chords
// of circles those of the rim of which more is drawn, then of the nearer one. Lines of one shell are left alone. n log n in the
// lines, and linear in what comes near each other.
void LeaveOutVisibleDoubles(const DrawnSegments& drawn, unsigned threads, std::vector<DrawnSegment>& visible);

}  // namespace zbr::drawing
