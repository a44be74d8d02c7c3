// What must hold of the structures in this folder. A function gives null, or what is wrong.
#pragma once

#include "core/box_tree.h"

namespace zbr {

// Written so that a side that is not a number, which no box can be grown by, is no fault.
inline bool IsOutside(const Box& inner, const Box& outer) {
  return inner.xmin < outer.xmin || inner.ymin < outer.ymin || inner.xmax > outer.xmax || inner.ymax > outer.ymax;
}

inline const char* BoxTreeFault(const BoxTree& tree) {
  if (!tree.empty() && tree.Count(tree.TopLevel()) != 1) return "a box tree has one root";
  for (int level = 0; level < tree.TopLevel(); ++level) {
    if ((tree.Count(level) + BoxTree::kFanOut - 1) / BoxTree::kFanOut != tree.Count(level + 1)) return "a level lacks boxes";
    for (std::uint32_t i = 0; i < tree.Count(level); ++i) {
      if (IsOutside(tree.Level(level)[i], tree.Level(level + 1)[i / BoxTree::kFanOut])) return "a box sticks out of its parent";
    }
  }
  return nullptr;
}

}  // namespace zbr
