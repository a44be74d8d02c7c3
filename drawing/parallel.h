// Work shared out among threads.
#pragma once

#include <cstddef>
#include <functional>

namespace zbr::drawing {

// Runs work(0) to work(count - 1), each once, on up to `threads` threads, this one included. Each has the tolerance of scenes. What
// a piece of work throws is thrown here after the others are done; pieces not yet begun are left out then.
void RunParallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work);

// The same for calls that take an executor (ZBR_HL_REMOVAL).
std::function<void(std::size_t count, const std::function<void(std::size_t)>& work)> ExecutorOf(unsigned threads);

}  // namespace zbr::drawing
