// Splits a DXF text into its groups, pairs of a code and a value on a line each, and checks what can be checked of one group.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zbr::formats {

struct DxfGroup {
  int code = 0;
  std::string_view value;  // without the line end
  std::size_t line = 0;    // of the code; the value is on the next one
};

class DxfGroups {
 public:
  DxfGroups(std::string_view text, const std::string& file) : rest_(text), file_(file) {}

  // Moves on to the next group; false at the end of the text. Fails on a code that is no number, a value that is missing, and on a
  // value that is no number where the code asks for one. Overlong text is cut.
  bool Next();
  const DxfGroup& group() const { return group_; }

 private:
  std::string_view TakeLine();

  std::string_view rest_;
  const std::string& file_;
  std::size_t line_ = 1;
  DxfGroup group_;
};

}  // namespace zbr::formats
