// From edges that may be tangent to the lines that they make.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {

// Whether a line that ends at an edge may go on along the next one.
using MayGoOn = std::function<bool(std::uint32_t edge, std::uint32_t next)>;

// The edges that make lines, which go on or end at others, and those that fill the lines' gaps. Lines with a loose end are no
// shorter than `least`.
std::vector<std::uint32_t> ConnectedLines(const Connectivity& mesh, std::vector<std::uint32_t> found, double least,
                                          const MayGoOn& mayGoOn);

}  // namespace zbr::drawing
