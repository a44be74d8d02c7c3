// Edges at which one smooth face of a body goes over into another.
#pragma once

#include <zbr-drawing/model.h>

namespace zbr::drawing {

// Notes the edges that are tangent. Needs normals, and to know which edges show.
void NoteTangents(Model& model, unsigned threads);

}  // namespace zbr::drawing
