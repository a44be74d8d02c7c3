#include "formats/dxf/dxf_groups.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <bit>

#include "formats/text/foreign.h"

namespace zbr::formats {
namespace {

constexpr std::string_view kBinaryStart("AutoCAD Binary DXF\r\n\x1a\0", 22);
constexpr int kHighestCode = 1071;

struct CodeRange {
  int last;
  DxfKind kind;
  std::size_t bytes;  // of the value in binary files; 0: text up to a null, 1 of text: its length stands in front
};

// In ascending order; each range starts behind the one before.
constexpr CodeRange kRanges[] = {
    {9, DxfKind::kText, 0},      {59, DxfKind::kReal, 8},     {79, DxfKind::kInteger, 2},   {89, DxfKind::kInteger, 4},
    {99, DxfKind::kInteger, 4},  {109, DxfKind::kText, 0},    {149, DxfKind::kReal, 8},     {159, DxfKind::kText, 0},
    {169, DxfKind::kInteger, 8}, {179, DxfKind::kInteger, 2}, {209, DxfKind::kText, 0},     {239, DxfKind::kReal, 8},
    {269, DxfKind::kText, 0},    {289, DxfKind::kInteger, 2}, {299, DxfKind::kInteger, 1},  {309, DxfKind::kText, 0},
    {319, DxfKind::kText, 1},    {369, DxfKind::kText, 0},    {389, DxfKind::kInteger, 2},  {399, DxfKind::kText, 0},
    {409, DxfKind::kInteger, 2}, {419, DxfKind::kText, 0},    {429, DxfKind::kInteger, 4},  {439, DxfKind::kText, 0},
    {459, DxfKind::kInteger, 4}, {469, DxfKind::kReal, 8},    {1003, DxfKind::kText, 0},    {1004, DxfKind::kText, 1},
    {1009, DxfKind::kText, 0},   {1059, DxfKind::kReal, 8},   {1070, DxfKind::kInteger, 2}, {kHighestCode, DxfKind::kInteger, 4}};

const CodeRange& RangeOf(int code) {
  return *std::lower_bound(std::begin(kRanges), std::end(kRanges), code, [](const CodeRange& r, int c) { return r.last < c; });
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

DxfGroups::DxfGroups(std::string_view bytes, const std::string& file) : rest_(bytes), file_(file) {
  isBinary_ = bytes.starts_with(kBinaryStart);
  if (!isBinary_) {
    RefuseBinary(bytes, file);
    return;
  }
  rest_.remove_prefix(kBinaryStart.size());
  // The first group is 0, SECTION: behind a code of two bytes its letters start later.
  if (rest_.size() > 1 && rest_[1] != '\0') codeBytes_ = 1;
}

bool DxfGroups::Next() {
  return isBinary_ ? NextOfBinary() : NextOfText();
}

// Lines end in LF, CR LF or, in files of old computers, CR alone.
std::string_view DxfGroups::TakeLine() {
  const std::size_t end = std::min(rest_.find_first_of("\r\n"), rest_.size());
  const std::string_view line = rest_.substr(0, end);
  rest_.remove_prefix(end);
  if (rest_.starts_with("\r\n")) rest_.remove_prefix(1);
  if (!rest_.empty()) rest_.remove_prefix(1);
  ++line_;
  return line;
}

bool DxfGroups::NextOfText() {
  if (rest_.find_first_not_of(" \t\r\n\x1a") == std::string_view::npos) return false;  // old files end in a control character
  group_.line = line_;
  const std::string_view codeText = Trimmed(TakeLine());
  const auto code = ParseInteger(codeText);
  // Negative codes, which no file should hold, have been seen in the wild around comments of applications.
  if (!code || *code < -5 || *code > kHighestCode) FailAt(file_, group_.line, "group code expected, but found " + Quoted(codeText));
  if (rest_.empty()) FailAt(file_, group_.line, "the file ends within a group");
  group_.code = static_cast<int>(*code);
  group_.kind = RangeOf(group_.code).kind;
  group_.text = TakeLine();
  if (group_.kind != DxfKind::kText || group_.code == 0 || group_.code == 2) group_.text = Trimmed(group_.text);
  return true;
}

std::string_view DxfGroups::TakeBytes(std::size_t count) {
  if (rest_.size() < count) FailAt(file_, group_.line, "the file ends within a group");
  const std::string_view bytes = rest_.substr(0, count);
  rest_.remove_prefix(count);
  return bytes;
}

// The lowest byte stands first; numbers of two bytes and more have a sign.
std::int64_t DxfGroups::TakeInteger(std::size_t bytes) {
  std::uint64_t value = 0;
  const std::string_view taken = TakeBytes(bytes);
  for (std::size_t i = bytes; i-- > 0;) value = value << 8U | static_cast<unsigned char>(taken[i]);
  if (bytes > 1 && bytes < 8 && (value >> (8 * bytes - 1)) != 0) value |= ~std::uint64_t{0} << (8 * bytes);
  return static_cast<std::int64_t>(value);
}

std::string_view DxfGroups::TakeString() {
  const std::size_t end = rest_.find('\0');
  if (end == std::string_view::npos) FailAt(file_, group_.line, "the file ends within a group");
  const std::string_view text = rest_.substr(0, end);
  rest_.remove_prefix(end + 1);
  return text;
}

bool DxfGroups::NextOfBinary() {
  if (rest_.empty()) return false;
  group_ = {};
  group_.isBinary = true;
  group_.line = line_;
  line_ += 2;
  constexpr std::int64_t kLongCodeFollows = 255;
  std::int64_t code = TakeInteger(codeBytes_);
  if (codeBytes_ == 1 && code == kLongCodeFollows) code = TakeInteger(2);
  if (code < -5 || code > kHighestCode) FailAt(file_, group_.line, "group code expected, but found " + std::to_string(code));
  group_.code = static_cast<int>(code);
  const CodeRange& range = RangeOf(group_.code);
  group_.kind = range.kind;
  if (range.kind == DxfKind::kReal) {
    group_.real = std::bit_cast<double>(TakeInteger(8));
  } else if (range.kind == DxfKind::kInteger) {
    group_.integer = static_cast<long long>(TakeInteger(range.bytes));
  } else {
    group_.text = range.bytes == 0 ? TakeString() : TakeBytes(static_cast<std::size_t>(TakeInteger(1)));
  }
  return true;
}

}  // namespace zbr::formats
