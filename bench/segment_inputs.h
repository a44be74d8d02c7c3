// The generated inputs of the segment benchmarks, the same bits on every machine.
#pragma once

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "workloads.h"

namespace bench {

// n segments anywhere in a square, none of them twice.
std::vector<ZBR_SEG> RandomSegments(std::size_t n, std::uint64_t seed);

// n sides of the cells of a square grid of n/8 points, drawn at random in either direction: each is there about four times.
std::vector<ZBR_SEG> GridSegments(std::size_t n, std::uint64_t seed);

// The same with a height that depends on the place, so that repeats stay repeats.
std::vector<ZBR_SEG3> Lifted(const std::vector<ZBR_SEG>& segments);

// Lines over a region.
struct ClipInput {
  Region region;
  std::vector<ZBR_SEG3> segments;
  bool chained = false;  // they are one polyline: each begins where the one before ends
};

// The regions: one coastline ("coast") or upright comb ("comb") of the given number of edges.
// The lines:
//   short  single segments as long as a few edges of the region, anywhere
//   long   single segments from one side of the region to the other
//   hatch  parallel lines across the region, at an angle that no edge of a comb has
//   chain  one polyline that wanders through the region in short steps
ClipInput MakeClipInput(std::string_view region, std::size_t edges, std::string_view lines, std::size_t n);

}  // namespace bench
