// What a JSON parser found wrong, in words for people.
#pragma once

#include <string>

namespace zbr::formats {

// The parser's own text is "[json.exception...] parse error at line 3, column 5: cause; last read: ...": the cause and what
// follows, cut to a length that fits an error message.
std::string JsonCause(const std::string& what);

}  // namespace zbr::formats
