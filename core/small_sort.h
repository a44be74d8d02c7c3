// Sorting a handful of items in place: stable, and without the allocation of std::stable_sort.
#pragma once

#include <iterator>
#include <utility>

namespace zbr {

// Insertion sort: for two to a dozen items.
template <class Iterator, class Less>
void SmallSort(Iterator begin, Iterator end, Less less) {
  if (begin == end) return;
  for (Iterator next = std::next(begin); next != end; ++next) {
    auto item = std::move(*next);
    Iterator place = next;
    for (; place != begin && less(item, *std::prev(place)); --place) *place = std::move(*std::prev(place));
    *place = std::move(item);
  }
}

}  // namespace zbr
