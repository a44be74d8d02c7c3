// Chains of drawn edges that go on as rims which are not drawn.
#pragma once

#include <zbr-drawing/model.h>

#include <cstddef>
#include <vector>

#include "drawing/curves/edge_chains.h"

namespace zbr::drawing {

// Goes on from the ends of open chains that lie in a plane, along edges of the shell in that plane at which its surface bends and
// that are in none of the chains; until such a chain is closed, or makes a corner.
void GoOnInPlane(const Model& model, std::size_t shell, std::vector<EdgeChain>& chains);

}  // namespace zbr::drawing
