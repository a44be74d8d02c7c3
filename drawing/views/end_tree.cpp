#include "drawing/views/end_tree.h"

#include <limits>
#include <numeric>
#include <utility>

#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Nodes of a shell with that many ends, which are halved down to leaves.
std::size_t NodesFor(std::size_t ends, std::size_t leaf) {
  return ends <= leaf ? 1 : 1 + NodesFor(ends / 2, leaf) + NodesFor(ends - ends / 2, leaf);
}

}  // namespace

// How many nodes there are below a node, the numbers of ends tell, and so branches are built side by side, each in its place.
EndTree::EndTree(std::vector<End> ends, unsigned threads) : ends_(std::move(ends)) {
  float largest = 0.0F;
  for (const End& end : ends_) largest = std::max({largest, std::abs(end.x), std::abs(end.y)});
  rounding_ = 2.0 * largest * static_cast<double>(std::numeric_limits<float>::epsilon());
  const auto count = static_cast<std::uint32_t>(ends_.size());
  for (std::uint32_t begin = 0, end = 0; begin < count; begin = end) {
    while (end < count && ends_[end].shell == ends_[begin].shell) ++end;
    shells_.push_back(BoxOf(begin, end));
  }
  std::vector<std::uint32_t> order(shells_.size());
  std::iota(order.begin(), order.end(), 0U);
  if (order.empty()) return;
  nodes_.resize(NodesOf(order));
  std::vector<Branch> branches{{order, 0}};
  for (std::size_t k = 0; k < branches.size();) {
    if (branches[k].order.size() <= kRange) {
      ++k;
      continue;
    }
    const Branch whole = branches[k];
    const std::size_t half = whole.order.size() / 2, right = Split(whole.order, whole.at);
    branches[k] = {whole.order.first(half), whole.at + 1};
    branches.push_back({whole.order.subspan(half), right});
  }
  RunParallel(branches.size(), threads, [&](std::size_t k) { BuildShells(branches[k].order, branches[k].at); });
}

std::size_t EndTree::NodesOf(std::span<const std::uint32_t> order) const {
  std::size_t count = order.size() - 1;
  for (const std::uint32_t s : order) count += NodesFor(shells_[s].end - shells_[s].begin, kLeaf);
  return count;
}

EndTree::Node EndTree::BoxOf(std::uint32_t begin, std::uint32_t end) const {
  const End& first = ends_[begin];
  Node node{{first.x, first.y}, {first.x, first.y}, first.shell, first.shell, begin, end, 0};
  for (std::uint32_t k = begin + 1; k < end; ++k) {
    const End& e = ends_[k];
    node.low[0] = std::min(node.low[0], e.x);
    node.low[1] = std::min(node.low[1], e.y);
    node.high[0] = std::max(node.high[0], e.x);
    node.high[1] = std::max(node.high[1], e.y);
  }
  return node;
}

// Halves several shells across the longer side of their box, and fills in the node. Returns where the nodes of the second half
// begin.
std::size_t EndTree::Split(std::span<std::uint32_t> order, std::size_t at) {
  Node node = shells_[order.front()];
  for (const std::uint32_t s : order) {
    const Node& shell = shells_[s];
    for (int axis = 0; axis < 2; ++axis) {
      node.low[axis] = std::min(node.low[axis], shell.low[axis]);
      node.high[axis] = std::max(node.high[axis], shell.high[axis]);
    }
    node.leastShell = std::min(node.leastShell, shell.leastShell);
    node.mostShell = std::max(node.mostShell, shell.mostShell);
  }
  const int axis = node.high[0] - node.low[0] > node.high[1] - node.low[1] ? 0 : 1;
  const std::size_t half = order.size() / 2;
  std::nth_element(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(half), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) {
                     return shells_[a].low[axis] + shells_[a].high[axis] < shells_[b].low[axis] + shells_[b].high[axis];
                   });
  node.right = static_cast<std::uint32_t>(at + 1 + NodesOf(order.first(half)));
  nodes_[at] = node;
  return node.right;
}

void EndTree::BuildShells(std::span<std::uint32_t> order, std::size_t at) {
  if (order.size() == 1) {
    BuildEnds(shells_[order.front()], at);
    return;
  }
  const std::size_t half = order.size() / 2, right = Split(order, at);
  BuildShells(order.first(half), at + 1);
  BuildShells(order.subspan(half), right);
}

// Halves across the longer side of the box: as deep as the number of ends has binary digits. Returns where the next nodes begin.
std::size_t EndTree::BuildEnds(const Node& node, std::size_t at) {
  nodes_[at] = node;
  if (node.end - node.begin <= kLeaf) return at + 1;
  const std::uint32_t middle = node.begin + (node.end - node.begin) / 2;
  const bool isWide = node.high[0] - node.low[0] > node.high[1] - node.low[1];
  std::nth_element(ends_.begin() + node.begin, ends_.begin() + middle, ends_.begin() + node.end,
                   [&](const End& a, const End& b) { return isWide ? a.x < b.x : a.y < b.y; });
  const std::size_t right = BuildEnds(BoxOf(node.begin, middle), at + 1);
  nodes_[at].right = static_cast<std::uint32_t>(right);
  return BuildEnds(BoxOf(middle, node.end), right);
}

std::vector<std::uint32_t> EndTree::CrowdedShells(double reach, unsigned threads) const {
  std::vector<std::vector<std::uint32_t>> inRange(RangeCount(shells_.size()));
  RunInRanges(shells_.size(), threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    for (std::size_t s = begin; s < end; ++s) {
      if (HasOthers(shells_[s], reach + rounding_)) inRange[range].push_back(shells_[s].leastShell);
    }
  });
  std::vector<std::uint32_t> shells;
  for (const std::vector<std::uint32_t>& found : inRange) shells.insert(shells.end(), found.begin(), found.end());
  return shells;
}

// Whether ends of other shells lie in the box of one.
bool EndTree::HasOthers(const Node& box, double wide) const {
  const auto meets = [&](const float(&low)[2], const float(&high)[2]) {
    return low[0] <= box.high[0] + wide && high[0] >= box.low[0] - wide && low[1] <= box.high[1] + wide &&
           high[1] >= box.low[1] - wide;
  };
  const std::uint32_t shell = box.leastShell;
  bool found = false;
  Walk([&](const Node& node) { return !found && !node.IsOf(shell) && meets(node.low, node.high); },
       [&](const End& end) {
         const float at[2] = {end.x, end.y};
         found = found || (end.shell != shell && meets(at, at));
       });
  return found;
}

}  // namespace zbr::drawing
