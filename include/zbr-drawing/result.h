// From the result of a combination to what is written of it.
#pragma once

#include <zbr-drawing/region.h>

#include <string>

namespace zbr::drawing {

// As MakeLayer, but fit for programs that want simple polygons: no ring without width, no spike, no repeated point, also where only
// the rounding to the drawing's coordinates makes one; rings that visit a vertex twice are taken apart there.
Layer MakeResult(const std::string& name, LoopList loops, const Frame& frame);

}  // namespace zbr::drawing
