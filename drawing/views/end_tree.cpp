#include "drawing/views/end_tree.h"

#include <limits>
#include <utility>

namespace zbr::drawing {

EndTree::EndTree(std::vector<End> ends) : ends_(std::move(ends)) {
  float largest = 0.0F;
  for (const End& end : ends_) largest = std::max({largest, std::abs(end.x), std::abs(end.y)});
  rounding_ = 2.0 * largest * static_cast<double>(std::numeric_limits<float>::epsilon());
  nodes_.reserve(2 * (2 * ends_.size() / kLeaf + 1));
  if (!ends_.empty()) Build(0, static_cast<std::uint32_t>(ends_.size()));
}

// Halves across the longer side of the box: as deep as the number of ends has binary digits.
void EndTree::Build(std::uint32_t begin, std::uint32_t end) {
  Node node{
      {ends_[begin].x, ends_[begin].y}, {ends_[begin].x, ends_[begin].y}, ends_[begin].shell, ends_[begin].shell, begin, end, 0};
  for (std::uint32_t k = begin + 1; k < end; ++k) {
    const End& e = ends_[k];
    node.low[0] = std::min(node.low[0], e.x);
    node.low[1] = std::min(node.low[1], e.y);
    node.high[0] = std::max(node.high[0], e.x);
    node.high[1] = std::max(node.high[1], e.y);
    node.leastShell = std::min(node.leastShell, e.shell);
    node.mostShell = std::max(node.mostShell, e.shell);
  }
  const std::size_t at = nodes_.size();
  nodes_.push_back(node);
  if (end - begin <= kLeaf) return;
  const std::uint32_t middle = begin + (end - begin) / 2;
  const bool isWide = node.high[0] - node.low[0] > node.high[1] - node.low[1];
  std::nth_element(ends_.begin() + begin, ends_.begin() + middle, ends_.begin() + end,
                   [&](const End& a, const End& b) { return isWide ? a.x < b.x : a.y < b.y; });
  Build(begin, middle);
  nodes_[at].right = static_cast<std::uint32_t>(nodes_.size());
  Build(middle, end);
}

}  // namespace zbr::drawing
