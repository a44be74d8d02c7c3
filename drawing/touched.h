// Memory that the system hands out page by page, as it is written to for the first time.
//
// Clearing its pages takes as long as filling a large array, and vectors fill theirs on one thread.
#pragma once

#include <cstddef>
#include <vector>

#include "drawing/parallel.h"

namespace zbr::drawing {

// Writes to every page from `begin` on, on all threads.
void TouchPages(unsigned char* begin, std::size_t bytes, unsigned threads);

// values.resize(count) with the pages of new memory written to by all threads first.
template <class T>
void ResizeTouched(std::vector<T>& values, std::size_t count, unsigned threads) {
  if (threads > 1 && count > values.capacity()) {
    values.reserve(count);
    TouchPages(reinterpret_cast<unsigned char*>(values.data() + values.size()), (count - values.size()) * sizeof(T), threads);
  }
  values.resize(count);
}

}  // namespace zbr::drawing
