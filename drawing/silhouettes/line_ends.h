// Silhouettes that go on where others end.
#pragma once

#include <zbr-drawing/view_lines.h>

#include <vector>

namespace zbr::drawing {

// Adds visible silhouettes to a view. Their points are in units of the scene. One that begins where a single other one of its shell
// ends, to the bit, goes on with it as one line. n log n.
void AddToEnds(ViewLines& view, std::vector<Line> lines, double scale);

}  // namespace zbr::drawing
