// What lies around the rings of the walk for regions.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "boolean/walk_rings.h"
#include "core/box_tree.h"

namespace zbr {

class WalkDepths {
 public:
  // Sets isReversed of all rings, and isInside of those that are not crossed. False when rings are nested so deep that this is not
  // worth while. For rings in general position.
  bool Run(WalkRings& rings);

 private:
  void FillTrees();
  bool Locate(std::uint32_t place, std::span<const std::uint32_t> around);
  bool IsAround(std::uint32_t place, const ZBR_PT& p) const;
  bool IsOdd(int level, std::uint32_t node, const ZBR_PT& p) const;
  bool IsLeafOdd(std::uint32_t leaf, const ZBR_PT& p) const;

  WalkRings* rings_ = nullptr;
  BoxTree points_;                        // the first of each ring, in the order in which the index has the rings
  BoxTree boxes_;                         // of the rings in that order
  std::vector<std::uint32_t> firstLeaf_;  // of the rings in that order, and the end
  std::size_t testsLeft_ = 0;
};

}  // namespace zbr
