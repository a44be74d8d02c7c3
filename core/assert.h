// Checks of what the code takes for granted: on where ZBR_CHECKS is defined (the presets dev, asan and tsan), gone elsewhere.
//
// ZBR_ASSERT(condition) for what one line knows: an index, a state. ZBR_CHECK(fault) for a whole structure at the border of a
// folder: `fault` is a call of that folder's check.h, which gives null, or what is wrong. A failure names its place and ends the
// program, so that a debugger or a sanitizer shows the way there. The expressions must not have side effects: in other builds they
// are compiled, never evaluated.
#pragma once

#if defined(ZBR_CHECKS)
#include <cstdio>
#include <cstdlib>
#endif

namespace zbr {

#if defined(ZBR_CHECKS)
inline constexpr bool kChecks = true;

[[noreturn]] inline void FailCheck(const char* file, int line, const char* what) {
  std::fprintf(stderr, "%s:%d: check failed: %s\n", file, line, what);
  std::abort();
}
#else
inline constexpr bool kChecks = false;

[[noreturn]] void FailCheck(const char* file, int line, const char* what);  // named, never called
#endif

}  // namespace zbr

#define ZBR_ASSERT(condition)                                           \
  do {                                                                  \
    if constexpr (zbr::kChecks) {                                       \
      if (!(condition)) zbr::FailCheck(__FILE__, __LINE__, #condition); \
    }                                                                   \
  } while (false)

#define ZBR_CHECK(fault)                                                              \
  do {                                                                                \
    if constexpr (zbr::kChecks) {                                                     \
      if (const char* const what = (fault)) zbr::FailCheck(__FILE__, __LINE__, what); \
    }                                                                                 \
  } while (false)
