// Building and searching the quadtree of a shell.
#pragma once

#include <span>

#include <zbr/hidden_line.h>

#include "core/box.h"
#include "hiddenline/extents.h"

namespace zbr {

// Files the triangles of root.tris, whose extents are given by position, in root and the children that it makes. Points the
// triangles' `quad` at their nodes.
void BuildQuad(ZBR_HL_QUAD& root, std::span<const Extents> extents, ZBR_HL_TRI* tris);

// The deepest node at or below `start` whose box holds `box` strictly inside; null when not even start's does.
const ZBR_HL_QUAD* FindQuad(const ZBR_HL_QUAD& start, const Box& box);

// Moves the boxes of a node and its subtree.
void OffsetQuad(ZBR_HL_QUAD& node, double dx, double dy);

}  // namespace zbr
