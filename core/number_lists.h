// Lists of numbers, one after the other in one array.
#pragma once

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace zbr {

class NumberLists {
 public:
  NumberLists() = default;
  // forEach(add) calls add(list, number) for all there are; it is called twice, and each list keeps its order.
  template <class ForEach>
  NumberLists(std::size_t count, const ForEach& forEach) : begin_(count + 1, 0) {
    forEach([&](std::uint32_t list, std::uint32_t) { ++begin_[list + 1]; });
    std::partial_sum(begin_.begin(), begin_.end(), begin_.begin());
    numbers_.resize(begin_.back());
    std::vector<std::uint32_t> place(begin_.begin(), begin_.end() - 1);
    forEach([&](std::uint32_t list, std::uint32_t number) { numbers_[place[list]++] = number; });
  }

  std::span<const std::uint32_t> operator[](std::size_t list) const {
    return std::span(numbers_).subspan(begin_[list], begin_[list + 1] - begin_[list]);
  }

 private:
  std::vector<std::uint32_t> begin_;
  std::vector<std::uint32_t> numbers_;
};

}  // namespace zbr
