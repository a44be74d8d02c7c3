#include "hiddenline/occluders.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

bool HasUniqueIds(const std::vector<std::pair<int, int>>& sortedByIdx) {
  const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
  return std::adjacent_find(sortedByIdx.begin(), sortedByIdx.end(), same) == sortedByIdx.end();
}

}  // namespace

ZBR_HL_SHELL::Occluders::Occluders(const ZBR_HL_SHELL& shell, const zbr::Extents& bounds, const zbr::Box& pickableBox,
                                   const zbr::Sharing& sharing)
    : uniqueIds(HasUniqueIds(shell.id_map)), pickable(pickableBox) {
  tree.Build({shell.tris, shell.count}, bounds, sharing);
}
