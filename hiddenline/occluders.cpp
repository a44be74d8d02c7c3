#include "hiddenline/occluders.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/constants.h"

namespace {

bool HasUniqueIds(const std::vector<std::pair<int, int>>& sortedByIdx) {
  const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
  return std::adjacent_find(sortedByIdx.begin(), sortedByIdx.end(), same) == sortedByIdx.end();
}

bool IsOfUsualSize(const zbr::Extents& e) {
  const auto isUsual = [](double low, double high) { return -zbr::kLargestUsual <= low && high <= zbr::kLargestUsual; };
  return isUsual(e.box.xmin, e.box.xmax) && isUsual(e.box.ymin, e.box.ymax) && isUsual(e.minZ, e.maxZ);
}

}  // namespace

ZBR_HL_SHELL::Occluders::Occluders(const ZBR_HL_SHELL& shell, const zbr::Extents& bounds, const zbr::Box& pickableBox,
                                   const zbr::Sharing& sharing)
    : uniqueIds(HasUniqueIds(shell.id_map)), pickable(pickableBox), usualSize(IsOfUsualSize(bounds)) {
  tree.Build({shell.tris, shell.count}, bounds, sharing);
}
