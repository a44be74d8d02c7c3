// Characters of a text that may be no valid UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zbr::formats {

struct Character {
  char32_t code = 0;
  std::size_t length = 1;  // in bytes
};

// The character that starts at this byte; one of code 0 and length 1 where none does. Over-long forms, surrogates, U+FFFE, U+FFFF
// and codes beyond U+10FFFF are none.
Character CharacterAt(std::string_view text, std::size_t at);

// Nothing for codes that are no character's.
void AppendUtf8(std::string& text, char32_t code);

}  // namespace zbr::formats
