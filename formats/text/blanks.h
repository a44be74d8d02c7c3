// Blanks around what texts say.
#pragma once

#include <algorithm>
#include <string_view>

namespace zbr::formats {

inline constexpr std::string_view kXmlBlanks = " \t\r\n";

// Without blanks at both ends.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks = kXmlBlanks) {
  const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

}  // namespace zbr::formats
