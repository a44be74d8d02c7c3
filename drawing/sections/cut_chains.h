// Lines across the triangles of a shell, each from one edge to another, chained by the edges that they share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Cut k crosses a triangle. Its ends have the numbers 2 k, where it comes from, and 2 k + 1, where it leads to; ends with one name
// may be joined.
struct Cuts {
  std::vector<std::uint32_t> triangles;
  std::vector<std::uint32_t> names;  // of ends

  void Add(std::uint32_t triangle, std::uint32_t from, std::uint32_t to) {
    triangles.push_back(triangle);
    names.push_back(from);
    names.push_back(to);
  }
};

// Cuts in a row, by the ends at which they are entered; `last` is where the last one is left.
struct CutChain {
  std::vector<std::uint32_t> ends;
  std::uint32_t last = 0;
  bool closed = false;
};

// Of three and more ends with one name, one that leads there goes on with one that comes from there as far as there are such. Open
// chains come first. n log n.
std::vector<CutChain> ChainCuts(const Cuts& cuts);

}  // namespace zbr::drawing
