// Parts of a drawing that keep apart, so that only those that need it go the slow way.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "core/box.h"

namespace zbr {

// Items grouped so that the boxes of two groups are apart: what lies in one group says nothing about a place in the other.
class Clusters {
 public:
  // Boxes within `margin` of each other are in one cluster. Where boxes crowd, as when they are nested by the hundred, all are.
  Clusters(std::span<const Box> boxes, double margin);

  std::uint32_t size() const { return static_cast<std::uint32_t>(begin_.size()) - 1; }
  // The items of the clusters from `first` to before `last`, ascending.
  std::vector<std::uint32_t> Items(std::uint32_t first, std::uint32_t last) const;

 private:
  std::vector<std::uint32_t> begin_;  // by cluster, in `items_`
  std::vector<std::uint32_t> items_;
};

// What is left when the clusters that can be solved the fast way have been. `walk(items)` tries that for several clusters at once
// and says whether it could. Known is only that it can't for all of them: they are halved and halved again, in sixteenths, until
// those that fail stand alone, or until most fail.
template <class Walk>
class ClusterSearch {
 public:
  ClusterSearch(const Clusters& clusters, Walk walk) : clusters_(clusters), walk_(walk) {}

  // The items that are to be solved in another way, ascending.
  std::vector<std::uint32_t> Run() {
    Split(0, clusters_.size());
    std::sort(left_.begin(), left_.end());
    return std::move(left_);
  }

 private:
  static constexpr std::uint32_t kGroups = 16;

  struct Range {
    std::uint32_t first;
    std::uint32_t last;
  };

  void Leave(const Range& range) {
    const std::vector<std::uint32_t> items = clusters_.Items(range.first, range.last);
    left_.insert(left_.end(), items.begin(), items.end());
  }

  // Of clusters that can't be walked all at once.
  void Split(std::uint32_t first, std::uint32_t last) {
    const std::uint32_t count = last - first;
    if (count < 2) return Leave({first, last});
    const std::uint32_t groups = std::min(count, kGroups);
    std::vector<Range> failed;
    for (std::uint32_t g = 0; g < groups; ++g) {
      const auto at = [&](std::uint32_t k) { return first + static_cast<std::uint32_t>(std::uint64_t{count} * k / groups); };
      const Range range{at(g), at(g + 1)};
      if (!walk_(clusters_.Items(range.first, range.last))) failed.push_back(range);
    }
    const bool areMost = 2 * failed.size() > groups;
    for (const Range& range : failed) {
      if (areMost) {
        Leave(range);
      } else {
        Split(range.first, range.last);
      }
    }
  }

  const Clusters& clusters_;
  Walk walk_;
  std::vector<std::uint32_t> left_;
};

}  // namespace zbr
