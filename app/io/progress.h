// Shows on a terminal what a long run is doing; prints notes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace tool {

// While a stage takes longer than a second, its name and the seconds passed stand on the last line of the terminal. Nothing is
// shown when standard error is no terminal.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Starts a stage; an empty name ends the last one.
  void Stage(const std::string& name);

  // Prints a line to standard error, above the progress; the same one only once, as when a file is two operands.
  void Note(const std::string& line);

 private:
  void Run();
  void Erase();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::string stage_;
  std::set<std::string> notes_;
  std::chrono::steady_clock::time_point since_;
  bool shown_ = false;
  bool done_ = false;
  std::thread ticker_;  // not started without a terminal
};

// Milliseconds since it was made or last asked.
class Stopwatch {
 public:
  double Lap() {
    const auto now = std::chrono::steady_clock::now();
    const double passed = std::chrono::duration<double, std::milli>(now - since_).count();
    since_ = now;
    return passed;
  }

 private:
  std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
};

}  // namespace tool
