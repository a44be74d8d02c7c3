// Making a shell ready to hide and to be hidden.
#pragma once

#include <utility>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/sharing.h"
#include "hiddenline/extents.h"

namespace zbr {

// The shell's box: that of its triangles that can be computed with, as those that cannot must not spoil it. All 0 when there is
// none.
void SetExtents(ZBR_HL_SHELL& shell, const Extents& ofUsable);

// Extents, numbers, planes, states, search structure of a shell that has its index. Its edges have no intervals yet: whoever goes
// on gives them (GiveIntervals), since those of a whole model at once would take as much room as half its triangles. `draws`, if
// given, tells of each triangle whether there are any to give (1) or not (0).
void PrepareShell(ZBR_HL_SHELL& shell, const Sharing& sharing, std::vector<char>* draws = nullptr);

// The search structure alone, of a checked shell with extents.
void MakeOccluders(ZBR_HL_SHELL& shell, const Box& pickable);

}  // namespace zbr
