// A set of segments that finds one coinciding with a given one.
//
// Idea: hash the grid cells of both ends. A cell is sixteen times as wide as the tolerance, so an end has to be looked for in the
// one cell it is in, and in a neighbour only when it is close to the border. Both ends enter the key, so that fans of segments from
// one point do not share a bucket; they do so alike, so that a segment and its reverse do. Expected constant time per segment.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include "core/bits.h"
#include "core/spatial_inline.h"
#include "core/tolerance_cell.h"
#include "core/tolerance_state.h"

namespace zbr {

inline std::array<double, 4> EndsOf(const ZBR_SEG& g) {
  return {g.s().x(), g.s().y(), g.e().x(), g.e().y()};
}
inline std::array<double, 6> EndsOf(const ZBR_SEG3& g) {
  return {g.s().x(), g.s().y(), g.s().z(), g.e().x(), g.e().y(), g.e().z()};
}

template <class Segment>
class SegmentSet {
 public:
  // Room for `capacity` segments, compared with the thread's tolerance of this moment.
  explicit SegmentSet(std::size_t capacity)
      : eps_(t_tolerance.eps), eps2_(t_tolerance.eps2), first_(std::bit_ceil(capacity + capacity / 2 + 2), kNone) {
    entries_.reserve(capacity);
  }

  // A segment that is equal to the last decimal to one in the set is not added again: many copies would be searched in vain.
  void Add(const Segment& g) {
    const Ends ends = EndsOf(g);
    Ends cells = ends;
    for (double& c : cells) c = CellOf(c);
    std::int32_t& bucket = first_[Hash(cells)];
    for (std::int32_t i = bucket; i != kNone; i = entries_[static_cast<std::size_t>(i)].next) {
      if (EndsOf(entries_[static_cast<std::size_t>(i)].segment) == ends) return;
    }
    entries_.push_back({g, bucket});
    bucket = static_cast<std::int32_t>(entries_.size()) - 1;
  }

  // Whether the set holds a segment that coincides with g, in either direction.
  bool Has(const Segment& g) const {
    const Ends ends = EndsOf(g);
    Ends low;
    Ends high;
    unsigned atBorder = 0;
    for (std::size_t i = 0; i < ends.size(); ++i) {
      if (!std::isfinite(ends[i])) return false;
      low[i] = CellOf(ends[i] - eps_);
      high[i] = CellOf(ends[i] + eps_);
      if (low[i] != high[i]) atBorder |= 1U << i;
    }
    // Every choice of sides over the coordinates at a border: the subsets of atBorder.
    for (unsigned chosen = atBorder;; chosen = (chosen - 1U) & atBorder) {
      Ends cells = low;
      for (std::size_t i = 0; i < ends.size(); ++i) {
        if ((chosen >> i & 1U) != 0) cells[i] = high[i];
      }
      if (HasInBucket(Hash(cells), g)) return true;
      if (chosen == 0) return false;
    }
  }

 private:
  using Ends = decltype(EndsOf(Segment()));
  static constexpr std::int32_t kNone = -1;
  static constexpr double kCellWidth = 16.0;    // in units of the tolerance
  static constexpr double kCellShift = 6.1115;  // the same: an odd share of the width, as round coordinates would lie on borders

  struct Entry {
    Segment segment;
    std::int32_t next;
  };

  double CellOf(double c) const { return zbr::CellOf(c + kCellShift * eps_, kCellWidth, eps_); }

  std::size_t Hash(const Ends& cells) const {
    std::uint64_t sum = 0;
    for (std::size_t end = 0; end < 2; ++end) {
      std::uint64_t h = 0;
      for (std::size_t i = 0; i < cells.size() / 2; ++i) {
        h = (h ^ BitsOf(cells[end * cells.size() / 2 + i])) * 0x9e3779b97f4a7c15ULL;
        h ^= h >> 29U;
      }
      sum += h * 0xbf58476d1ce4e5b9ULL;
    }
    return static_cast<std::size_t>(sum >> 20U) & (first_.size() - 1);
  }

  bool HasInBucket(std::size_t bucket, const Segment& g) const {
    for (std::int32_t i = first_[bucket]; i != kNone; i = entries_[static_cast<std::size_t>(i)].next) {
      const Segment& other = entries_[static_cast<std::size_t>(i)].segment;
      if (SamePoint(g.s(), other.s(), eps2_) && SamePoint(g.e(), other.e(), eps2_)) return true;
      if (SamePoint(g.s(), other.e(), eps2_) && SamePoint(g.e(), other.s(), eps2_)) return true;
    }
    return false;
  }

  double eps_;
  double eps2_;
  std::vector<std::int32_t> first_;  // newest entry of each bucket
  std::vector<Entry> entries_;
};

// Marks, in order, the segments that coincide with no earlier marked one.
template <class Segment>
std::vector<char> FirstOfEach(const std::vector<Segment>& segs) {
  SegmentSet<Segment> kept(segs.size());
  std::vector<char> first(segs.size(), 0);
  for (std::size_t i = 0; i < segs.size(); ++i) {
    if (kept.Has(segs[i])) continue;
    first[i] = 1;
    kept.Add(segs[i]);
  }
  return first;
}

// Marks the segments that coincide with none of ref.
template <class Segment>
std::vector<char> NotIn(const std::vector<Segment>& ref, const std::vector<Segment>& segs) {
  SegmentSet<Segment> known(ref.size());
  for (const Segment& g : ref) known.Add(g);
  std::vector<char> other(segs.size(), 0);
  for (std::size_t i = 0; i < segs.size(); ++i) other[i] = known.Has(segs[i]) ? 0 : 1;
  return other;
}

// Keeps the marked items, in order.
template <class T>
void KeepMarked(std::vector<T>& items, const std::vector<char>& marks) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (marks[i] != 0) items[kept++] = items[i];
  }
  items.resize(kept);
}

}  // namespace zbr
