// Scenes as an eye sees them.
#pragma once

#include <zbr-drawing/scene.h>

#include <vector>

namespace zbr::drawing {

// Takes away what is behind the eye and, with a field of view, beside it, and scales the scene to its usual size. An eye within the
// model's box has a field of view in any case. Fails when nothing is left.
void FitPicture(const Model& model, const std::vector<IntersectionLine>& lines, Scene& scene);

}  // namespace zbr::drawing
