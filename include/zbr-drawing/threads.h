// Work shared out among threads, which are made for it and end with it; and memory made ready by them.
#pragma once

#include <cstddef>
#include <functional>

namespace zbr::drawing {

// Runs work(0) to work(count - 1), each once, on up to `threads` threads, this one included. Each has the tolerance of scenes. What
// a piece of work throws is thrown here after the others are done; pieces not yet begun are left out then.
void RunParallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work);

// Has the pages of memory ready that nothing was put into yet, on all threads: the first write to each makes the system clear it,
// which takes as long as filling a large array.
void TouchPages(void* begin, std::size_t bytes, unsigned threads);

}  // namespace zbr::drawing
