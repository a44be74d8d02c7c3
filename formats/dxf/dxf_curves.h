// Arcs as polylines of DXF files give them.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>

namespace zbr::formats {

// The arc from p to q whose bulge is the tangent of a quarter of its angle, positive counter-clockwise and not 0.
Curve BulgeArc(const ZBR_PT& p, const ZBR_PT& q, double bulge);

}  // namespace zbr::formats
