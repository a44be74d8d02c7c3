#include "loops/near_edges.h"

#include <algorithm>

#include "core/slab_search.h"

namespace zbr {
namespace {

void AddSegments(const EdgeIndex& index, std::vector<SlabSegment>& segments, std::vector<std::uint32_t>& places) {
  for (std::uint32_t leaf = 0; leaf < index.tree().Count(0); ++leaf) {
    std::uint32_t place = leaf * EdgeIndex::kLeafEdges;
    index.VisitEdges(leaf, [&](const ZBR_PT& p, const ZBR_PT& q) {
      segments.push_back({p, q});
      places.push_back(place++);
    });
  }
}

}  // namespace

bool FindNearEdges(const EdgeIndex& a, const EdgeIndex& b, double distance, std::vector<EdgePair>& pairs) {
  constexpr std::size_t kMostPerEdge = 256;
  std::vector<SlabSegment> segments;
  std::vector<std::uint32_t> places;
  AddSegments(a, segments, places);
  const auto ofA = static_cast<std::uint32_t>(segments.size());
  AddSegments(b, segments, places);
  std::size_t found = 0;
  const auto visit = [&](std::uint32_t i, std::uint32_t j) {
    if (i < ofA && j >= ofA) pairs.push_back({places[i], places[j]});
    return ++found <= kMostPerEdge * segments.size();
  };
  if (!SearchSlabs(segments, distance, visit)) return false;
  std::sort(pairs.begin(), pairs.end(), [](const EdgePair& x, const EdgePair& y) { return x.Key() < y.Key(); });
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  return true;
}

}  // namespace zbr
