// Large arrays, whose memory threads make ready and give back: vectors do so on one.
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

// Gives back the pages of an array that is about to be freed and holds nothing more, on all threads: freed, a hundred thousand
// pages are taken back one by one.
void GiveBackPages(void* begin, std::size_t bytes, unsigned threads) noexcept;

}  // namespace zbr::drawing
