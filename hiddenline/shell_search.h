// Finding, among many shells, those that can hide something.
#pragma once

#include <span>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "hiddenline/occluder_tree.h"

namespace zbr {

using ShellList = std::vector<const ZBR_HL_SHELL*>;

// A tree over shells that have triangles. The shells must stay in place, and their extents as they are.
class ShellSearch {
 public:
  explicit ShellSearch(std::span<const ZBR_HL_SHELL> shells);

  // Visits the shells whose boxes meet the given one, widened by kBoxMargin, and reach the height, roughly in the given order.
  // `visit` returns false to end the search.
  template <class Visit>
  void Search(const Box& box, double minZ, OccluderTree::Order order, Visit visit) const {
    tree_.Search(
        tree_.MakeQuery(box.Widened(kBoxMargin), minZ), [&](int place) { return visit(shells_[static_cast<std::size_t>(place)]); },
        order);
  }

 private:
  std::span<const ZBR_HL_SHELL> shells_;
  OccluderTree tree_;
};

}  // namespace zbr
