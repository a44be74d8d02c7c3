#include "drawing/intersections/sheets.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "drawing/intersections/border_winding.h"
#include "drawing/intersections/triangle_trees.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Edges of a border, in roots of the number of triangles. A compact part has 3 to 6; looking at the border of a crumbled one takes
// longer than what it is to spare.
constexpr double kMostBorder = 16.0;

// What is seen of points from far along a direction: the products with two vectors, of which the direction is the cross product.
// Those of whole numbers are such numbers.
struct Picture {
  GridPoint direction, right, up;

  PicturePoint Of(const GridPoint& p) const { return {Dot(right, p), Dot(up, p)}; }
  static double Dot(const GridPoint& a, const GridPoint& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
};

// Along the axes and half-way between two of them. Each stands for its opposite, too.
constexpr std::array<Picture, 9> kPictures = {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                               {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
                                               {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
                                               {{0, 1, 1}, {0, 1, -1}, {-1, 0, 0}},
                                               {{0, 1, -1}, {0, 1, 1}, {1, 0, 0}},
                                               {{1, 0, 1}, {-1, 0, 1}, {0, -1, 0}},
                                               {{-1, 0, 1}, {1, 0, 1}, {0, 1, 0}},
                                               {{1, 1, 0}, {1, -1, 0}, {0, 0, -1}},
                                               {{1, -1, 0}, {1, 1, 0}, {0, 0, 1}}}};
constexpr std::uint32_t kAllPictures = (1U << 2 * kPictures.size()) - 1;

}  // namespace

Sheets::Sheets(const std::vector<GridPoint>& points, const Connectivity& mesh, std::span<const std::uint32_t> order,
               std::uint32_t first, unsigned threads)
    : points_(points), mesh_(mesh), order_(order), place_(order.size()), first_(first) {
  const auto count = static_cast<std::uint32_t>(order.size());
  for (std::uint32_t k = 0; k < count; ++k) place_[order[k] - first] = k;
  std::size_t level = 0;
  std::uint32_t nodes = count;
  while (nodes > 1 && level < kHighest) {
    nodes = (nodes + TreeView::kFanOut - 1) / TreeView::kFanOut;
    if (++level >= kLowest) isSheet_[level - kLowest].resize(nodes);
  }
  if (level < kLowest) return;
  RunParallel(nodes, threads, [&](std::size_t node) {
    const auto number = static_cast<std::uint32_t>(node);
    const auto [begin, end] = Leaves(level, number);
    std::vector<std::uint32_t> turns;
    turns.reserve(end - begin);
    for (std::uint32_t k = begin; k < end; ++k) turns.push_back(Turns(order_[k]));
    Find(level, number, turns);
  });
}

Sheets::Triangles Sheets::Leaves(std::size_t level, std::uint32_t node) const {
  const std::uint64_t size = std::uint64_t{1} << (2 * level);
  static_assert(TreeView::kFanOut == 4);
  const std::uint64_t end = std::min<std::uint64_t>((node + 1) * size, order_.size());
  return {static_cast<std::uint32_t>(node * size), static_cast<std::uint32_t>(end)};
}

// `turns` are those of the node's triangles.
void Sheets::Find(std::size_t level, std::uint32_t node, std::span<const std::uint32_t> turns) {
  const auto leaves = Leaves(level, node);
  std::uint32_t common = kAllPictures;
  for (const std::uint32_t t : turns) common &= t;
  // Another picture of it would hardly do better.
  if (common != 0 && IsInjective(leaves, static_cast<unsigned>(std::countr_zero(common)))) {
    isSheet_[level - kLowest][node] = 1;
    covered_ += turns.size();
    return;
  }
  if (level == kLowest) return;
  const std::size_t size = std::size_t{1} << (2 * (level - 1));
  for (std::uint32_t i = 0; i < TreeView::kFanOut && i * size < turns.size(); ++i)
    Find(level - 1, node * TreeView::kFanOut + i, turns.subspan(i * size, std::min(size, turns.size() - i * size)));
}

// The pictures in which the triangle is clearly counter-clockwise, two bits for each direction and its opposite.
std::uint32_t Sheets::Turns(std::uint32_t triangle) const {
  const auto& c = mesh_.corners[triangle];
  const PlaneThrough plane(points_[c[0]], points_[c[1]], points_[c[2]]);
  std::uint32_t turns = 0;
  for (std::size_t k = 0; k < kPictures.size(); ++k) {
    const int side = plane.FacesIfClear(kPictures[k].direction);
    if (side != 0) turns |= 1U << (2 * k + (side > 0 ? 0 : 1));
  }
  return turns;
}

// Two triangles that run along an edge the same way lie on the same side of it.
bool Sheets::IsInjective(const Triangles& leaves, unsigned turn) const {
  const Picture& picture = kPictures[turn / 2];
  const auto see = [&](std::uint32_t p) {
    const PicturePoint seen = picture.Of(points_[p]);
    return turn % 2 == 0 ? seen : PicturePoint{seen.y, seen.x};  // from behind
  };
  std::vector<BorderEdge> border;
  const double most = kMostBorder * std::sqrt(static_cast<double>(leaves[1] - leaves[0]));
  for (std::uint32_t k = leaves[0]; k < leaves[1]; ++k) {
    const std::uint32_t t = order_[k];
    const auto& c = mesh_.corners[t];
    for (std::size_t i = 0; i < 3; ++i) {
      const std::uint32_t edge = mesh_.edges[t][i], u = mesh_.Across(edge, t), from = c[i], to = c[(i + 1) % 3];
      if (u == Connectivity::kNone || place_[u - first_] < leaves[0] || place_[u - first_] >= leaves[1]) {
        border.push_back({from, to, see(from), see(to)});
        if (static_cast<double>(border.size()) > most) return false;
        continue;
      }
      const auto j =
          static_cast<std::size_t>(std::find(mesh_.edges[u].begin(), mesh_.edges[u].end(), edge) - mesh_.edges[u].begin());
      if (mesh_.corners[u][j] != to) return false;
    }
  }
  return WindsOnce(border);
}

}  // namespace zbr::drawing
