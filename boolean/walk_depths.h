// What lies around the rings of the walk for regions.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "boolean/walk_rings.h"
#include "boolean/walk_search.h"
#include "core/box_tree.h"

namespace zbr {

class WalkDepths {
 public:
  // Turns isReversed of the rings that lie in others of their operand, and sets isInside of those that are not crossed. False when
  // rings are nested so deep that this is not worth while. After the search, for rings in general position.
  bool Run(WalkRings& rings, const WalkSearch& search);
  // Large memory is given back.
  void Clear();

 private:
  void LocateAll();
  void AddLargeRings(const WalkSearch& search);
  bool Locate(const IndexedRing& indexed, std::span<const std::uint32_t> around);
  bool IsAround(std::uint32_t place, const ZBR_PT& p) const;
  bool IsOdd(int level, std::uint32_t node, const ZBR_PT& p) const;

  WalkRings* rings_ = nullptr;
  std::vector<std::uint32_t> firstLeaf_;  // of the rings in the order in which the index has them, and the end
  std::vector<std::uint32_t> large_;      // rings of several leaves, by their places in that order
  BoxTree boxes_;                         // of these
  BoxTree points_;                        // the first of each ring, in that order
  std::size_t testsLeft_ = 0;
};

}  // namespace zbr
