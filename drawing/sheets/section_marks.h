// What tells on a sheet where its sections are.
#pragma once

#include <zbr-drawing/sheet.h>

namespace zbr::drawing {

// In a view that sees a section's plane edge-on, the plane: a chain line with thick ends, arrows the way the section is looked at,
// letters; and its name above each section.
void AddSectionMarks(Sheet& sheet);

// Room that marks take around views, in millimetres.
inline constexpr double kSectionMarks = 15.0;

}  // namespace zbr::drawing
