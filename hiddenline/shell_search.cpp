#include "hiddenline/shell_search.h"

#include <algorithm>

#include "core/constants.h"

namespace zbr {
namespace {

Box BoxOf(const ZBR_HL_SHELL& s) {
  return {s.min_x, s.min_y, s.max_x, s.max_y};
}

}  // namespace

ShellSearch::ShellSearch(std::span<const ZBR_HL_SHELL* const> shells) {
  std::vector<ZBR_PT> centres;
  centres.reserve(shells.size());
  for (const ZBR_HL_SHELL* s : shells) centres.push_back(BoxOf(*s).Center());
  shells_.reserve(shells.size());
  for (const std::uint32_t i : SpatialOrder(centres)) shells_.push_back(shells[i]);
  const std::span<Box> leaves = tree_.StartLeaves(shells_.size());
  for (std::size_t i = 0; i < shells_.size(); ++i) leaves[i] = BoxOf(*shells_[i]);
  tree_.BuildInner();
}

void ShellSearch::Find(const Box& box, double minZ, ShellList& found) const {
  found.clear();
  const Box wide = box.Widened(kBoxMargin);
  tree_.Walk([&wide](const Box& node, int, std::uint32_t) { return Overlap(wide, node); },
             [&](std::uint32_t leaf) {
               if (shells_[leaf]->max_z >= minZ) found.push_back(shells_[leaf]);
               return true;
             });
  std::sort(found.begin(), found.end(), [](const auto* p, const auto* q) { return p->max_z > q->max_z; });
}

}  // namespace zbr
