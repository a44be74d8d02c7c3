#include "hiddenline/occluders.h"

#include <algorithm>

namespace {

bool HasUniqueIds(const std::vector<std::pair<int, int>>& sortedByIdx) {
  const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
  return std::adjacent_find(sortedByIdx.begin(), sortedByIdx.end(), same) == sortedByIdx.end();
}

}  // namespace

ZBR_HL_SHELL::Occluders::Occluders(const ZBR_HL_SHELL& shell, std::span<const zbr::Extents> extents, const zbr::Box& pickableBox)
    : uniqueIds(HasUniqueIds(shell.id_map)), pickable(pickableBox) {
  std::vector<int> positions;
  positions.reserve(shell.count);
  for (unsigned i = 0; i < shell.count; ++i) {
    if (!shell.tris[i].IsTriInvalid()) positions.push_back(static_cast<int>(i));
  }
  tree.Build(extents, positions);
}
