// Boundaries of hatches that fill what other contours bound. Both taken as contours would cancel each other out; and comparing them
// does not help, as a hatch may run along parts of longer lines, or be a coarse polygon in a circle. So a boundary is taken where
// nothing else is drawn.
#include <zbr-drawing/contours.h>

#include <algorithm>
#include <vector>

namespace zbr::drawing {
namespace {

Extent ExtentOfPath(const Path& path) {
  Drawing alone;
  alone.paths = {path};
  return ExtentOf(alone);
}

bool Overlap(const Extent& a, const Extent& b) {
  return a.xmin <= b.xmax && b.xmin <= a.xmax && a.ymin <= b.ymax && b.ymin <= a.ymax;
}

}  // namespace

std::size_t DropFillings(std::vector<Path>& paths) {
  if (std::none_of(paths.begin(), paths.end(), [](const Path& path) { return path.fills; })) return 0;
  std::vector<Extent> drawn;
  for (const Path& path : paths) {
    if (!path.fills) drawn.push_back(ExtentOfPath(path));
  }
  return std::erase_if(paths, [&](const Path& path) {
    if (!path.fills) return false;
    const Extent extent = ExtentOfPath(path);
    return std::any_of(drawn.begin(), drawn.end(), [&](const Extent& e) { return Overlap(e, extent); });
  });
}

}  // namespace zbr::drawing
