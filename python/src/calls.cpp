#include "python/src/calls.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace zbr::python {
namespace {

// Between two looks at signals. An interrupt is to be answered within 100 ms, grace and waiting for the global lock included.
constexpr int kPeriod = 20;
// For work to end after it was told to.
constexpr int kGrace = 40;
// For all work to end with the process. A child that was forked waits in vain: the threads are its parent's.
constexpr int kLastGrace = 3000;

// The calls that have not finished. Never destroyed, as threads may outlast what is.
struct Calls {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<CallState*> all;

  void Remove(CallState* call) {
    const std::lock_guard<std::mutex> hold(mutex);
    all.erase(std::remove(all.begin(), all.end(), call), all.end());
    changed.notify_all();
  }
};
Calls& TheCalls() {
  static auto* const calls = new Calls;
  return *calls;
}

}  // namespace

CallState::CallState() {
  const std::lock_guard<std::mutex> hold(TheCalls().mutex);
  TheCalls().all.push_back(this);
}

CallState::~CallState() {
  TheCalls().Remove(this);  // of a thread that could not be started
}

void EndCalls() {
  Calls& calls = TheCalls();
  std::unique_lock<std::mutex> hold(calls.mutex);
  for (CallState* const call : calls.all) call->monitor.Stop();
  calls.changed.wait_for(hold, std::chrono::milliseconds(kLastGrace), [&] { return calls.all.empty(); });
}

void CallState::Finish() {
  {
    const std::lock_guard<std::mutex> hold(mutex_);
    isDone_ = true;
    changed_.notify_one();
  }
  TheCalls().Remove(this);
}

bool CallState::WaitFor(int milliseconds) {
  const WithoutGil others;
  std::unique_lock<std::mutex> hold(mutex_);
  return changed_.wait_for(hold, std::chrono::milliseconds(milliseconds), [this] { return isDone_; });
}

bool CallState::GoesOn(PyObject* progress) {
  if (PyErr_CheckSignals() != 0) return false;
  if (progress == nullptr) return true;
  PyObject* const answer = PyObject_CallFunction(progress, "d", monitor.Share());  // the same share again: it may end by the clock
  if (answer == nullptr) return false;
  const bool isRefused = answer == Py_False;
  Py_DECREF(answer);
  if (isRefused) PyErr_SetString(TheErrors().cancelled, "progress answered False");
  return !isRefused;
}

bool CallState::Await(PyObject* progress, bool& isDone) {
  for (isDone = WaitFor(kPeriod); !isDone; isDone = WaitFor(kPeriod)) {
    if (GoesOn(progress)) continue;
    monitor.Stop();
    isDone = WaitFor(kGrace);
    return false;
  }
  if (!error) monitor.Tell(1.0);
  return error || GoesOn(progress);
}

}  // namespace zbr::python
