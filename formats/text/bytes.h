// Numbers as binary files store them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zbr::formats {

// The whole number of these bytes, of which there are at most eight, the lowest first.
inline std::uint64_t LittleEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) number = number << 8U | static_cast<unsigned char>(bytes[i]);
  return number;
}

}  // namespace zbr::formats
