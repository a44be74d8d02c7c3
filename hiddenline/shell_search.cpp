#include "hiddenline/shell_search.h"

#include <algorithm>

#include "core/constants.h"
#include "core/small_sort.h"

namespace zbr {
namespace {

// Up to so many are sorted by insertion, which allocates nothing.
constexpr std::size_t kFew = 24;

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
  shells_.reserve(used.size());
  for (const std::uint32_t i : SpatialOrder(centres)) shells_.push_back(used[i]);
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
  const auto isHigher = [](const ZBR_HL_SHELL* p, const ZBR_HL_SHELL* q) { return p->max_z > q->max_z; };
  if (found.size() <= kFew) {
    SmallSort(found.begin(), found.end(), isHigher);
  } else {
    std::stable_sort(found.begin(), found.end(), isHigher);
  }
}

}  // namespace zbr
