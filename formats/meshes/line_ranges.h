// Long texts in ranges of whole lines, which threads read at once.
//
// A range is read as if nothing stood before it. Whoever reads by ranges gives up for whatever is out of the ordinary, faults
// included, and leaves the text to the reader that goes from line to line: that one knows what to say, and where.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace zbr::formats {

// Ranges that make up the text, however many threads there are. They start at lines that are none's continuation and of which
// `mayBegin` says that nothing of what they are part of stands before them.
std::vector<std::string_view> LineRanges(std::string_view text, bool (*mayBegin)(std::string_view fromThere));

// Calls read(k) for all ranges. False where one of them failed.
bool AllRead(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& read);

// Puts the values of a range behind those of others, `count` in all, and gives its memory back.
template <class T>
void MoveTo(std::vector<T>& all, std::size_t count, std::vector<T>& values) {
  if (values.size() == count) {
    all = std::move(values);
  } else {
    all.reserve(count);
    all.insert(all.end(), values.begin(), values.end());
  }
  values = {};
}

}  // namespace zbr::formats
