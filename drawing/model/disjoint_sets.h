// Sets of numbers that grow together, each known by its smallest number.
#pragma once

#include <algorithm>
#include <atomic>
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

// The same for threads that unite at once: whatever their order, the sets in the end are the same. A number once united has a
// smaller one above it for ever, so paths may be cut short without asking, and only a set's first number has to be taken as it was.
class SharedSets {
 public:
  explicit SharedSets(std::size_t count) : parent_(count) {
    for (std::size_t k = 0; k < count; ++k) parent_[k].store(static_cast<std::uint32_t>(k), std::memory_order_relaxed);
  }

  std::uint32_t Find(std::uint32_t k) {
    for (std::uint32_t above = Above(k); above != k; above = Above(k)) {
      const std::uint32_t next = Above(above);
      if (next != above) parent_[k].store(next, std::memory_order_relaxed);
      k = next;
    }
    return k;
  }

  void Unite(std::uint32_t a, std::uint32_t b) {
    for (a = Find(a), b = Find(b); a != b; a = Find(a), b = Find(b)) {
      std::uint32_t larger = std::max(a, b);
      if (parent_[larger].compare_exchange_strong(larger, std::min(a, b), std::memory_order_relaxed)) return;
    }
  }

 private:
  std::uint32_t Above(std::uint32_t k) const { return parent_[k].load(std::memory_order_relaxed); }

  std::vector<std::atomic<std::uint32_t>> parent_;
};

}  // namespace zbr::drawing
