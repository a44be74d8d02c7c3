#include "hiddenline/shell_search.h"

#include "hiddenline/extents.h"

namespace zbr {

ShellSearch::ShellSearch(std::span<const ZBR_HL_SHELL> shells) : shells_(shells) {
  std::vector<Extents> extents(shells.size());
  for (std::size_t i = 0; i < shells.size(); ++i) {
    const ZBR_HL_SHELL& s = shells[i];
    const Extents e{{s.min_x, s.min_y, s.max_x, s.max_y}, s.min_z, s.max_z};
    if (s.count != 0 && IsUsable(e)) extents[i] = e;
  }
  tree_.Build(extents);
}

}  // namespace zbr
