#include "formats/meshes/line_ranges.h"

#include <zbr-drawing/threads.h>
#include <zbr-formats/types.h>

namespace zbr::formats {
namespace {

// Bytes of a range before its last line: some ten thousand lines, which are worth a turn of a thread. The parts of a file of a
// million triangles are some hundred.
constexpr std::size_t kRangeBytes = std::size_t{1} << 18U;

bool IsContinued(std::string_view line) {
  while (line.ends_with('\r')) line.remove_suffix(1);
  return line.ends_with('\\');
}

std::size_t EndOfRange(std::string_view text, bool (*mayBegin)(std::string_view)) {
  for (std::size_t from = kRangeBytes; from < text.size();) {
    const std::size_t end = text.find('\n', from);
    if (end == std::string_view::npos) break;
    from = end + 1;
    if (!IsContinued(text.substr(0, end)) && mayBegin(text.substr(from))) return from;
  }
  return text.size();
}

}  // namespace

std::vector<std::string_view> LineRanges(std::string_view text, bool (*mayBegin)(std::string_view fromThere)) {
  std::vector<std::string_view> ranges;
  while (!text.empty()) {
    const std::size_t end = EndOfRange(text, mayBegin);
    ranges.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return ranges;
}

bool AllRead(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& read) {
  try {
    RunParallel(count, threads, read);
    return true;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace zbr::formats
