// Numbering shells and preparing them.
//
// A line that two shells have in common is drawn by the one with the smaller index, so indices must not depend on which shell was
// prepared first: they ascend with the position in the caller's array. New ones come from the process-wide counter, in one block.
// Indices that shells already have are not lost (others may have been compared with them) but sorted.
#include <algorithm>
#include <vector>

#include <zbr/hidden_line.h>

#include "hiddenline/driver.h"

namespace {

using Shells = std::vector<ZBR_HL_SHELL*>;

bool IsFresh(const ZBR_HL_SHELL& shell) {
  return !shell.done && !shell.prepared;
}

int DrawIndices(std::size_t count) {
  return ZBR_HiddenLine::max_shell_index.fetch_add(static_cast<int>(count));
}

void SetIndex(ZBR_HL_SHELL& shell, int index) {
  if (shell.index == index) return;
  shell.index = index;
  if (IsFresh(shell)) return;  // the triangles get it when they are checked
  for (unsigned i = 0; i < shell.count; ++i) shell.tris[i].shell_idx = index;
}

}  // namespace

void zbr::NumberInOrder(ZBR_HL_SHELL* shells, unsigned count) {
  Shells used;  // those without triangles hide nothing and get no number
  for (unsigned i = 0; i < count; ++i) {
    if (shells[i].count != 0) used.push_back(&shells[i]);
  }
  const auto fresh = std::count_if(used.begin(), used.end(), [](const ZBR_HL_SHELL* s) { return IsFresh(*s); });
  int next = DrawIndices(static_cast<std::size_t>(fresh));
  std::vector<int> indices;
  for (const ZBR_HL_SHELL* shell : used) indices.push_back(IsFresh(*shell) ? next++ : shell->index);
  std::sort(indices.begin(), indices.end());
  if (std::adjacent_find(indices.begin(), indices.end()) != indices.end()) {  // copies of shells have their indices
    next = DrawIndices(indices.size());
    for (int& index : indices) index = next++;
  }
  for (std::size_t i = 0; i < used.size(); ++i) SetIndex(*used[i], indices[i]);
}

void ZBR_HiddenLine::Prepare(ZBR_HL_SHELL* shells, unsigned count) {
  zbr::NumberInOrder(shells, count);
  for (unsigned i = 0; i < count; ++i) {
    if (shells[i].count == 0 || !IsFresh(shells[i])) continue;
    zbr::PrepareWhole(shells[i]);
    shells[i].prepared = true;
  }
}
