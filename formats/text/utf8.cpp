#include "formats/text/utf8.h"

#include <array>

namespace zbr::formats {
namespace {

bool IsCharacter(char32_t code) {
  return !(code >= 0xD800 && code < 0xE000) && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

}  // namespace

Character CharacterAt(std::string_view text, std::size_t at) {
  static constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};  // that need this many bytes
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const unsigned first = byte(at);
  if (first < 0x80) return {first, 1};
  const std::size_t length = first < 0xC0 ? 1 : (first < 0xE0 ? 2 : (first < 0xF0 ? 3 : 4));
  char32_t code = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80) return {};
    code = code << 6U | (byte(at + i) & 0x3FU);
  }
  const bool isNone = length == 1 || first >= 0xF8 || code < kLeast[length] || !IsCharacter(code);
  return isNone ? Character() : Character{code, length};
}

void AppendUtf8(std::string& text, char32_t code) {
  if (!IsCharacter(code)) return;
  if (code < 0x80) {
    text += static_cast<char>(code);
    return;
  }
  const int more = code < 0x800 ? 1 : (code < 0x10000 ? 2 : 3);
  static constexpr std::array<unsigned, 4> kMarks = {0, 0xC0, 0xE0, 0xF0};
  text += static_cast<char>(kMarks[static_cast<std::size_t>(more)] | code >> static_cast<unsigned>(6 * more));
  for (int i = more - 1; i >= 0; --i) text += static_cast<char>(0x80U | (code >> static_cast<unsigned>(6 * i) & 0x3FU));
}

}  // namespace zbr::formats
