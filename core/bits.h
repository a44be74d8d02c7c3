// The bits of floating-point numbers. As std::bit_cast gives them, which some standard libraries in use still lack.
#pragma once

#include <cstdint>
#include <cstring>

namespace zbr {

inline std::uint64_t BitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}
inline std::uint32_t BitsOf(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}
inline double DoubleOf(std::uint64_t bits) {
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

}  // namespace zbr
