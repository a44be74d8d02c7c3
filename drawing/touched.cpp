#include "drawing/touched.h"

#include <algorithm>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

// Containers of some libraries mark what they have reserved as off limits, for the sanitizer alone.
#if defined(__GNUC__) || defined(__clang__)
#define ZBR_UNCHECKED __attribute__((no_sanitize("address")))
#else
#define ZBR_UNCHECKED
#endif

namespace zbr::drawing {

namespace {

constexpr std::size_t kPage = 4096;  // no larger than pages are anywhere
constexpr std::size_t kShare = 256 * kPage;

// Smaller arrays may lie in memory that is to be used again, without having been taken back between.
constexpr std::size_t kLeastGivenBack = std::size_t{1} << 25U;

// Asked for a range, Linux has its pages ready in three quarters of the time that their first writes take one by one. False where
// the system does not know of that, or has larger pages.
bool Populate([[maybe_unused]] unsigned char* begin, [[maybe_unused]] std::size_t bytes) {
#if defined(MADV_POPULATE_WRITE)
  const std::size_t before = reinterpret_cast<std::uintptr_t>(begin) % kPage;
  return ::madvise(begin - before, bytes + before, MADV_POPULATE_WRITE) == 0;
#else
  return false;
#endif
}

ZBR_UNCHECKED void Touch(volatile unsigned char* begin, std::size_t bytes) {
  for (std::size_t at = 0; at < bytes; at += kPage) begin[at] = 0;
}

}  // namespace

void TouchPages(void* begin, std::size_t bytes, unsigned threads) {
  RunParallel((bytes + kShare - 1) / kShare, threads, [&](std::size_t k) {
    unsigned char* const share = static_cast<unsigned char*>(begin) + k * kShare;
    const std::size_t size = std::min(kShare, bytes - k * kShare);
    if (!Populate(share, size)) Touch(share, size);
  });
}

// Only whole pages of the array; where threads cannot be had, the array's owner gives back the rest.
void GiveBackPages([[maybe_unused]] void* begin, std::size_t bytes, [[maybe_unused]] unsigned threads) noexcept {
  if (bytes < kLeastGivenBack) return;
#if defined(__linux__)
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));  // lengths are rounded up to whole ones
  const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(begin) % page) % page;
  unsigned char* const first = static_cast<unsigned char*>(begin) + before;
  const std::size_t size = (bytes - before) / page * page, share = 256 * page;
  try {
    RunParallel((size + share - 1) / share, threads,
                [&](std::size_t k) { ::madvise(first + k * share, std::min(share, size - k * share), MADV_DONTNEED); });
  } catch (...) {
    return;
  }
#endif
}

}  // namespace zbr::drawing
