// Silhouettes of meshes that are no more than dots on paper.
#pragma once

#include <zbr-drawing/view_lines.h>

namespace zbr::drawing {

// The width of a line as a part of the view's size, on a sheet that the view fills.
inline constexpr double kLineWidth = 3e-3;

// Drops the visible silhouettes shorter than the width that end in nothing, and those that follow on such a one as long as together
// they are shorter than the width. Closed ones stay, and those that lead from line to line.
void DropSpecks(ViewLines& view, double width, unsigned threads = 1);

}  // namespace zbr::drawing
