// Where the eye of a perspective is.
#pragma once

#include <zbr-drawing/model.h>

namespace tool {

// Whether closed surfaces that face outwards have the point within. Linear.
bool IsWithinMaterial(const zbr::drawing::Model& model, const ZBR_PT3& p);

}  // namespace tool
