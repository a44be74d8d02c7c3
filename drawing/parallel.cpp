#include "drawing/parallel.h"

#include <zbr-drawing/scene.h>
#include <zbr/tolerance.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace zbr::drawing {

namespace {

// Threads that end before whoever holds them; std::jthread, which does the same, is not in every standard library.
struct Helpers {
  std::vector<std::thread> threads;

  Helpers() = default;
  Helpers(const Helpers&) = delete;
  Helpers& operator=(const Helpers&) = delete;
  ~Helpers() {
    for (std::thread& t : threads) t.join();
  }
};

}  // namespace

void RunParallel(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work) {
  if (threads < 2 || count < 2) {  // a hundred thousand small bodies come here, too
    const ZBR_TmpEps hold(kSceneTolerance);
    for (std::size_t i = 0; i < count; ++i) work(i);
    return;
  }
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::mutex failureMutex;
  const auto run = [&] {
    const ZBR_TmpEps hold(kSceneTolerance);
    try {
      for (std::size_t i = next++; i < count; i = next++) work(i);
    } catch (...) {
      const std::lock_guard lock(failureMutex);
      if (!failure) failure = std::current_exception();
      next = count;
    }
  };
  {
    Helpers helpers;
    const std::size_t helperCount = std::min<std::size_t>(threads, count);
    try {
      for (std::size_t i = 1; i < helperCount; ++i) helpers.threads.emplace_back(run);
    } catch (const std::system_error&) {  // the system gives no more threads; those there are will do
    }
    run();
  }
  if (failure) std::rethrow_exception(failure);
}

void RunInRanges(std::size_t count, unsigned threads,
                 const std::function<void(std::size_t range, std::size_t begin, std::size_t end)>& work) {
  RunParallel(RangeCount(count), threads,
              [&](std::size_t range) { work(range, range * kRange, std::min(count, (range + 1) * kRange)); });
}

std::function<void(std::size_t count, const std::function<void(std::size_t)>& work)> ExecutorOf(unsigned threads) {
  return [threads](std::size_t count, const std::function<void(std::size_t)>& work) { RunParallel(count, threads, work); };
}

}  // namespace zbr::drawing
