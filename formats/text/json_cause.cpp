#include "formats/text/json_cause.h"

#include <cstddef>

namespace zbr::formats {
namespace {

std::string Behind(const std::string& text, const std::string& mark, std::size_t from) {
  const std::size_t at = text.find(mark, from);
  return at == std::string::npos ? text : text.substr(at + mark.size());
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
  return cause;
}

}  // namespace zbr::formats
