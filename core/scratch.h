// Memory that is kept from one call to the next, and when it is not.
#pragma once

#include <cstddef>
#include <vector>

namespace zbr {

// Empties a list that is not needed any more. What is small is kept for the next call, to which getting it again would be a cost;
// what is large goes back at once, so that what comes next in this call takes its place.
template <class T>
void FreeLarge(std::vector<T>& list) {
  constexpr std::size_t kKept = std::size_t{1} << 16U;  // bytes
  list.clear();
  if (list.capacity() * sizeof(T) > kKept) std::vector<T>().swap(list);
}

}  // namespace zbr
