// On which side of a line a point lies, never in doubt.
#pragma once

#include <zbr/planar.h>

namespace zbr {

// The sign of the area of the triangle a, b, c: positive when c lies left of a->b. From doubles where their rounding can't change
// it, else from the exact sum of the products (Shewchuk 1997). Exact unless a product of two coordinates overflows or loses digits
// by being tiny, below 1e-250 or so.
int ExactSideOf(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& c);

}  // namespace zbr
