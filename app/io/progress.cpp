// The line of progress on a terminal, refreshed by a thread of its own.
#include "app/io/progress.h"

#include <cstdio>

#include "app/io/system.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds kQuiet(1000);  // shorter stages show nothing
constexpr std::chrono::milliseconds kTick(200);

}  // namespace

Progress::Progress() {
  if (IsTerminalOnStandardError()) ticker_ = std::thread([this] { Run(); });
}

Progress::~Progress() {
  if (!ticker_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    done_ = true;
    Erase();
  }
  changed_.notify_one();
  ticker_.join();
}

void Progress::Stage(const std::string& name) {
  const std::lock_guard lock(mutex_);
  Erase();
  stage_ = name;
  since_ = std::chrono::steady_clock::now();
}

void Progress::Note(const std::string& line) {
  const std::lock_guard lock(mutex_);
  if (!notes_.insert(line).second) return;
  Erase();
  std::fprintf(stderr, "%s\n", line.c_str());
}

void Progress::Run() {
  std::unique_lock lock(mutex_);
  while (!changed_.wait_for(lock, kTick, [this] { return done_; })) {
    const auto passed = std::chrono::steady_clock::now() - since_;
    if (stage_.empty() || passed < kQuiet) continue;
    const double seconds = std::chrono::duration<double>(passed).count();
    std::fprintf(stderr, "\r\x1b[K%s ... %.1f s", stage_.c_str(), seconds);
    std::fflush(stderr);
    shown_ = true;
  }
}

void Progress::Erase() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
  shown_ = false;
}

}  // namespace tool
