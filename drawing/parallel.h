// Ranges of work shared out among threads.
#pragma once

#include <zbr-drawing/threads.h>

#include <cstddef>
#include <functional>

namespace zbr::drawing {

// Ranges of this size are worth a turn of a thread each. What is found by range and put together in their order does not depend on
// the number of threads.
inline constexpr std::size_t kRange = 16384;
inline constexpr std::size_t RangeCount(std::size_t count) {
  return (count + kRange - 1) / kRange;
}

// Calls work(range, begin, end) for all ranges of the numbers below count.
void RunInRanges(std::size_t count, unsigned threads,
                 const std::function<void(std::size_t range, std::size_t begin, std::size_t end)>& work);

// RunParallel for calls that take an executor (ZBR_HL_REMOVAL).
std::function<void(std::size_t count, const std::function<void(std::size_t)>& work)> ExecutorOf(unsigned threads);

}  // namespace zbr::drawing
