// Boundaries of hatches that fill what other contours bound. Both taken as contours would cancel each other out; and comparing them
// does not help, as a hatch may run along parts of longer lines, or be a coarse polygon in a circle. So a boundary is taken where
// nothing else is drawn.
#include <zbr-drawing/contours.h>

#include <algorithm>
#include <cstddef>
#include <utility>
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

// Boxes, halved again and again by their middles in x and in y.
class Boxes {
 public:
  explicit Boxes(std::vector<Extent> boxes) : boxes_(std::move(boxes)), nodes_(2 * boxes_.size()) {
    if (!boxes_.empty()) Build(0, boxes_.size(), true);
  }

  bool HasOverlap(const Extent& box) const { return !boxes_.empty() && HasOverlap(box, 0, boxes_.size()); }

 private:
  // The node of a range is that of its middle, which no other range has; for ranges of one box the box itself is enough.
  Extent& NodeOf(std::size_t first, std::size_t end) { return nodes_[first + end]; }

  Extent Build(std::size_t first, std::size_t end, bool byX) {
    if (end - first == 1) return boxes_[first];
    const auto at = [&](std::size_t i) { return boxes_.begin() + static_cast<std::ptrdiff_t>(i); };
    const std::size_t middle = first + (end - first) / 2;
    std::nth_element(at(first), at(middle), at(end),
                     [&](const Extent& a, const Extent& b) { return byX ? a.xmin < b.xmin : a.ymin < b.ymin; });
    Extent all = Build(first, middle, !byX);
    all.Add(Build(middle, end, !byX));
    return NodeOf(first, end) = all;
  }

  bool HasOverlap(const Extent& box, std::size_t first, std::size_t end) const {
    if (end - first == 1) return Overlap(boxes_[first], box);
    if (!Overlap(nodes_[first + end], box)) return false;
    const std::size_t middle = first + (end - first) / 2;
    return HasOverlap(box, first, middle) || HasOverlap(box, middle, end);
  }

  std::vector<Extent> boxes_, nodes_;
};

}  // namespace

std::size_t DropFillings(std::vector<Path>& paths) {
  if (std::none_of(paths.begin(), paths.end(), [](const Path& path) { return path.fills; })) return 0;
  std::vector<Extent> drawn;
  for (const Path& path : paths) {
    if (!path.fills) drawn.push_back(ExtentOfPath(path));
  }
  const Boxes boxes(std::move(drawn));
  return std::erase_if(paths, [&](const Path& path) { return path.fills && boxes.HasOverlap(ExtentOfPath(path)); });
}

}  // namespace zbr::drawing
