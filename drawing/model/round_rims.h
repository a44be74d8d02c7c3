// Rims at which a surface bends by just the angle of creases, as at chamfers of 30 degrees.
#pragma once

#include <zbr-drawing/model.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Bends, as parts of the angle of creases, between which it is chance whether an edge is one: facets that stand for a cone bend by
// a little more or less than it does.
inline constexpr double kLeastOfRim = 0.8;
inline constexpr double kMostOfRim = 1.25;

// Lets the whole of a round rim show where a part of it bends by the angle, or very nearly; for angles up to 60 degrees. `nearly`
// are the edges, numbered through all shells, that do not show and bend by kLeastOfRim or more. Linear in these and the flat faces
// that they end.
void CompleteRims(Model& model, double creaseDegrees, const std::vector<std::uint32_t>& nearly);

}  // namespace zbr::drawing
