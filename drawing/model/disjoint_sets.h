// Sets of numbers that grow together, each known by its smallest number.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace zbr::drawing {

class DisjointSets {
 public:
  explicit DisjointSets(std::size_t count) : parent_(count) { std::iota(parent_.begin(), parent_.end(), 0U); }

  std::uint32_t Find(std::uint32_t k) {
    while (parent_[k] != k) k = parent_[k] = parent_[parent_[k]];
    return k;
  }

  // False when they were in one set already.
  bool Unite(std::uint32_t a, std::uint32_t b) {
    a = Find(a);
    b = Find(b);
    parent_[std::max(a, b)] = std::min(a, b);
    return a != b;
  }

 private:
  std::vector<std::uint32_t> parent_;  // nowhere larger than the number itself
};

}  // namespace zbr::drawing
