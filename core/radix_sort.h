// Stable sorting by unsigned integer keys, digit by digit, and walking what is sorted key by key.
//
// Least significant digit first, 11 bits at a time, from one bit in which keys differ to the next. Linear, and several times faster
// than comparing for the hundred thousands of small records that the crossings and loops become.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/small_sort.h"

namespace zbr {

// Sorts items by key(item), an unsigned integer; items of equal key keep their order. `scratch` is resized as needed and holds
// nothing of use afterwards.
template <class T, class Key>
void RadixSort(std::vector<T>& items, std::vector<T>& scratch, Key key) {
  constexpr std::size_t kFew = 16;             // below, a buffer for merging costs more than moving them along
  constexpr std::size_t kWorthCounting = 256;  // below, counting the buckets costs more than comparing
  constexpr int kDigitBits = 11;
  constexpr std::size_t kBuckets = std::size_t{1} << kDigitBits;
  using KeyType = decltype(key(items[0]));
  const std::size_t n = items.size();
  if (n <= kFew) {
    SmallSort(items.begin(), items.end(), [&](const T& a, const T& b) { return key(a) < key(b); });
    return;
  }
  if (n < kWorthCounting) {
    std::stable_sort(items.begin(), items.end(), [&](const T& a, const T& b) { return key(a) < key(b); });
    return;
  }
  KeyType varying = 0;  // bits in which keys differ
  for (const T& item : items) varying |= key(item) ^ key(items[0]);
  while (varying != 0) {
    const int shift = std::countr_zero(varying);
    const auto digit = [&](const T& item) { return static_cast<std::size_t>(key(item) >> shift) & (kBuckets - 1); };
    std::array<std::size_t, kBuckets> start{};
    for (const T& item : items) ++start[digit(item)];
    std::size_t sum = 0;
    for (std::size_t& s : start) {
      const std::size_t count = s;
      s = sum;
      sum += count;
    }
    scratch.resize(n);
    for (const T& item : items) scratch[start[digit(item)]++] = item;
    items.swap(scratch);
    varying &= ~(static_cast<KeyType>(kBuckets - 1) << shift);
  }
}

// Calls visit(run) for every longest run of neighbours with the same key; sorted items fall into one run for each key.
template <class T, class Key, class Visit>
void ForEachRun(std::vector<T>& items, Key key, Visit visit) {
  for (std::size_t begin = 0; begin < items.size();) {
    std::size_t end = begin + 1;
    while (end < items.size() && key(items[end]) == key(items[begin])) ++end;
    visit(std::span(items).subspan(begin, end - begin));
    begin = end;
  }
}

}  // namespace zbr
