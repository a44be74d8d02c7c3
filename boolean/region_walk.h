// The fast way of combining regions: by walking along the crossings of operands in general position.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "boolean/region_input.h"
#include "boolean/walk_depths.h"
#include "boolean/walk_polygons.h"
#include "boolean/walk_rings.h"
#include "boolean/walk_search.h"

namespace zbr {

// Holds what one pair of operands needs, and keeps the memory for the next.
class RegionWalk {
 public:
  // Finds what all operations have in common. False when the walk can't be certain of the operands.
  bool Prepare(const RegionInput& input);
  // After Prepare. False when the walk can't be certain of the result, which then holds nothing of use.
  // The last one gives large memory back before it writes the result.
  bool Combine(ZBR_BOOLEAN_OPE op, ZBR_REGION& result, bool isLast);
  // Large memory is given back.
  void Clear();

 private:
  // A walk that starts at crossings where B goes to the left of A.
  struct Way {
    int firstSide;    // along which it sets out
    bool forward[2];  // along A and B, as seen with the region on the left
  };
  // The crossings along one operand, a closed list for each ring.
  struct Along {
    std::vector<std::uint32_t> at;     // crossing at each place; empty for A, where it is the place
    std::vector<std::uint32_t> place;  // of each crossing; empty for A
    std::vector<std::uint32_t> ring;   // of each place, counted within the operand
    std::vector<std::uint32_t> begin;  // by ring, the first place, and the end

    std::uint32_t At(std::uint32_t k) const { return at.empty() ? k : at[k]; }
    std::uint32_t PlaceOf(std::uint32_t crossing) const { return place.empty() ? crossing : place[crossing]; }
    void Clear();
  };

  bool Search(const RegionInput& input);
  static Way WayOf(ZBR_BOOLEAN_OPE op);
  void SortByEdge(int side);
  void SortOnEdges(int side);
  void SortOnEdge(const ZBR_PT& d, std::span<std::uint32_t> order);
  void PutInOrderAlongA();
  void FindRings(int side);
  template <class Visit>
  bool HoldsForNeighbours(int side, Visit visit) const;
  bool AreApart(int side) const;
  void NoteDirections();
  bool TakeTurns(int side) const;

  // These answer whether what they append is certain.
  bool CombineOne(ZBR_BOOLEAN_OPE op);
  bool Trace(const Way& way);
  bool AddUncrossed(ZBR_BOOLEAN_OPE op);
  std::uint32_t Follow(std::uint32_t crossing, int side, bool forward);
  void AppendStretch(RingSpan ring, std::uint32_t first, std::uint32_t count, bool goesUp);

  WalkScale scale_{Box()};
  WalkRings rings_;
  WalkSearch search_;
  WalkDepths depths_;
  std::vector<OpenCrossing> crossings_;   // in order along A
  std::vector<std::uint32_t> edgeBegin_;  // scratch
  Along along_[2];
  std::vector<std::uint8_t> goesLeft_;
  std::vector<std::uint8_t> done_;
  WalkPolygons polygons_;
};

}  // namespace zbr
