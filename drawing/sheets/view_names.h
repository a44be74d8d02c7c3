// Names of views on paper.
#pragma once

#include <zbr-drawing/sheet.h>

#include "drawing/sheets/lettering.h"

namespace zbr::drawing {

// Adds the names of sections above them, and those of views whose place does not tell what they show below them, farther out where
// marks or centre lines are in the way. When marks, centre lines and the frame are there.
void AddViewNames(Sheet& sheet);

// What drawings stay within: the frame, or the paper where there is none.
PaperBox BoundsOf(const Sheet& sheet);

}  // namespace zbr::drawing
