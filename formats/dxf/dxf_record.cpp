#include "formats/dxf/dxf_record.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "formats/text/utf8.h"

namespace zbr::formats {
namespace {

// What Western Windows has where Latin-1 has control characters.
constexpr char32_t kWestern[32] = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
                                   0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                   0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

// The code of "\U+00E9" at this place, if that is what stands there.
std::optional<char32_t> EscapeAt(std::string_view text, std::size_t at) {
  constexpr std::string_view kStart = "\\U+";
  constexpr std::size_t kDigits = 4;
  if (text.substr(at, kStart.size()) != kStart || text.size() < at + kStart.size() + kDigits) return std::nullopt;
  char32_t code = 0;
  for (const char c : text.substr(at + kStart.size(), kDigits)) {
    const std::size_t digit = std::string_view("0123456789ABCDEFabcdef").find(c);
    if (digit == std::string_view::npos) return std::nullopt;
    code = code << 4U | static_cast<char32_t>(digit < 16 ? digit : digit - 6);
  }
  if (code < 0x20 || (code >= 0xD800 && code < 0xE000)) return std::nullopt;
  return code;
}

bool IsUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto [code, length] = CharacterAt(text, i);
    if (code == 0) return false;
    i += length;
  }
  return true;
}

}  // namespace

std::string DxfTextOf(std::string_view text, bool isUtf8) {
  const bool keepsBytes = isUtf8 || IsUtf8(text);
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (const auto escape = EscapeAt(text, i)) {
      AppendUtf8(decoded, *escape);
      i += 6;
    } else if (byte < 0x80 || keepsBytes) {
      decoded += text[i];
    } else {
      AppendUtf8(decoded, byte < 0xA0 ? kWestern[byte - 0x80] : byte);
    }
  }
  return decoded;
}

const DxfGroup* DxfRecord::Find(int code) const {
  const auto found = std::find_if(groups.begin(), groups.end(), [&](const DxfGroup& group) { return group.code == code; });
  return found == groups.end() ? nullptr : &*found;
}

double DxfRecord::Real(const DxfGroup& group) const {
  const std::optional<double> value = group.isBinary ? std::optional(group.real) : ParseNumber(group.text);
  if (!value || !std::isfinite(*value)) {
    const std::string found = group.isBinary ? NumberText(group.real) : Quoted(group.text);
    FailAt(file->name, group.line + 1, found + " is not a finite number");
  }
  return *value;
}

long long DxfRecord::Integer(const DxfGroup& group) const {
  if (group.isBinary) return group.integer;
  if (const auto value = ParseInteger(group.text)) return *value;
  constexpr double kLargest = 2147483647.0;
  const auto value = ParseNumber(group.text);  // some programs write 1.0
  if (!value || *value != std::floor(*value) || std::abs(*value) > kLargest)
    FailAt(file->name, group.line + 1, Quoted(group.text) + " is not an integer");
  return static_cast<long long>(*value);
}

double DxfRecord::Real(int code, double otherwise) const {
  const DxfGroup* const group = Find(code);
  return group == nullptr ? otherwise : Real(*group);
}

long long DxfRecord::Integer(int code, long long otherwise) const {
  const DxfGroup* const group = Find(code);
  return group == nullptr ? otherwise : Integer(*group);
}

ZBR_PT3 DxfRecord::Point(int code) const {
  return {Real(code), Real(code + 10), Real(code + 20)};
}

ZBR_PT3 DxfRecord::Point(int code, const ZBR_PT3& otherwise) const {
  return {Real(code, otherwise.x()), Real(code + 10, otherwise.y()), Real(code + 20, otherwise.z())};
}

std::string DxfRecord::Name(int code) const {
  const DxfGroup* const group = Find(code);
  return group == nullptr ? std::string() : DxfTextOf(group->text, file->isUtf8);
}

}  // namespace zbr::formats
