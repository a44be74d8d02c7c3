// What tells on a sheet where its sections are.
#pragma once

#include <zbr-drawing/sheet.h>

#include <vector>

#include "drawing/sheets/marked_planes.h"

namespace zbr::drawing {

// In a view that sees a section's plane edge-on, the plane: a chain line with thick ends, arrows the way the section is looked at,
// letters.
void AddSectionMarks(Sheet& sheet, const std::vector<MarkedPlane>& planes);

// Room that marks take around views, in millimetres.
inline constexpr double kSectionMarks = 15.0;

// Gives sections whose letter is another's already a letter of their own. Fails when there are more sections than letters.
void NameSections(std::vector<ViewLines>& views);

}  // namespace zbr::drawing
