#include "arrangement/vertex_set.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace zbr {
namespace {

constexpr double kCellWidth = 4.0;  // in merging distances

double LargerSide(const Box& box) {
  return std::max(box.xmax - box.xmin, box.ymax - box.ymin);
}

double Magnitude(const Box& box) {
  return std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)});
}

// The smallest power of two at least 2^-bits of the value.
double PowerOfTwoFor(double value, int bits) {
  if (!(value > 0.0)) return std::numeric_limits<double>::min();
  int exponent = 0;
  const double fraction = std::frexp(value, &exponent);  // value = fraction * 2^exponent, fraction in [0.5, 1)
  return std::max(std::ldexp(1.0, exponent - (fraction == 0.5 ? bits + 1 : bits)), std::numeric_limits<double>::min());
}

}  // namespace

// Half the box is at most 2^29 steps.
Resolution Resolution::Coarse(const Box& box) {
  const double side = LargerSide(box);
  const double step = side > 0.0 ? PowerOfTwoFor(side, 30) : 1.0;
  return {step, step, 1.5 * step};
}

Resolution Resolution::Fine(const Box& box, double tolerance) {
  constexpr int kFinestBits = 40;  // below the tolerance, a finer grid says nothing more
  const double side = LargerSide(box);
  const double step = std::max({side > 0.0 ? PowerOfTwoFor(side, 51) : std::numeric_limits<double>::min(),
                                PowerOfTwoFor(Magnitude(box), 52), PowerOfTwoFor(tolerance, kFinestBits)});
  return {step, std::max(tolerance, 2.0 * step), std::max(tolerance, 2.0 * step)};
}

// The centre is a node of the grid that passes through the origin: then coordinates of few bits keep their places exactly.
VertexSet::VertexSet(const Box& box, const Resolution& resolution, std::size_t expected)
    : centre_(std::floor(box.Center().x() / resolution.step) * resolution.step,
              std::floor(box.Center().y() / resolution.step) * resolution.step),
      step_(resolution.step),
      merge_(resolution.merge / resolution.step),
      first_(std::bit_ceil(2 * expected + 16), kNone) {
  merge2_ = merge_ * merge_;
  inverseCell_ = 1.0 / (kCellWidth * merge_);
  nodes_.reserve(expected);
  points_.reserve(expected);
  entries_.reserve(expected);
}

std::size_t VertexSet::Bucket(double cellX, double cellY) const {
  const auto x = static_cast<std::uint64_t>(static_cast<std::int64_t>(cellX));
  const auto y = static_cast<std::uint64_t>(static_cast<std::int64_t>(cellY));
  std::uint64_t h = x * 0x9e3779b97f4a7c15ULL;
  h = ((h ^ h >> 29U) + y) * 0xbf58476d1ce4e5b9ULL;
  return static_cast<std::size_t>(h ^ h >> 32U) & (first_.size() - 1);
}

std::uint32_t VertexSet::Add(GridPoint node, const ZBR_PT& p) {
  nodes_.push_back(node);
  points_.push_back(p);
  File(node, size() - 1);
  return size() - 1;
}

void VertexSet::File(GridPoint node, std::uint32_t vertex) {
  if (entries_.size() >= first_.size()) Grow();
  std::uint32_t& first = first_[Bucket(CellOf(node.x), CellOf(node.y))];
  entries_.push_back({node, vertex, first});
  first = static_cast<std::uint32_t>(entries_.size()) - 1;
}

void VertexSet::Grow() {
  first_.assign(2 * first_.size(), kNone);
  for (std::uint32_t i = 0; i < entries_.size(); ++i) {
    std::uint32_t& first = first_[Bucket(CellOf(entries_[i].node.x), CellOf(entries_[i].node.y))];
    entries_[i].next = std::exchange(first, i);
  }
}

std::uint32_t VertexSet::At(const ZBR_PT& p) {
  const ZBR_PT g = ToGrid(p);
  const GridPoint node = NodeAt(g);
  const double room = merge_ + 1.0;  // vertices are filed by their nodes, half a step beside their points
  const double x[] = {CellOf(g.x() - room), CellOf(g.x() + room)};
  const double y[] = {CellOf(g.y() - room), CellOf(g.y() + room)};
  std::uint32_t best = kNone;
  double bestDistance2 = merge2_;
  for (int i = 0; i < (x[0] == x[1] ? 1 : 2); ++i) {
    for (int j = 0; j < (y[0] == y[1] ? 1 : 2); ++j) {
      for (std::uint32_t e = first_[Bucket(x[i], y[j])]; e != kNone; e = entries_[e].next) {
        const Entry& entry = entries_[e];
        if (entry.node == node) return entry.vertex;
        const double distance2 = ToGrid(points_[entry.vertex]).Distance2(g);
        if (distance2 < bestDistance2 || (distance2 == bestDistance2 && entry.vertex < best)) {
          best = entry.vertex;
          bestDistance2 = distance2;
        }
      }
    }
  }
  if (best == kNone) return Add(node, p);
  File(node, best);
  return best;
}

std::uint32_t VertexSet::OnNode(GridPoint node, const ZBR_PT& p) {
  for (std::uint32_t e = first_[Bucket(CellOf(node.x), CellOf(node.y))]; e != kNone; e = entries_[e].next) {
    if (nodes_[entries_[e].vertex] == node) return entries_[e].vertex;
  }
  return Add(node, p);
}

}  // namespace zbr
