// Centre lines on paper.
#pragma once

#include <zbr-drawing/sheet.h>

namespace zbr::drawing {

// Adds crosses and axes to the lines of views, as EdgeClass::kCentre, which reach some millimetres beyond what they are of.
void AddCentreLines(Sheet& sheet);

}  // namespace zbr::drawing
