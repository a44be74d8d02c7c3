#include "segments/vertices.h"

#include <bit>
#include <cstdint>

#include "core/bits.h"
#include "core/planar_inline.h"
#include "core/tolerance_cell.h"
#include "core/tolerance_state.h"

namespace zbr {

namespace {

constexpr double kCellWidth = 4.0;  // in units of the tolerance

}  // namespace

VertexGrid::VertexGrid(std::size_t most)
    : eps_(t_tolerance.eps), eps2_(t_tolerance.eps2), first_(std::bit_ceil(most + most / 2 + 2), -1), vertices_(most) {}

std::size_t VertexGrid::Bucket(double cellX, double cellY) const {
  std::uint64_t h = BitsOf(cellX) * 0x9e3779b97f4a7c15ULL;
  h = ((h ^ h >> 29U) + BitsOf(cellY)) * 0xbf58476d1ce4e5b9ULL;
  return static_cast<std::size_t>(h ^ h >> 32U) & (first_.size() - 1);
}

int VertexGrid::BestInBucket(const ZBR_PT& p, std::size_t bucket, int best) const {
  for (int i = first_[bucket]; i >= 0; i = vertices_[static_cast<std::size_t>(i)].next) {
    const ZBR_PT& at = vertices_[static_cast<std::size_t>(i)].pt;
    if (!SamePoint(at, p, eps2_)) continue;
    if (best < 0) {
      best = i;
      continue;
    }
    const double x = vertices_[static_cast<std::size_t>(best)].pt.x();
    if (at.x() < x || (at.x() == x && i < best)) best = i;
  }
  return best;
}

int VertexGrid::At(const ZBR_PT& p) {
  const double x[] = {CellOf(p.x() - eps_, kCellWidth, eps_), CellOf(p.x() + eps_, kCellWidth, eps_)};
  const double y[] = {CellOf(p.y() - eps_, kCellWidth, eps_), CellOf(p.y() + eps_, kCellWidth, eps_)};
  int best = -1;
  for (int i = 0; i < (x[0] == x[1] ? 1 : 2); ++i) {
    for (int j = 0; j < (y[0] == y[1] ? 1 : 2); ++j) best = BestInBucket(p, Bucket(x[i], y[j]), best);
  }
  if (best >= 0) return best;
  const int number = size();
  int& first = first_[Bucket(CellOf(p.x(), kCellWidth, eps_), CellOf(p.y(), kCellWidth, eps_))];
  vertices_[static_cast<std::size_t>(size_++)] = {p, first};
  first = number;
  return number;
}

}  // namespace zbr
