#include "hiddenline/occluders.h"

#include <algorithm>

namespace {

bool HasUniqueIds(const std::vector<std::pair<int, int>>& sortedByIdx) {
  const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
  return std::adjacent_find(sortedByIdx.begin(), sortedByIdx.end(), same) == sortedByIdx.end();
}

}  // namespace

std::vector<zbr::Box> zbr::BoxesOf(const ZBR_HL_SHELL& shell) {
  std::vector<Box> boxes(shell.count);
  for (unsigned i = 0; i < shell.count; ++i) boxes[i] = BoxOf(shell.tris[i]);
  return boxes;
}

ZBR_HL_SHELL::Occluders::Occluders(const ZBR_HL_SHELL& shell) : uniqueIds(HasUniqueIds(shell.id_map)) {
  std::vector<zbr::OccluderTree::Item> items;
  items.reserve(shell.count);
  for (unsigned i = 0; i < shell.count; ++i) {
    const ZBR_HL_TRI& t = shell.tris[i];
    if (!t.IsTriInvalid()) items.push_back({zbr::BoxOf(t), t.min_z, t.max_z, static_cast<int>(i)});
  }
  tree.Build(items);
}
