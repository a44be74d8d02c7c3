// Pieces of lines too short to say anything.
#pragma once

#include <zbr-drawing/view_lines.h>

namespace zbr::drawing {

// Drops the visible creases and silhouettes of a rough surface that are shorter than a hundredth of the view, unless they bridge a
// gap between longer lines.
void DropCrumbs(ViewLines& view);

}  // namespace zbr::drawing
