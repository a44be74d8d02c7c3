// Points that a polyline does not need.
#pragma once

#include <vector>

#include <zbr/planar.h>

namespace zbr {

// Removes the points lying straight between their neighbours, within the thread's tolerance. The ends of an open line stay.
void StraightenOpen(std::vector<ZBR_PT>& line);

// The same for a line whose last point lies within eps of its first: the last point is replaced by an exact copy of the first,
// which may itself be removed beforehand.
void StraightenClosed(std::vector<ZBR_PT>& line);

}  // namespace zbr
