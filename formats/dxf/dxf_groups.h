// Splits a DXF file, text or binary, into its groups: pairs of a code and a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zbr::formats {

// The code tells the kind of value.
enum class DxfKind { kText, kReal, kInteger };

struct DxfGroup {
  int code = 0;
  DxfKind kind = DxfKind::kText;
  bool isBinary = false;
  std::string_view text;  // as it stands in the file, without the line end; of binary numbers nothing
  double real = 0.0;      // of binary numbers
  long long integer = 0;
  std::size_t line = 0;  // of the code; the value is on the next one

  bool Is(int otherCode, std::string_view value) const { return code == otherCode && text == value; }
};

class DxfGroups {
 public:
  DxfGroups(std::string_view bytes, const std::string& file);

  // Moves on to the next group; false at the end of the file. Fails on a code that is no number and on a value that is missing.
  // Lines of binary files are counted as if they were text.
  bool Next();
  const DxfGroup& group() const { return group_; }

 private:
  bool NextOfText();
  bool NextOfBinary();
  std::string_view TakeLine();
  std::string_view TakeBytes(std::size_t count);
  std::int64_t TakeInteger(std::size_t bytes);
  std::string_view TakeString();

  std::string_view rest_;
  const std::string& file_;
  bool isBinary_ = false;
  std::size_t codeBytes_ = 2;  // of binary files; until R12 one
  std::size_t line_ = 1;
  DxfGroup group_;
};

}  // namespace zbr::formats
