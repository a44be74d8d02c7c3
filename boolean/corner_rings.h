// Rings of a region all of whose edges are parallel to the axes, from its corners.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <zbr/region.h>

namespace zbr {

// Corners are added from left to right, those of one x upwards, and linked as the edges between them are found.
class CornerRings {
 public:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  // Where a corner lies is told by the numbers of its coordinates in these lists.
  void Start(std::span<const double> xs, std::span<const double> ys);

  // Adds a corner. The walk with the region on the left leaves it along its horizontal edge or along its vertical one. Where two
  // corners of the region meet in one point, they are added one after the other, and the second one says so.
  std::uint32_t Add(std::uint32_t x, std::uint32_t y, bool leavesHorizontally, bool meetsLast);
  void LinkHorizontally(std::uint32_t left, std::uint32_t right) {
    corners_[left].horizontal = right;
    corners_[right].horizontal = left;
  }
  void LinkVertically(std::uint32_t lower, std::uint32_t upper) {
    corners_[lower].vertical = upper;
    corners_[upper].vertical = lower;
  }
  // Of a corner that may be the lowest leftmost one of a hole: where the next edge of the border below it begins.
  void NoteBelow(std::uint32_t corner, std::uint32_t begin) { corners_[corner].below = begin; }

  // Replaces the region: outer rings in the order of their lowest leftmost corners, at which every ring begins, each with its holes
  // in theirs. Rings pass no point twice.
  void Write(ZBR_REGION& region);

 private:
  struct Corner {
    std::uint32_t x;
    std::uint32_t y;
    std::uint32_t horizontal;  // the other end of its horizontal edge
    std::uint32_t vertical;    // of its vertical one
    std::uint32_t below;
    bool leavesHorizontally;
    bool meetsLast;
    bool meetsNext;
  };
  struct Ring {
    std::uint32_t begin;  // in `taken_`
    std::uint32_t end;
    std::uint32_t first;  // its lowest leftmost corner
    std::uint32_t outer;  // the ring that a hole lies in; of an outer ring itself
  };

  std::uint32_t After(std::uint32_t corner) const {
    const Corner& c = corners_[corner];
    return c.leavesHorizontally ? c.horizontal : c.vertical;
  }
  void Trace();
  void WalkFrom(std::uint32_t start);
  void TakeRing(std::size_t from);
  void Nest();
  void Append(const Ring& ring, std::vector<ZBR_PT>& points) const;

  std::span<const double> xs_;
  std::span<const double> ys_;
  std::vector<Corner> corners_;
  std::vector<std::uint32_t> walk_;   // corners since the start, without the rings that were taken off
  std::vector<std::uint32_t> place_;  // by corner, where in the walk its point was met; only for points of two corners
  std::vector<std::uint32_t> ringOf_;
  std::vector<std::uint32_t> taken_;  // corners, ring after ring
  std::vector<Ring> rings_;
  std::vector<std::uint32_t> order_;  // of the rings, by their first corners
};

}  // namespace zbr
