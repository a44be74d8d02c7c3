// Outlines that cut faces of several bodies have in common.
#pragma once

#include <zbr-drawing/section.h>

#include <vector>

namespace zbr::drawing {

// Where cuts of different shells run within `contact` of each other those of the earlier shell stay. The lines have a triangle for
// each edge, before and after. About n log n.
void LeaveOutCommonCuts(std::vector<SectionLine>& lines, double contact);

}  // namespace zbr::drawing
