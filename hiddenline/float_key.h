// Doubles as floats, and floats as unsigned integers that sort the same way.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "core/bits.h"

namespace zbr {

// The nearest float; the largest one of its sign for what is larger.
inline float ToFloat(double d) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  d = d < -kLargest ? -kLargest : d;
  return static_cast<float>(kLargest < d ? kLargest : d);
}

// Ascending in f; what is no number comes first.
inline std::uint32_t FloatKey(float f) {
  if (std::isnan(f)) return 0;
  const auto bits = BitsOf(f + 0.0F);  // one zero
  constexpr std::uint32_t kSign = std::uint32_t{1} << 31U;
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

}  // namespace zbr
