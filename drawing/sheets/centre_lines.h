// Centre lines on paper.
#pragma once

#include <zbr-drawing/sheet.h>

#include <vector>

#include "drawing/sheets/marked_planes.h"

namespace zbr::drawing {

// Adds crosses and axes to the lines of views, as EdgeClass::kCentre, which reach some millimetres beyond what they are of. Hidden
// circles have some where hidden lines are shown: without these they would be of nothing. Where a
// plane that the view marks has its line, this stands for them: two chain lines on each other fill each other's gaps.
void AddCentreLines(Sheet& sheet, const std::vector<MarkedPlane>& planes);

}  // namespace zbr::drawing
