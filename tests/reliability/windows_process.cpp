// A stack overflow ends the whole program here, which fails the test as well.
#include <windows.h>
// After windows.h, which it needs.
#include <psapi.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "reliability/process.h"

// The linker has set the size: this only makes sure that it did.
void LimitStack(char** /*argv*/) {
  ULONG_PTR low = 0;
  ULONG_PTR high = 0;
  GetCurrentThreadStackLimits(&low, &high);
  constexpr ULONG_PTR kStack = 1U << 20U;
  if (high - low <= kStack) return;
  std::printf("the stack has %lu KiB\n", static_cast<unsigned long>((high - low) / 1024));
  std::exit(2);
}

Used RunApart(const std::function<bool()>& run) {
  const auto start = std::chrono::steady_clock::now();
  const bool isGood = run();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  PROCESS_MEMORY_COUNTERS memory{};
  GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
  return {isGood, seconds, static_cast<long>(memory.PeakWorkingSetSize >> 20U)};
}
