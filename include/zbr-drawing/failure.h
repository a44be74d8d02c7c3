// The one way a run ends early: an exception whose text is the line shown to the user.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zbr::drawing {

// Thrown for bad input and failing files alike; main() prints the text as one line and exits with 2.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reports a malformed file in the form that editors can jump to.
[[noreturn]] inline void FailAt(const std::string& file, std::size_t line, const std::string& cause) {
  throw Failure(file + ":" + std::to_string(line) + ": " + cause);
}

}  // namespace zbr::drawing
