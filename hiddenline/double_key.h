// Doubles as unsigned integers that sort the same way.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace zbr {

// Ascending in d; what is no number comes first.
inline std::uint64_t DoubleKey(double d) {
  if (std::isnan(d)) return 0;
  const auto bits = std::bit_cast<std::uint64_t>(d + 0.0);  // one zero
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

}  // namespace zbr
