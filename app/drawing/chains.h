// Segments joined into polylines that know the edges they are made of.
#pragma once

#include <zbr/planar.h>

#include <cstdint>
#include <vector>

namespace tool {

// An edge of the mesh: edge i of a triangle runs from its vertex i to its vertex (i + 1) % 3.
struct EdgeRef {
  std::uint32_t triangle = 0;  // place in the mesh as read
  std::uint8_t edge = 0;

  bool operator==(const EdgeRef&) const = default;
};

struct EdgeSegment {
  ZBR_SEG segment;
  EdgeRef edge;
};

struct Chain {
  std::vector<ZBR_PT> points;  // of a closed one the last repeats the first
  std::vector<EdgeRef> edges;  // in the order of the chain; next to each other none twice
  bool closed = false;
};

// Ends that are at most `tolerance` apart are joined; shorter segments and repeats are left out.
std::vector<Chain> ChainSegments(const std::vector<EdgeSegment>& segments, double tolerance);

}  // namespace tool
