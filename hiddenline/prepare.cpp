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

// Shells without triangles hide nothing and get no number.
void NumberInOrder(const Shells& shells) {
  int next =
      DrawIndices(static_cast<std::size_t>(std::count_if(shells.begin(), shells.end(), [](const auto* s) { return IsFresh(*s); })));
  std::vector<int> indices;
  for (const ZBR_HL_SHELL* shell : shells) indices.push_back(IsFresh(*shell) ? next++ : shell->index);
  std::sort(indices.begin(), indices.end());
  if (std::adjacent_find(indices.begin(), indices.end()) != indices.end()) {  // copies of shells have their indices
    next = DrawIndices(indices.size());
    for (int& index : indices) index = next++;
  }
  for (std::size_t i = 0; i < shells.size(); ++i) SetIndex(*shells[i], indices[i]);
}

}  // namespace

void ZBR_HiddenLine::Prepare(ZBR_HL_SHELL* shells, unsigned count) {
  Shells used;
  for (unsigned i = 0; i < count; ++i) {
    if (shells[i].count != 0) used.push_back(&shells[i]);
  }
  NumberInOrder(used);
  for (ZBR_HL_SHELL* shell : used) {
    if (!IsFresh(*shell)) continue;
    zbr::PrepareShell(*shell);
    shell->prepared = true;
  }
}
