// Where rings cross, run along or fold back on each other and themselves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <zbr/planar.h>

#include "loops/edge_index.h"

namespace zbr {

enum class RingContactKind : std::uint8_t {
  kCrossing,  // the boundaries pass through each other, at an edge or at a vertex
  kOverlap,   // they share a stretch
  kFold       // a boundary turns back on itself
};

// One place. Rings are named by their ids, edges by the vertices they start at; of two contacts' parties the smaller comes first.
struct RingContact {
  RingContactKind kind = RingContactKind::kCrossing;
  std::uint32_t ringA = 0, edgeA = 0;
  std::uint32_t ringB = 0, edgeB = 0;
  ZBR_PT at;
};

// Appends the contacts of the rings in the index, in no particular order; a touch from one side is none, nor is what comes near but
// is exactly apart. Rings have at least three points, none equal to the one before it within the thread's tolerance, with which
// everything is compared; the leaves of the index are widened by that much at least. False when the search ended because `most`
// were found. n log n, and pairs of edges with common boxes.
bool FindRingContacts(const EdgeIndex& index, std::size_t most, std::vector<RingContact>& found);

}  // namespace zbr
