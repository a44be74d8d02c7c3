#include "boolean/clusters.h"

#include <numeric>

#include "core/box_tree.h"

namespace zbr {
namespace {

// Sets that are joined one by one (Tarjan 1975); the root of a set is its first item.
class JoinedSets {
 public:
  explicit JoinedSets(std::size_t count) : parent_(count) { std::iota(parent_.begin(), parent_.end(), 0U); }

  std::uint32_t RootOf(std::uint32_t item) {
    while (parent_[item] != item) item = parent_[item] = parent_[parent_[item]];
    return item;
  }
  void Join(std::uint32_t a, std::uint32_t b) {
    a = RootOf(a);
    b = RootOf(b);
    parent_[std::max(a, b)] = std::min(a, b);
  }

 private:
  std::vector<std::uint32_t> parent_;
};

}  // namespace

Clusters::Clusters(std::span<const Box> boxes, double margin) {
  constexpr std::size_t kPairsPerBox = 64;
  const auto count = static_cast<std::uint32_t>(boxes.size());
  std::vector<ZBR_PT> centres;
  centres.reserve(count);
  for (const Box& box : boxes) centres.push_back(box.Center());
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  BoxTree tree;
  const std::span<Box> leaves = tree.StartLeaves(count);
  for (std::uint32_t i = 0; i < count; ++i) leaves[i] = boxes[order[i]].Widened(margin / 2.0);
  tree.BuildInner();
  JoinedSets sets(count);
  std::size_t pairs = 0;
  const bool areFew = BoxJoin::Run(tree, tree, [&](std::uint32_t i, std::span<const std::uint32_t> near) {
    for (const std::uint32_t j : near) sets.Join(order[i], order[j]);
    pairs += near.size();
    return pairs <= kPairsPerBox * count;
  });
  std::vector<std::uint32_t> number(count, 0);  // of the cluster, by its first item
  begin_.assign(1, 0);
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t root = areFew ? sets.RootOf(i) : 0;
    if (root == i) {
      number[i] = size();
      begin_.push_back(0);
    }
    ++begin_[number[root] + 1];
  }
  std::partial_sum(begin_.begin(), begin_.end(), begin_.begin());
  items_.resize(count);
  std::vector<std::uint32_t> place(begin_.begin(), begin_.end() - 1);
  for (std::uint32_t i = 0; i < count; ++i) items_[place[number[areFew ? sets.RootOf(i) : 0]]++] = i;
}

std::vector<std::uint32_t> Clusters::Items(std::uint32_t first, std::uint32_t last) const {
  std::vector<std::uint32_t> items(items_.begin() + begin_[first], items_.begin() + begin_[last]);
  std::sort(items.begin(), items.end());
  return items;
}

}  // namespace zbr
