// Calls that may take long: without the global lock, told about their progress, ended by an interrupt.
//
// Idea: the work runs on a thread of its own; the calling thread waits, looks for signals and tells the caller's progress function
// every few hundredths of a second. Small work runs on the calling thread, where starting another would cost more than it.
// Difficulty: not every stage of the work asks whether it shall go on. A call that is interrupted waits for its work only a moment,
// then leaves it to itself: it owns all it reads and writes, never touches Python, and ends at its next question. The end of the
// process waits for it, as it would else read what is being destroyed.
#pragma once

#include "python/src/refs.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace zbr::python {

// Thrown within work that was told to end. Its call has an error of its own by then.
struct Stopped {};

// What the work tells and asks; any thread.
class Monitor {
 public:
  bool IsStopped() const { return stopped_.load(std::memory_order_relaxed); }
  bool Tell(double share) {
    share_.store(share, std::memory_order_relaxed);
    return !IsStopped();
  }
  void TellOrThrow(double share) {
    if (!Tell(share)) throw Stopped();
  }
  double Share() const { return share_.load(std::memory_order_relaxed); }
  void Stop() { stopped_.store(true, std::memory_order_relaxed); }

  // For functions of the library that take a pointer.
  static bool Tell(double share, void* monitor) { return static_cast<Monitor*>(monitor)->Tell(share); }

 private:
  std::atomic<double> share_{0.0};
  std::atomic<bool> stopped_{false};
};

// What the calling thread and the one that works share, but for the result.
class CallState {
 public:
  CallState();
  ~CallState();
  CallState(const CallState&) = delete;
  CallState& operator=(const CallState&) = delete;

  Monitor monitor;
  std::exception_ptr error;

  void Finish();
  // Waits until the work is done. When the caller interrupts it, or the progress function fails or answers False, sets Python's
  // error, tells the work to end, waits a moment, and returns false. `isDone` tells whether it has ended.
  bool Await(PyObject* progress, bool& isDone);

 private:
  bool WaitFor(int milliseconds);
  bool GoesOn(PyObject* progress);

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isDone_ = false;
};

// Tells all calls to end and waits for them, but not for ever; for the end of the process, without Python.
void EndCalls();

// Calls with less work than this, in points, take less than a millisecond or so.
inline constexpr std::size_t kSmallCall = 1000;

// Throws unless it is null, None or a function.
inline void CheckProgress(PyObject* progress) {
  if (progress != nullptr && progress != Py_None && PyCallable_Check(progress) == 0)
    throw BadType("progress", "a function is needed");
}

// Runs work(monitor), which owns what it uses and knows nothing of Python, and returns what it returns. `progress` may be null or
// None; otherwise it is called with the share that is done, and ends the work by answering False.
template <class Work>
auto Run(std::size_t size, PyObject* progress, Work work) -> decltype(work(std::declval<Monitor&>())) {
  using Result = decltype(work(std::declval<Monitor&>()));
  CheckProgress(progress);
  if (progress == Py_None) progress = nullptr;
  if (size < kSmallCall && progress == nullptr) {
    Monitor monitor;
    const WithoutGil others;
    return work(monitor);
  }
  struct State : CallState {
    std::optional<Result> result;
  };
  const auto state = std::make_shared<State>();
  std::thread thread([state, work = std::move(work)]() mutable {
    try {
      state->result.emplace(work(state->monitor));
    } catch (...) {
      state->error = std::current_exception();
    }
    state->Finish();
  });
  bool isDone = false;
  const bool isWanted = state->Await(progress, isDone);
  if (isDone) {
    const WithoutGil others;
    thread.join();
  } else {
    thread.detach();
  }
  if (!isWanted) throw PythonError();
  if (state->error) std::rethrow_exception(state->error);
  return std::move(*state->result);
}

}  // namespace zbr::python
