#include "drawing/touched.h"

#include <algorithm>

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

ZBR_UNCHECKED void Touch(volatile unsigned char* begin, std::size_t bytes) {
  for (std::size_t at = 0; at < bytes; at += kPage) begin[at] = 0;
}

}  // namespace

void TouchPages(unsigned char* begin, std::size_t bytes, unsigned threads) {
  RunParallel((bytes + kShare - 1) / kShare, threads,
              [&](std::size_t k) { Touch(begin + k * kShare, std::min(kShare, bytes - k * kShare)); });
}

}  // namespace zbr::drawing
