// Finds equal or close points by hashing the cells of a grid.
//
// Without a tolerance a cell is a position. With one it is as wide as the tolerance, so that a point's partner lies in its own cell
// or in one around it; the points that stay are apart from each other, and so few share a cell.
#include "drawing/model/weld.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

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

// Keeps the points near which none is kept: find(table, p, cell) gives a kept point, or kNone. Returns where each point went.
template <class CellOf, class Find>
std::vector<std::uint32_t> Weld(std::vector<ZBR_PT3>& points, CellOf cellOf, Find find) {
  CellTable table(points.size());
  std::vector<std::uint32_t> places;
  places.reserve(points.size());
  std::uint32_t kept = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const ZBR_PT3 p = points[i];
    const Cell cell = cellOf(p);
    std::uint32_t found = find(table, p, cell);
    if (found == kNone) {
      table.Add(cell);
      found = kept;
      points[kept++] = p;
    }
    places.push_back(found);
  }
  points.resize(kept);
  return places;
}

std::vector<std::uint32_t> WeldEqual(std::vector<ZBR_PT3>& points) {
  return Weld(points, CellOfPosition, [&points](const CellTable& table, const ZBR_PT3& p, const Cell& cell) {
    const auto same = [&](const ZBR_PT3& q) { return q.x() == p.x() && q.y() == p.y() && q.z() == p.z(); };
    std::uint32_t found = table.First(cell);
    while (found != kNone && !same(points[found])) found = table.Next(found);
    return found;
  });
}

// Cells of a grid of the tolerance, counted from a corner of the box of all points.
class Grid {
 public:
  Grid(const std::vector<ZBR_PT3>& points, double tolerance) : low_(points.front()), tolerance_(tolerance) {
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

std::uint32_t FindClose(const CellTable& table, const std::vector<ZBR_PT3>& points, const ZBR_PT3& p, const Cell& cell,
                        double tolerance) {
  for (std::uint64_t i = 0; i < 27; ++i) {
    const Cell around = {cell[0] + i % 3 - 1, cell[1] + i / 3 % 3 - 1, cell[2] + i / 9 - 1};
    for (std::uint32_t k = table.First(around); k != kNone; k = table.Next(k)) {
      if (points[k].Distance(p) <= tolerance) return k;
    }
  }
  return kNone;
}

std::vector<std::uint32_t> WeldClose(std::vector<ZBR_PT3>& points, double tolerance) {
  const Grid grid(points, tolerance);
  return Weld(
      points, [&grid](const ZBR_PT3& p) { return grid.At(p); },
      [&](const CellTable& table, const ZBR_PT3& p, const Cell& cell) { return FindClose(table, points, p, cell, tolerance); });
}

}  // namespace

std::vector<std::uint32_t> WeldPoints(std::vector<ZBR_PT3>& points, double tolerance) {
  return points.empty() || !(tolerance > 0) ? WeldEqual(points) : WeldClose(points, tolerance);
}

}  // namespace zbr::drawing
