#include "drawing/intersections/sheets.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "drawing/intersections/border_winding.h"
#include "drawing/intersections/pictures.h"
#include "drawing/intersections/triangle_trees.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Edges of a border, in roots of the number of triangles. A compact part has 3 to 6; looking at the border of a crumbled one takes
// longer than what it is to spare.
constexpr double kMostBorder = 16.0;

// Added to a neighbour that runs along the common edge the same way: there are fewer triangles than this.
constexpr std::uint32_t kTurned = 0x80000000U;

}  // namespace

Sheets::Sheets(const std::vector<GridPoint>& points, const Connectivity& mesh, std::span<const std::uint32_t> order,
               std::uint32_t first, unsigned threads)
    : points_(points), mesh_(mesh), order_(order), first_(first) {
  std::size_t level = 0;
  auto nodes = static_cast<std::uint32_t>(order.size());
  while (nodes > 1 && level < kHighest) {
    nodes = (nodes + TreeView::kFanOut - 1) / TreeView::kFanOut;
    if (++level >= kLowest) isSheet_[level - kLowest].resize(nodes);
  }
  if (level < kLowest) return;
  LookAtTriangles(threads);
  RunParallel(nodes, threads, [&](std::size_t node) { Find(level, static_cast<std::uint32_t>(node)); });
}

// In their own order, in which their points and neighbours are near each other.
void Sheets::LookAtTriangles(unsigned threads) {
  place_.reset(new std::uint32_t[order_.size()]);
  turns_.reset(new std::uint32_t[order_.size()]);
  neighbours_.reset(new std::array<std::uint32_t, 3>[order_.size()]);
  RunInRanges(order_.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) place_[order_[k] - first_] = static_cast<std::uint32_t>(k);
  });
  RunInRanges(order_.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      const auto& c = mesh_.corners[first_ + t];
      turns_[place_[t]] = TurnsOf(PlaneThrough(points_[c[0]], points_[c[1]], points_[c[2]]));
      for (std::size_t i = 0; i < 3; ++i) neighbours_[t][i] = Neighbour(static_cast<std::uint32_t>(first_ + t), i);
    }
  });
}

// Of two neighbours the later one tells which way they run.
std::uint32_t Sheets::Neighbour(std::uint32_t t, std::size_t i) const {
  const std::uint32_t edge = mesh_.edges[t][i], u = mesh_.Across(edge, t);
  if (u == Connectivity::kNone) return Connectivity::kNone;
  const std::uint32_t place = place_[u - first_];
  if (u > t) return place;
  const auto& edges = mesh_.edges[u];
  const std::size_t j = edges[0] == edge ? 0 : edges[1] == edge ? 1 : 2;
  return mesh_.corners[u][j] == mesh_.corners[t][(i + 1) % 3] ? place : place | kTurned;
}

Sheets::Triangles Sheets::Leaves(std::size_t level, std::uint32_t node) const {
  const std::uint64_t size = std::uint64_t{1} << (2 * level);
  static_assert(TreeView::kFanOut == 4);
  const std::uint64_t end = std::min<std::uint64_t>((node + 1) * size, order_.size());
  return {static_cast<std::uint32_t>(node * size), static_cast<std::uint32_t>(end)};
}

void Sheets::Find(std::size_t level, std::uint32_t node) {
  const auto leaves = Leaves(level, node);
  Turns common = kAllTurns;
  for (std::uint32_t k = leaves[0]; k < leaves[1]; ++k) common &= turns_[k];
  // Another picture of it would hardly do better.
  if (common != 0 && IsInjective(leaves, static_cast<unsigned>(std::countr_zero(common)))) {
    isSheet_[level - kLowest][node] = 1;
    covered_ += leaves[1] - leaves[0];
    return;
  }
  if (level == kLowest) return;
  const auto end =
      std::min<std::uint32_t>((node + 1) * TreeView::kFanOut, static_cast<std::uint32_t>(isSheet_[level - 1 - kLowest].size()));
  for (std::uint32_t child = node * TreeView::kFanOut; child < end; ++child) Find(level - 1, child);
}

// Two triangles that run along an edge the same way lie on the same side of it.
bool Sheets::IsInjective(const Triangles& leaves, unsigned turn) const {
  const auto see = [&](std::uint32_t p) { return See(turn, points_[p]); };
  const auto isInside = [&](std::uint32_t place) { return place >= leaves[0] && place < leaves[1]; };
  std::vector<BorderEdge> border;
  const double most = kMostBorder * std::sqrt(static_cast<double>(leaves[1] - leaves[0]));
  for (std::uint32_t k = leaves[0]; k < leaves[1]; ++k) {
    const std::uint32_t t = order_[k];
    for (std::size_t i = 0; i < 3; ++i) {
      const std::uint32_t place = neighbours_[t - first_][i];
      if (isInside(place)) continue;
      if (place != Connectivity::kNone && isInside(place & ~kTurned)) return false;
      const auto& c = mesh_.corners[t];
      const std::uint32_t from = c[i], to = c[(i + 1) % 3];
      border.push_back({from, to, see(from), see(to)});
      if (static_cast<double>(border.size()) > most) return false;
    }
  }
  return WindsOnce(border);
}

}  // namespace zbr::drawing
