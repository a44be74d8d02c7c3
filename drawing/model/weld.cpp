// Finds equal or close points by hashing the cells of a grid.
//
// Without a tolerance a cell is a position. With one it is as wide as the tolerance, so that a point's partner lies in its own cell
// or in one around it; the points that stay are apart from each other, and so few share a cell. Which points stay depends on those
// before them then, so that threads can share out equal points alone.
#include "drawing/model/weld.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

using Cell = std::array<std::uint64_t, 3>;

std::uint64_t Hash(const Cell& cell) {
  std::uint64_t h = 0;
  for (const std::uint64_t part : cell) {
    h = (h ^ part) * 0x9e3779b97f4a7c15U;
    h ^= h >> 32U;
  }
  return h;
}

// Chains of points by the hash of their cell.
class CellTable {
 public:
  explicit CellTable(std::size_t count) : heads_(std::bit_ceil(count + 1), kNone) { next_.reserve(count); }

  // Points of the cell, and perhaps of others.
  std::uint32_t First(const Cell& cell) const { return heads_[Hash(cell) & (heads_.size() - 1)]; }
  std::uint32_t Next(std::uint32_t point) const { return next_[point]; }

  // Points are added in the order of their places, from 0.
  void Add(const Cell& cell) {
    std::uint32_t& head = heads_[Hash(cell) & (heads_.size() - 1)];
    next_.push_back(head);
    head = static_cast<std::uint32_t>(next_.size() - 1);
  }

 private:
  std::vector<std::uint32_t> heads_, next_;
};

// Adding zero turns -0 into 0, to which it is equal.
Cell CellOfPosition(const ZBR_PT3& p) {
  const double places[] = {p.x() + 0.0, p.y() + 0.0, p.z() + 0.0};
  Cell cell;
  static_assert(sizeof cell == sizeof places);
  std::memcpy(&cell, places, sizeof cell);
  return cell;
}

// Equal points have equal hashes: sorted by some bits of them, points fall into groups that have nothing to do with each other.
class EqualPoints {
 public:
  EqualPoints(std::span<const ZBR_PT3> points, unsigned threads) : points_(points), threads_(threads) {
    Sort();
    FindFirst();
  }

  // Of each point the first one that is equal to it.
  const std::vector<std::uint32_t>& First() const { return first_; }

 private:
  static constexpr unsigned kGroupBits = 6;
  static constexpr std::size_t kGroups = std::size_t{1} << kGroupBits;

  // Within a group points stay in their order.
  void Sort() {
    const std::size_t count = points_.size();
    hashes_.resize(count);
    places_.resize(count);
    std::vector<std::array<std::uint32_t, kGroups>> next(RangeCount(count));
    RunInRanges(count, threads_, [&](std::size_t range, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        hashes_[i] = static_cast<std::uint32_t>(Hash(CellOfPosition(points_[i])));
        ++next[range][GroupOf(i)];
      }
    });
    std::uint32_t before = 0;
    for (std::size_t group = 0; group < kGroups; ++group) {
      groupBegin_[group] = before;
      for (auto& own : next) before += std::exchange(own[group], before);
    }
    groupBegin_[kGroups] = before;
    RunInRanges(count, threads_, [&](std::size_t range, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) places_[next[range][GroupOf(i)]++] = static_cast<std::uint32_t>(i);
    });
  }

  std::size_t GroupOf(std::size_t i) const { return hashes_[i] & (kGroups - 1); }

  void FindFirst() {
    first_.resize(points_.size());
    if (points_.size() < kRange) return FindFirst(0, points_.size());
    RunParallel(kGroups, threads_, [&](std::size_t group) { FindFirst(groupBegin_[group], groupBegin_[group + 1]); });
  }

  // A table that is at most half full, with linear probing.
  void FindFirst(std::size_t begin, std::size_t end) {
    std::vector<std::uint32_t> table(std::bit_ceil(2 * (end - begin) + 1), kNone);
    for (std::size_t k = begin; k < end; ++k) {
      const std::uint32_t i = places_[k];
      std::size_t slot = hashes_[i] >> kGroupBits & (table.size() - 1);
      while (table[slot] != kNone && !AreEqual(points_[table[slot]], points_[i])) slot = (slot + 1) & (table.size() - 1);
      if (table[slot] == kNone) table[slot] = i;
      first_[i] = table[slot];
    }
  }

  static bool AreEqual(const ZBR_PT3& p, const ZBR_PT3& q) { return p.x() == q.x() && p.y() == q.y() && p.z() == q.z(); }

  const std::span<const ZBR_PT3> points_;
  const unsigned threads_;
  std::vector<std::uint32_t> hashes_, places_, first_;
  std::array<std::uint32_t, kGroups + 1> groupBegin_{};
};

// Those that stay are counted by range, so that each range knows their numbers.
std::vector<std::uint32_t> WeldEqual(std::span<const ZBR_PT3> points, unsigned threads, std::vector<ZBR_PT3>& kept) {
  const EqualPoints equal(points, threads);
  const std::vector<std::uint32_t>& first = equal.First();
  std::vector<std::size_t> next(RangeCount(points.size()));
  RunInRanges(points.size(), threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    std::size_t count = 0;
    for (std::size_t i = begin; i < end; ++i) count += first[i] == i ? 1U : 0U;
    next[range] = count;
  });
  std::size_t size = kept.size();
  for (std::size_t& count : next) size += std::exchange(count, size);
  kept.resize(size);
  std::vector<std::uint32_t> places(points.size());
  RunInRanges(points.size(), threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      if (first[i] != i) continue;
      kept[next[range]] = points[i];
      places[i] = static_cast<std::uint32_t>(next[range]++);
    }
  });
  RunInRanges(points.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      if (first[i] != i) places[i] = places[first[i]];
    }
  });
  return places;
}

// Cells of a grid of the tolerance, counted from a corner of the box of all points.
class Grid {
 public:
  Grid(std::span<const ZBR_PT3> points, double tolerance) : low_(points.front()), tolerance_(tolerance) {
    for (const ZBR_PT3& p : points) low_.Set(std::min(low_.x(), p.x()), std::min(low_.y(), p.y()), std::min(low_.z(), p.z()));
  }

  Cell At(const ZBR_PT3& p) const {
    const ZBR_PT3 q = (p - low_) / tolerance_;
    return {Number(q.x()), Number(q.y()), Number(q.z())};
  }

 private:
  static std::uint64_t Number(double x) { return static_cast<std::uint64_t>(x) + 1; }  // one cell is left below the lowest

  ZBR_PT3 low_;
  double tolerance_;
};

std::uint32_t FindClose(const CellTable& table, std::span<const ZBR_PT3> points, const ZBR_PT3& p, const Cell& cell,
                        double tolerance) {
  for (std::uint64_t i = 0; i < 27; ++i) {
    const Cell around = {cell[0] + i % 3 - 1, cell[1] + i / 3 % 3 - 1, cell[2] + i / 9 - 1};
    for (std::uint32_t k = table.First(around); k != kNone; k = table.Next(k)) {
      if (points[k].Distance(p) <= tolerance) return k;
    }
  }
  return kNone;
}

// Keeps the points near which none is kept.
std::vector<std::uint32_t> WeldClose(std::span<const ZBR_PT3> points, double tolerance, std::vector<ZBR_PT3>& kept) {
  const Grid grid(points, tolerance);
  CellTable table(points.size());
  std::vector<std::uint32_t> places;
  places.reserve(points.size());
  const std::size_t before = kept.size();
  for (const ZBR_PT3& p : points) {
    const Cell cell = grid.At(p);
    const std::span<const ZBR_PT3> own = std::span(kept).subspan(before);
    std::uint32_t found = FindClose(table, own, p, cell, tolerance);
    if (found == kNone) {
      table.Add(cell);
      found = static_cast<std::uint32_t>(own.size());
      kept.push_back(p);
    }
    places.push_back(static_cast<std::uint32_t>(before) + found);
  }
  return places;
}

}  // namespace

std::vector<std::uint32_t> WeldPoints(std::span<const ZBR_PT3> points, double tolerance, unsigned threads,
                                      std::vector<ZBR_PT3>& kept) {
  return points.empty() || !(tolerance > 0) ? WeldEqual(points, threads, kept) : WeldClose(points, tolerance, kept);
}

}  // namespace zbr::drawing
