// Splines as DXF files give them: by control points or by points that they pass through.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>

#include <memory>
#include <optional>
#include <vector>

namespace zbr::formats {

// The cubic spline through these points that is smooth up to the second derivative, with parameters in the ratio of the distances
// of points; with directions at its ends where they are given, else ending without curvature; all round where it is to be so and
// ends at its first point. As pieces that share their ends: knots are threefold. Needs two points that differ.
Spline SplineThrough(std::vector<ZBR_PT> points, const std::optional<ZBR_PT>& startDirection,
                     const std::optional<ZBR_PT>& endDirection, bool isSmoothAllRound);

// The whole of a valid spline as a path, closed where it ends where it starts.
Path SplinePath(const Spline& spline);

}  // namespace zbr::formats
