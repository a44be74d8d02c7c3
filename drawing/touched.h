// Large vectors, whose memory threads make ready: vectors fill theirs on one.
#pragma once

#include <cstddef>
#include <vector>

#include "drawing/parallel.h"

namespace zbr::drawing {

// values.reserve(count) with the pages of new memory ready.
template <class T>
void ReserveTouched(std::vector<T>& values, std::size_t count, unsigned threads) {
  if (count <= values.capacity()) return;
  values.reserve(count);
  TouchPages(values.data() + values.size(), (count - values.size()) * sizeof(T), threads);
}

// values.resize(count) likewise.
template <class T>
void ResizeTouched(std::vector<T>& values, std::size_t count, unsigned threads) {
  ReserveTouched(values, count, threads);
  values.resize(count);
}

}  // namespace zbr::drawing
