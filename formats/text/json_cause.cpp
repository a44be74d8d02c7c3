#include "formats/text/json_cause.h"

#include <cstddef>

#include "formats/text/utf8.h"

namespace zbr::formats {
namespace {

std::string Behind(const std::string& text, const std::string& mark, std::size_t from) {
  const std::size_t at = text.find(mark, from);
  return at == std::string::npos ? text : text.substr(at + mark.size());
}

// What was read last stands in the text, and may be anything.
std::string Readable(const std::string& text) {
  std::string readable;
  for (std::size_t i = 0; i < text.size();) {
    const Character character = CharacterAt(text, i);
    readable += character.code < ' ' ? "?" : text.substr(i, character.length);
    i += character.length;
  }
  return readable;
}

}  // namespace

std::string JsonCause(const std::string& what) {
  const std::size_t column = what.find(", column ");
  std::string cause = column == std::string::npos ? Behind(what, "] ", 0) : Behind(what, ": ", column);
  constexpr std::size_t kLongest = 160;
  if (cause.size() > kLongest) {
    cause.resize(kLongest);
    cause += "...";
  }
  return Readable(cause);
}

}  // namespace zbr::formats
