// Work in pieces, for the threads that the caller gives.
#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>

#include "core/tolerance_state.h"

namespace zbr {

// Runs pieces of work by an executor, or one after the other, all under the tolerance of the thread that made it. What is a piece
// must not depend on the executor, and pieces write nothing that another one reads: then no bit does, either.
class Sharing {
 public:
  // Calls work(0) to work(count - 1), each once, in any order and on any threads, and returns when all have ended.
  using Executor = std::function<void(std::size_t count, const std::function<void(std::size_t)>& work)>;

  // The executor, if there is one, stays the caller's.
  explicit Sharing(const Executor* executor = nullptr) : executor_(executor), eps_(t_tolerance.eps) {}

  // Calls work(i) for i from 0 to count - 1. What a piece throws is thrown here, after all have ended.
  template <class Work>
  void Run(std::size_t count, Work work) const {
    if (count < 2 || executor_ == nullptr || !*executor_) {
      for (std::size_t i = 0; i < count; ++i) work(i);
      return;
    }
    std::exception_ptr failure;
    std::mutex mutex;
    const std::function<void(std::size_t)> guarded = [&](std::size_t i) {
      try {
        const ToleranceScope scope(eps_);
        work(i);
      } catch (...) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!failure) failure = std::current_exception();
      }
    };
    (*executor_)(count, guarded);
    if (failure) std::rethrow_exception(failure);
  }

  // Calls work(piece, begin, end) for ranges that make up [0, count), all of this size but the last.
  template <class Work>
  void InPieces(std::size_t count, std::size_t size, Work work) const {
    Run(PieceCount(count, size), [&](std::size_t k) { work(k, k * size, std::min((k + 1) * size, count)); });
  }
  static std::size_t PieceCount(std::size_t count, std::size_t size) { return (count + size - 1) / size; }

 private:
  const Executor* executor_;
  double eps_;
};

}  // namespace zbr
