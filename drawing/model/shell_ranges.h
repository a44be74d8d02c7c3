// Work on the triangles or edges of all shells, shared out among threads.
//
// Models have one shell of a million triangles or a hundred thousand of twelve. Numbers that go through all shells are cut into
// ranges of one size; where a part of a shell can be worked on alone, those are the shares, and else the shells that begin in them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/parallel.h"

namespace zbr::drawing {

// Calls work(range, shell, begin, end) for the part of each shell in each range, counted from the shell's first number. `begins`
// has one number more than there are shells.
template <class Work>
void ForEachPart(const std::vector<std::uint32_t>& begins, unsigned threads, Work work) {
  RunInRanges(begins.back(), threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    auto s = static_cast<std::size_t>(std::upper_bound(begins.begin(), begins.end(), begin) - begins.begin() - 1);
    for (; begin < end; ++s) {
      const std::size_t partEnd = std::min<std::size_t>(end, begins[s + 1]);
      work(range, s, begin - begins[s], partEnd - begins[s]);
      begin = partEnd;
    }
  });
}

// Calls work(shell) for all shells.
template <class Work>
void ForEachShell(const std::vector<std::uint32_t>& begins, unsigned threads, Work work) {
  RunInRanges(begins.back(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    auto s = static_cast<std::size_t>(std::lower_bound(begins.begin(), begins.end() - 1, begin) - begins.begin());
    for (; s + 1 < begins.size() && begins[s] < end; ++s) work(s);
  });
}

}  // namespace zbr::drawing
