// Finding, among many shells, those that can hide something.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/box_tree.h"

namespace zbr {

using ShellList = std::vector<const ZBR_HL_SHELL*>;

// A box hierarchy over shells that have triangles, in spatial order. The shells must stay in place, and their extents as they are.
class ShellSearch {
 public:
  explicit ShellSearch(std::span<const ZBR_HL_SHELL> shells);

  // Replaces `found` by the shells whose boxes meet the given one, widened by kBoxMargin, and reach the height; highest first,
  // since what is nearest the viewer hides the most. Of equal height the one that comes first in space. `ranks` is scratch.
  void Find(const Box& box, double minZ, std::vector<std::uint32_t>& ranks, ShellList& found) const;

 private:
  ShellList byHeight_;
  std::vector<std::uint32_t> rank_;  // of the tree's leaves: their places by height
  BoxTree tree_;
};

}  // namespace zbr
