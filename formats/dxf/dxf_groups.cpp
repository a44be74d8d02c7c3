// Splitting a DXF text into groups.
#include "formats/dxf/dxf_groups.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <algorithm>

namespace zbr::formats {
namespace {

// The parser behind takes lines up to 1024 characters and never gets past a longer one; no name is as long.
constexpr std::size_t kLongestValue = 1000;

bool HoldsReal(int code) {
  return (code >= 10 && code <= 59) || (code >= 140 && code <= 149) || (code >= 210 && code <= 239);
}
bool HoldsInteger(int code) {
  return (code >= 60 && code <= 99) || (code >= 170 && code <= 179);
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

std::string_view DxfGroups::TakeLine() {
  const std::size_t end = std::min(rest_.find('\n'), rest_.size());
  std::string_view line = rest_.substr(0, end);
  rest_.remove_prefix(std::min(end + 1, rest_.size()));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  ++line_;
  return line;
}

bool DxfGroups::Next() {
  if (rest_.find_first_not_of(" \t\r\n\x1a") == std::string_view::npos) return false;  // old files end in a control character
  group_.line = line_;
  const std::string_view codeText = Trimmed(TakeLine());
  const auto code = ParseInteger(codeText);
  if (!code || *code < 0 || *code > 1071) FailAt(file_, group_.line, "group code expected, but found " + Quoted(codeText));
  if (rest_.empty()) FailAt(file_, group_.line, "the file ends within a group");
  group_.code = static_cast<int>(*code);
  group_.value = TakeLine();
  const bool real = HoldsReal(group_.code);
  const bool integer = HoldsInteger(group_.code);
  if (real || integer) group_.value = Trimmed(group_.value);
  if (real && !ParseNumber(group_.value)) FailAt(file_, group_.line + 1, Quoted(group_.value) + " is not a finite number");
  if (integer && !ParseInteger(group_.value)) FailAt(file_, group_.line + 1, Quoted(group_.value) + " is not an integer");
  if (group_.code == 0) group_.value = Trimmed(group_.value);
  group_.value = group_.value.substr(0, kLongestValue);
  return true;
}

}  // namespace zbr::formats
