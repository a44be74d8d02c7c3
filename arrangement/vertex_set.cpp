#include "arrangement/vertex_set.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "core/cost.h"
#include "core/radix_sort.h"

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

std::vector<std::uint32_t> SweepOrder(std::span<const GridPoint> nodes) {
  constexpr double kMostKeys = 0x1p32 - 1.0;
  struct Item {
    std::uint32_t key;
    std::uint32_t place;
  };
  std::vector<std::uint32_t> order;
  if (nodes.empty()) return order;
  std::vector<Item> items(nodes.size());
  std::vector<Item> scratch;
  const auto [leftmost, rightmost] =
      std::minmax_element(nodes.begin(), nodes.end(), [](const GridPoint& a, const GridPoint& b) { return a.x < b.x; });
  const double left = leftmost->x;
  const double keysPerStep = kMostKeys / std::max(rightmost->x - left, 1.0);
  for (std::uint32_t i = 0; i < items.size(); ++i) items[i] = {static_cast<std::uint32_t>((nodes[i].x - left) * keysPerStep), i};
  const auto keyOf = [](const Item& item) { return item.key; };
  RadixSort(items, scratch, keyOf);
  ForEachRun(items, keyOf, [&](std::span<Item> run) {
    if (run.size() < 2) return;
    std::sort(run.begin(), run.end(), [&](const Item& i, const Item& j) {
      return nodes[i.place] == nodes[j.place] ? i.place < j.place : IsBefore(nodes[i.place], nodes[j.place]);
    });
  });
  order.reserve(items.size());
  for (const Item& item : items) order.push_back(item.place);
  return order;
}

NodeGrid::NodeGrid(const Box& box, double step)
    : centre_(std::floor(box.Center().x() / step) * step, std::floor(box.Center().y() / step) * step), step_(step) {}

VertexSet::VertexSet(const NodeGrid& grid, const Resolution& resolution, std::size_t expected)
    : grid_(grid), merge_(resolution.merge / resolution.step), byNode_(expected), byCell_(expected) {
  merge2_ = merge_ * merge_;
  inverseCell_ = 1.0 / (kCellWidth * merge_);
  nodes_.reserve(expected);
  points_.reserve(expected);
  entries_.reserve(expected);
}

VertexSet::Chains::Chains(std::size_t expected) : first_(std::bit_ceil(2 * expected + 16), kNone) {
  items_.reserve(expected);
}

void VertexSet::Chains::File(std::uint64_t hash) {
  if (items_.size() >= first_.size()) {
    first_.assign(2 * first_.size(), kNone);
    for (std::uint32_t i = 0; i < items_.size(); ++i) {
      items_[i].next = std::exchange(first_[items_[i].hash & (first_.size() - 1)], i);
    }
  }
  std::uint32_t& first = first_[hash & (first_.size() - 1)];
  items_.push_back({hash, std::exchange(first, static_cast<std::uint32_t>(items_.size()))});
}

// Of whole numbers.
std::uint64_t VertexSet::Hash(double x, double y) {
  std::uint64_t h = static_cast<std::uint64_t>(static_cast<std::int64_t>(x)) * 0x9e3779b97f4a7c15ULL;
  h = ((h ^ h >> 29U) + static_cast<std::uint64_t>(static_cast<std::int64_t>(y))) * 0xbf58476d1ce4e5b9ULL;
  return h ^ h >> 32U;
}

std::uint32_t VertexSet::Add(GridPoint node, const ZBR_PT& p) {
  nodes_.push_back(node);
  points_.push_back(p);
  FileNode(node, size() - 1);
  return size() - 1;
}

void VertexSet::FileNode(GridPoint node, std::uint32_t vertex) {
  entries_.push_back({node, vertex});
  byNode_.File(Hash(node.x, node.y));
}

// The vertex of the node, if that was asked for before.
std::uint32_t VertexSet::Find(GridPoint node) const {
  for (std::uint32_t e = byNode_.First(Hash(node.x, node.y)); e != kNone; e = byNode_.Next(e)) {
    ZBR_COUNT(nodes, 1);
    if (entries_[e].node == node) return entries_[e].vertex;
  }
  return kNone;
}

// The nearest within the merging distance of a place on the grid.
std::uint32_t VertexSet::NearestTo(const ZBR_PT& g) const {
  const double x[] = {CellOf(g.x() - Room()), CellOf(g.x() + Room())};
  const double y[] = {CellOf(g.y() - Room()), CellOf(g.y() + Room())};
  std::uint32_t best = kNone;
  double bestDistance2 = merge2_;
  for (int i = 0; i < (x[0] == x[1] ? 1 : 2); ++i) {
    for (int j = 0; j < (y[0] == y[1] ? 1 : 2); ++j) {
      for (std::uint32_t k = byCell_.First(Hash(x[i], y[j])); k != kNone; k = byCell_.Next(k)) {
        ZBR_COUNT(nodes, 1);
        const std::uint32_t v = sorted_ + k;
        const double distance2 = grid_.ToGrid(points_[v]).Distance2(g);
        if (distance2 < bestDistance2 || (distance2 == bestDistance2 && v < best)) {
          best = v;
          bestDistance2 = distance2;
        }
      }
    }
  }
  return best;
}

std::uint32_t VertexSet::At(const ZBR_PT& p) {
  const ZBR_PT g = grid_.ToGrid(p);
  const GridPoint node = NodeGrid::NodeAt(g);
  if (const std::uint32_t known = Find(node); known != kNone) return known;
  if (const std::uint32_t near = NearestTo(g); near != kNone) {
    FileNode(node, near);
    return near;
  }
  byCell_.File(Hash(CellOf(node.x), CellOf(node.y)));
  return Add(node, p);
}

// Columns of points with one x that no other column comes near, and in them the points that are not near the next or the one
// before.
std::vector<std::uint32_t> VertexSet::AddApart(std::span<const ZBR_PT> points) {
  constexpr std::size_t kPerCrossing = 8;  // points; where crossings are more frequent, there is more to do than to make room
  std::vector<GridPoint> places;
  places.reserve(points.size());
  for (const ZBR_PT& p : points) places.push_back(grid_.NodeOf(p));
  nodes_.reserve(points.size() + points.size() / kPerCrossing);
  points_.reserve(nodes_.capacity());
  const std::vector<std::uint32_t> order = SweepOrder(places);
  std::vector<std::uint32_t> vertexOf(points.size(), kNone);
  const auto x = [&](std::size_t i) { return places[order[i]].x; };
  const auto y = [&](std::size_t i) { return places[order[i]].y; };
  const auto endOfColumn = [&](std::size_t i) {
    const double column = x(i);
    while (i < order.size() && x(i) == column) ++i;
    return i;
  };
  for (std::size_t first = 0; first < order.size();) {
    const std::size_t end = endOfColumn(first);
    const bool isNear = (first > 0 && x(first) - x(first - 1) <= Room()) || (end < order.size() && x(end) - x(first) <= Room());
    for (std::size_t i = first; i < end && !isNear;) {
      std::size_t next = i + 1;
      while (next < end && y(next) == y(i)) ++next;
      const bool isCrowded = (i > first && y(i) - y(i - 1) <= Room()) || (next < end && y(next) - y(i) <= Room());
      if (!isCrowded) {
        for (std::size_t k = i; k < next; ++k) vertexOf[order[k]] = size();
        nodes_.push_back(places[order[i]]);
        points_.push_back(points[order[i]]);
      }
      i = next;
    }
    first = end;
  }
  sorted_ = size();
  return vertexOf;
}

void VertexSet::Clear() {
  FreeLarge(nodes_);
  FreeLarge(points_);
  FreeLarge(entries_);
  byNode_.Clear();
  byCell_.Clear();
}

std::uint32_t VertexSet::OnNode(GridPoint node, const ZBR_PT& p) {
  const auto end = nodes_.begin() + sorted_;
  const auto at = std::lower_bound(nodes_.begin(), end, node, IsBefore);
  if (at != end && *at == node) return static_cast<std::uint32_t>(at - nodes_.begin());
  const std::uint32_t known = Find(node);
  return known != kNone && nodes_[known] == node ? known : Add(node, p);
}

}  // namespace zbr
