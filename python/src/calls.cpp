#include "python/src/calls.h"

#include <chrono>

namespace zbr::python {
namespace {

// Between two looks at signals. An interrupt is to be answered within 100 ms, grace and waiting for the global lock included.
constexpr int kPeriod = 20;
// For work to end after it was told to.
constexpr int kGrace = 40;

}  // namespace

void CallState::Finish() {
  const std::lock_guard<std::mutex> hold(mutex_);
  isDone_ = true;
  changed_.notify_one();
}

bool CallState::WaitFor(int milliseconds) {
  const WithoutGil others;
  std::unique_lock<std::mutex> hold(mutex_);
  return changed_.wait_for(hold, std::chrono::milliseconds(milliseconds), [this] { return isDone_; });
}

bool CallState::GoesOn(PyObject* progress) {
  if (PyErr_CheckSignals() != 0) return false;
  const double share = monitor.Share();
  if (progress == nullptr || share == told_) return true;
  told_ = share;
  PyObject* const answer = PyObject_CallFunction(progress, "d", share);
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
