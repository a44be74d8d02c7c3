#include "drawing/intersections/slender_tree.h"

#include <algorithm>
#include <cmath>

namespace zbr::drawing {
namespace {

using Corners = std::array<std::uint32_t, 3>;

// Areas of boxes in areas of what is in them. Boxes of triangles of about equal sides have 3 to 6; below kAiry there is little to
// win, and the other boxes have to be a good deal smaller to be worth their making.
constexpr double kAiry = 24.0;
constexpr double kWorth = 0.5;

GridPoint Minus(const GridPoint& a, const GridPoint& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
double Dot(const GridPoint& a, const GridPoint& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
GridPoint Cross(const GridPoint& a, const GridPoint& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
GridPoint Unit(const GridPoint& a) {
  const double length = std::sqrt(Dot(a, a));
  return {a.x / length, a.y / length, a.z / length};
}

double AreaOf(const FloatBox& box) {
  const double x = static_cast<double>(box.high[0]) - box.low[0], y = static_cast<double>(box.high[1]) - box.low[1],
               z = static_cast<double>(box.high[2]) - box.low[2];
  return x * y + y * z + z * x;
}

// Axes at right angles, the first one along the edges, of which the long ones count most.
struct Frame {
  GridPoint u, v, w;

  GridPoint In(const GridPoint& p) const { return {Dot(u, p), Dot(v, p), Dot(w, p)}; }
};

Frame FrameAlong(std::span<const GridPoint> points, std::span<const Corners> corners) {
  GridPoint rows[3];  // the sum of e e^T over all edges
  for (const Corners& c : corners) {
    for (std::size_t i = 0; i < 3; ++i) {
      const GridPoint e = Minus(points[c[(i + 1) % 3]], points[c[i]]);
      rows[0] = {rows[0].x + e.x * e.x, rows[0].y + e.x * e.y, rows[0].z + e.x * e.z};
      rows[1] = {rows[0].y, rows[1].y + e.y * e.y, rows[1].z + e.y * e.z};
      rows[2] = {rows[0].z, rows[1].z, rows[2].z + e.z * e.z};
    }
  }
  // The power method, from the column of the largest diagonal element. It need not end: any axes will do.
  const std::size_t largest = rows[0].x >= rows[1].y && rows[0].x >= rows[2].z ? 0 : rows[1].y >= rows[2].z ? 1 : 2;
  GridPoint along = Unit(rows[largest]);
  constexpr int kSteps = 20;
  for (int step = 0; step < kSteps; ++step) along = Unit({Dot(rows[0], along), Dot(rows[1], along), Dot(rows[2], along)});
  const double x = std::abs(along.x), y = std::abs(along.y), z = std::abs(along.z);
  const GridPoint least = x <= y && x <= z ? GridPoint{1, 0, 0} : y <= z ? GridPoint{0, 1, 0} : GridPoint{0, 0, 1};
  const GridPoint across = Unit(Cross(along, least));
  return {along, across, Cross(along, across)};
}

}  // namespace

SlenderTree::SlenderTree(std::span<const GridPoint> points, std::span<const Corners> corners, std::uint32_t first,
                         std::span<const FloatBox> uprightBoxes, unsigned threads) {
  double inside = 0.0, upright = 0.0, slanting = 0.0;
  for (const FloatBox& box : uprightBoxes) upright += AreaOf(box);
  for (const Corners& c : corners) {
    const GridPoint twice = Cross(Minus(points[c[1]], points[c[0]]), Minus(points[c[2]], points[c[0]]));
    inside += 0.5 * std::sqrt(Dot(twice, twice));
  }
  if (!(upright > kAiry * inside) || inside == 0) return;
  const Frame frame = FrameAlong(points, corners);
  const auto count = static_cast<std::uint32_t>(corners.size());
  std::vector<FloatBox> leaves;
  leaves.reserve(count);
  constexpr double kRounding = 4.0;  // of coordinates in the frame; on the grid they are whole numbers
  for (const Corners& c : corners) {
    const GridPoint p = frame.In(points[c[0]]), q = frame.In(points[c[1]]), r = frame.In(points[c[2]]);
    const GridPoint low = Lowest(p, Lowest(q, r)), high = Highest(p, Highest(q, r));
    const GridPoint before = {low.x - kRounding, low.y - kRounding, low.z - kRounding};
    leaves.push_back(FloatBox::Around(before, before, {high.x + kRounding, high.y + kRounding, high.z + kRounding}));
    slanting += AreaOf(leaves.back());
    if (slanting > kWorth * upright) return;
  }
  boxes_.resize(TreeView::BoxCount(count));
  order_.resize(count);
  BuildTree(leaves, boxes_.data(), order_, threads);
  for (std::uint32_t& place : order_) place += first;
}

}  // namespace zbr::drawing
