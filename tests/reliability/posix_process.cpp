#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "reliability/process.h"

void LimitStack(char** argv) {
  rlimit stack{};
  getrlimit(RLIMIT_STACK, &stack);
  constexpr rlim_t kStack = 1U << 20U;
  if (stack.rlim_cur <= kStack) return;
  stack.rlim_cur = kStack;
  if (setrlimit(RLIMIT_STACK, &stack) != 0 || execv("/proc/self/exe", argv) != 0) std::exit(2);
}

Used RunApart(const std::function<bool()>& run) {
  const pid_t child = fork();
  if (child == 0) _exit(run() ? 0 : 1);
  int status = -1;
  rusage used{};
  const bool isGood = child > 0 && wait4(child, &status, 0, &used) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  const double seconds = static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
                         1e-6 * static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec);
  return {isGood, seconds, used.ru_maxrss / 1024};
}
