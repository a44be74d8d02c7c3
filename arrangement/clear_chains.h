// Edges in a row that nothing comes near.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "arrangement/edge_points.h"
#include "arrangement/vertex_set.h"

namespace zbr {

// Edges that follow each other, all of them from left to right in the order of a sweep or all from right to left, and that nothing
// comes near but their neighbours and other edges that share a point with the first or the last one. Another chain may run along
// the very same points: it is the twin.
struct ClearChain {
  static constexpr std::uint32_t kNoTwin = ~std::uint32_t{0};

  std::uint32_t first;  // edge
  std::uint32_t count;
  std::uint32_t twin;  // the edge along the first one; the others of the twin follow it, or go before it when it runs back
  bool twinRunsBack;

  // The edge along the k-th one.
  std::uint32_t TwinOf(std::uint32_t k) const { return twinRunsBack ? twin - k : twin + k; }
};

// Edges of rings, parted.
struct ClearChains {
  std::vector<ClearChain> list;       // by ascending first edges
  std::vector<std::uint32_t> others;  // edges of no chain, ascending

  bool empty() const { return list.empty(); }
  // How many of the others come before an edge.
  std::size_t OthersBefore(std::size_t edge) const {
    return static_cast<std::size_t>(std::lower_bound(others.begin(), others.end(), edge) - others.begin());
  }
};

// Nothing is in reach of a chain even after points within the merging distance have become one and edges were led through vertices
// within their reach. Without any chains when most edges are near others; then arranging all of them is less work. n log n.
ClearChains FindClearChains(const EdgePoints& edges, const NodeGrid& grid, const Resolution& resolution);

}  // namespace zbr
