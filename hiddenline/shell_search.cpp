#include "hiddenline/shell_search.h"

#include <algorithm>
#include <numeric>

#include "core/constants.h"

namespace zbr {
namespace {

Box BoxOf(const ZBR_HL_SHELL& s) {
  return {s.min_x, s.min_y, s.max_x, s.max_y};
}

}  // namespace

ShellSearch::ShellSearch(std::span<const ZBR_HL_SHELL> shells) {
  ShellList used;
  std::vector<ZBR_PT> centres;
  for (const ZBR_HL_SHELL& s : shells) {
    if (s.count == 0) continue;
    used.push_back(&s);
    centres.push_back(BoxOf(s).Center());
  }
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  const std::span<Box> leaves = tree_.StartLeaves(used.size());
  for (std::size_t i = 0; i < used.size(); ++i) leaves[i] = BoxOf(*used[order[i]]);
  tree_.BuildInner();
  std::vector<std::uint32_t> byHeight(used.size());
  std::iota(byHeight.begin(), byHeight.end(), 0U);
  std::stable_sort(byHeight.begin(), byHeight.end(),
                   [&](std::uint32_t i, std::uint32_t j) { return used[order[i]]->max_z > used[order[j]]->max_z; });
  rank_.resize(used.size());
  byHeight_.reserve(used.size());
  for (const std::uint32_t leaf : byHeight) {
    rank_[leaf] = static_cast<std::uint32_t>(byHeight_.size());
    byHeight_.push_back(used[order[leaf]]);
  }
}

void ShellSearch::Find(const Box& box, double minZ, std::vector<std::uint32_t>& ranks, ShellList& found) const {
  ranks.clear();
  const Box wide = box.Widened(kBoxMargin);
  tree_.Walk([&wide](const Box& node, int, std::uint32_t) { return Overlap(wide, node); },
             [&](std::uint32_t leaf) {
               ranks.push_back(rank_[leaf]);
               return true;
             });
  std::sort(ranks.begin(), ranks.end());
  found.clear();
  for (const std::uint32_t rank : ranks) {
    if (!(byHeight_[rank]->max_z >= minZ)) break;
    found.push_back(byHeight_[rank]);
  }
}

}  // namespace zbr
