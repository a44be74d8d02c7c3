// Asking for memory ahead of its use.
//
// Loops are small objects all over the heap, and passes over them in any but the order of their creation wait for memory most of
// the time. Asking a few items ahead overlaps the waits. A hint only: it changes no result.
#pragma once

#include <cstddef>

namespace zbr {

inline constexpr std::size_t kItemsAhead = 8;

inline void Prefetch([[maybe_unused]] const void* p) {
#if defined(__GNUC__)
  __builtin_prefetch(p);
#endif
}

// Both ends of an object that may span two cache lines.
template <class T>
void PrefetchObject(const T& object) {
  const char* begin = reinterpret_cast<const char*>(&object);
  Prefetch(begin);
  Prefetch(begin + sizeof(T) - 1);
}

}  // namespace zbr
