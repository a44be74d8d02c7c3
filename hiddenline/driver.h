// The driver's entry for one shell against many, and what its callers share with it.
#pragma once

#include <span>

#include <zbr/hidden_line.h>

namespace zbr {

// The position of the triangle with the given idx; -1 when there is none.
int PositionOf(const ZBR_HL_SHELL& shell, int idx);

// Extents, states and search structures of a shell whose index is set.
void PrepareShell(ZBR_HL_SHELL& shell);

// Removes from a's triangles what the occluders, each a processed shell, hide. a itself may be among them.
void HideShell(ZBR_HL_SHELL& a, std::span<const ZBR_HL_SHELL* const> occluders);

}  // namespace zbr
