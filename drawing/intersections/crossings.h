// Where the triangles of a model pass through each other.
#pragma once

#include <zbr-drawing/intersections.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "drawing/model/connectivity.h"

namespace zbr::drawing {

// Takes out lines from the place on; it is called by several threads at once.
using SettleLines = std::function<void(std::vector<IntersectionLine>& lines, std::size_t from)>;

// The lines that pairs of triangles have in common, but for those of one patch (patches.h). The same with any number of threads.
// The lines of two shells, or of one, are settled as soon as they are known: a hundred bodies in one place have millions of lines
// with each other, few of which are wanted. No curve has lines of other shells. Patches are those of all shells or, where they are
// not known, empty.
std::vector<IntersectionLine> FindCrossings(const Model& model, const Connectivity& mesh, unsigned threads,
                                            const SettleLines& settle, std::vector<std::uint32_t> patches = {});

}  // namespace zbr::drawing
