// Long texts in ranges of whole lines, which threads read at once.
//
// A range is read as if nothing stood before it. Whoever reads by ranges gives up for whatever is out of the ordinary, faults
// included, and leaves the text to the reader that goes from line to line: that one knows what to say, and where.
#pragma once

#include <zbr-drawing/threads.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace zbr::formats {

// Ranges that make up the text, however many threads there are. They start at lines that are none's continuation and of which
// `mayBegin` says that nothing of what they are part of stands before them.
std::vector<std::string_view> LineRanges(std::string_view text, bool (*mayBegin)(std::string_view fromThere));

// Calls read(k) for all ranges. False where one of them failed.
bool AllRead(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& read);

// The values of all ranges one behind the other; values(k) are those of a range, whose memory is given back.
template <class Values>
auto Joined(std::size_t count, unsigned threads, const Values& values) {
  std::vector<std::size_t> begins{0};
  for (std::size_t k = 0; k < count; ++k) begins.push_back(begins.back() + values(k).size());
  if (count == 1) return std::move(values(0));
  std::remove_reference_t<decltype(values(0))> all;
  all.reserve(begins.back());
  TouchPages(all.data(), begins.back() * sizeof(all[0]), threads);
  all.resize(begins.back());
  RunParallel(count, threads, [&](std::size_t k) {
    const auto own = std::exchange(values(k), {});
    std::copy(own.begin(), own.end(), all.begin() + static_cast<std::ptrdiff_t>(begins[k]));
  });
  return all;
}

}  // namespace zbr::formats
