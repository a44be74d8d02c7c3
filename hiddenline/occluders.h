// What a shell keeps for the driver's searches.
#pragma once

#include <zbr/hidden_line.h>

#include "core/sharing.h"
#include "hiddenline/extents.h"
#include "hiddenline/occluder_tree.h"

struct ZBR_HL_SHELL::Occluders {
  // Of a checked shell, whose triangles that are not invalid lie within the bounds; a place outside `pickable` picks nothing.
  Occluders(const ZBR_HL_SHELL& shell, const zbr::Extents& bounds, const zbr::Box& pickable, const zbr::Sharing& sharing);

  zbr::OccluderTree tree;  // over the positions of the triangles that are not invalid
  // No two triangles share an idx, so that only the triangles named in `adj` can be neighbours.
  bool uniqueIds;
  zbr::Box pickable;  // the shell's box and a tolerance around it
  // All of the triangles are of the size of a drawing: no coordinate of theirs is beyond kLargestUsual.
  bool usualSize;
};
