// Runs with a stack of 1 MiB, each of which is told what it used: posix_process.cpp, windows_process.cpp.
#pragma once

#include <functional>

struct Used {
  bool isGood = false;
  double seconds = 0;
  long mebibytes = 0;
};

// Makes sure that the main thread's stack is no larger, if need be by starting the program again.
void LimitStack(char** argv);

// In a process of its own where there is a way to make one; else mebibytes are the most that was used until then.
Used RunApart(const std::function<bool()>& run);
