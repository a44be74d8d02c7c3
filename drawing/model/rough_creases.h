// The creases of scans.
#pragma once

#include <zbr-drawing/model.h>

namespace zbr::drawing {

// Whether many creases end where no other line goes on: the roughness of a scanned surface bends by more than the angle of creases
// here and there.
bool AreCreasesRough(const Model& model, unsigned threads);

// Shows of a rough model's creases those that are followed for some way. Needs normals, and to know which edges show.
void TidyRoughCreases(Model& model, double creaseDegrees);

}  // namespace zbr::drawing
