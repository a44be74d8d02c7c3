// Rings that touch themselves at a vertex.
#pragma once

#include <zbr-drawing/region.h>

namespace zbr::drawing {

// Takes rings that visit a vertex twice apart there, and nests the list again if there were any. The region stays the same; the
// combinations want rings that do not touch themselves, and the union of polygons that share a corner makes such rings.
void SplitPinches(LoopList& nested);

}  // namespace zbr::drawing
