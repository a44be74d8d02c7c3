#include "arrangement/grid_vertices.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace zbr {
namespace {

// The smallest power of two at least 2^-30 of the box's larger side; half the box then is at most 2^29 steps. A power of two, so
// that coordinates that are few bits long keep their places exactly.
double StepFor(const Box& box) {
  const double side = std::max(box.xmax - box.xmin, box.ymax - box.ymin);
  if (!(side > 0.0)) return 1.0;
  int exponent = 0;
  const double fraction = std::frexp(side, &exponent);  // side = fraction * 2^exponent, fraction in [0.5, 1)
  return std::max(std::ldexp(1.0, exponent - (fraction == 0.5 ? 31 : 30)), std::numeric_limits<double>::min());
}

}  // namespace

GridVertices::GridVertices(const Box& box, std::size_t expected)
    : centre_(box.Center()), step_(StepFor(box)), table_(std::bit_ceil(2 * expected + 16)) {
  nodes_.reserve(expected);
  points_.reserve(expected);
}

// The place of the node in the table, or the free one where it belongs.
std::size_t GridVertices::Slot(GridPoint node) const {
  std::uint64_t h =
      (std::uint64_t{static_cast<std::uint32_t>(node.x)} << 32U | static_cast<std::uint32_t>(node.y)) * 0x9e3779b97f4a7c15ULL;
  h ^= h >> 32U;
  const std::size_t mask = table_.size() - 1;
  std::size_t slot = static_cast<std::size_t>(h * 0xbf58476d1ce4e5b9ULL >> 20U) & mask;
  while (table_[slot].vertex != kNone && !(table_[slot].node == node)) slot = (slot + 1) & mask;
  return slot;
}

std::uint32_t GridVertices::FindBeside(GridPoint node, const ZBR_PT& p) const {
  for (std::int32_t dx = -1; dx <= 1; ++dx) {
    for (std::int32_t dy = -1; dy <= 1; ++dy) {
      const std::uint32_t vertex = table_[Slot({node.x + dx, node.y + dy})].vertex;
      if (vertex != kNone && points_[vertex].Distance2(p) <= step_ * step_) return vertex;
    }
  }
  return kNone;
}

std::uint32_t GridVertices::AddVertex(GridPoint node, const ZBR_PT& p) {
  nodes_.push_back(node);
  points_.push_back(p);
  return size() - 1;
}

void GridVertices::Enter(GridPoint node, std::uint32_t vertex) {
  if (2 * (entries_ + 1) > table_.size()) Grow();
  table_[Slot(node)] = {node, vertex};
  ++entries_;
}

void GridVertices::Grow() {
  const std::vector<Entry> old = std::exchange(table_, std::vector<Entry>(2 * table_.size()));
  for (const Entry& entry : old) {
    if (entry.vertex != kNone) table_[Slot(entry.node)] = entry;
  }
}

std::uint32_t GridVertices::At(const ZBR_PT& p) {
  const GridPoint node = NodeAt(ToGrid(p));
  std::uint32_t vertex = table_[Slot(node)].vertex;
  if (vertex != kNone) return vertex;
  vertex = FindBeside(node, p);
  if (vertex == kNone) vertex = AddVertex(node, p);
  Enter(node, vertex);
  return vertex;
}

void GridVertices::AddOnNode(GridPoint node, const ZBR_PT& p) {
  Entry& entry = table_[Slot(node)];
  if (entry.vertex == kNone) {
    Enter(node, AddVertex(node, p));
  } else if (!(nodes_[entry.vertex] == node)) {
    entry.vertex = AddVertex(node, p);
  }
}

}  // namespace zbr
