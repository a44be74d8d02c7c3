// Building the trees.
#include "drawing/intersections/triangle_trees.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace zbr::drawing {
namespace {

// Grid coordinates are below 2^51, so rounding to single precision moves them by at most this part of themselves.
constexpr float kRounding = 1.0F / 8388608.0F;  // 2^-23

float Below(double x) {
  const auto f = static_cast<float>(x);
  return f - std::abs(f) * kRounding;
}
float Above(double x) {
  const auto f = static_cast<float>(x);
  return f + std::abs(f) * kRounding;
}

std::uint32_t Above(std::uint32_t count) {
  return (count + TreeView::kFanOut - 1) / TreeView::kFanOut;
}

// The lowest 21 binary digits of x with two zeros between each.
std::uint64_t Spread(std::uint64_t x) {
  x = (x | x << 32U) & 0x1f00000000ffffU;
  x = (x | x << 16U) & 0x1f0000ff0000ffU;
  x = (x | x << 8U) & 0x100f00f00f00f00fU;
  x = (x | x << 4U) & 0x10c30c30c30c30c3U;
  return (x | x << 2U) & 0x1249249249249249U;
}

GridPoint MiddleOf(const FloatBox& box) {
  return {static_cast<double>(box.low[0]) + box.high[0], static_cast<double>(box.low[1]) + box.high[1],
          static_cast<double>(box.low[2]) + box.high[2]};
}

// Sorts boxes along the curve; `places` says where each was.
void SortBoxes(std::span<FloatBox> boxes, std::span<std::uint32_t> places) {
  std::vector<GridPoint> middles;
  middles.reserve(boxes.size());
  for (const FloatBox& box : boxes) middles.push_back(MiddleOf(box));
  std::iota(places.begin(), places.end(), 0U);
  SortAlongCurve(places, middles);
  const std::vector<FloatBox> unsorted(boxes.begin(), boxes.end());
  for (std::size_t i = 0; i < boxes.size(); ++i) boxes[i] = unsorted[places[i]];
}

}  // namespace

FloatBox FloatBox::Empty() {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  return {{kInfinity, kInfinity, kInfinity, 0}, {-kInfinity, -kInfinity, -kInfinity, 0}};
}

void FloatBox::Add(const GridPoint& p) {
  const std::array<double, 3> x = {p.x, p.y, p.z};
  for (std::size_t i = 0; i < 3; ++i) {
    low[i] = std::min(low[i], Below(x[i]));
    high[i] = std::max(high[i], drawing::Above(x[i]));
  }
}

void FloatBox::Add(const FloatBox& o) {
  for (std::size_t i = 0; i < 3; ++i) {
    low[i] = std::min(low[i], o.low[i]);
    high[i] = std::max(high[i], o.high[i]);
  }
}

TreeView::TreeView(const FloatBox* boxes, std::uint32_t leaves) {
  levels_[0] = boxes;
  counts_[0] = leaves;
  while (counts_[top_] > 1) {
    levels_[top_ + 1] = levels_[top_] + counts_[top_];
    counts_[top_ + 1] = Above(counts_[top_]);
    ++top_;
  }
}

std::size_t TreeView::BoxCount(std::uint32_t leaves) {
  std::size_t count = leaves;
  while (leaves > 1) count += leaves = Above(leaves);
  return count;
}

void TreeView::Build(FloatBox* boxes, std::uint32_t leaves) {
  while (leaves > 1) {
    FloatBox* const parents = boxes + leaves;
    for (std::uint32_t i = 0; i < leaves; ++i) {
      if (i % kFanOut == 0) parents[i / kFanOut] = FloatBox::Empty();
      parents[i / kFanOut].Add(boxes[i]);
    }
    boxes = parents;
    leaves = Above(leaves);
  }
}

void SortAlongCurve(std::span<std::uint32_t> places, std::span<const GridPoint> middles) {
  GridPoint low = middles.front(), high = low;
  for (const GridPoint& m : middles) {
    low = {std::min(low.x, m.x), std::min(low.y, m.y), std::min(low.z, m.z)};
    high = {std::max(high.x, m.x), std::max(high.y, m.y), std::max(high.z, m.z)};
  }
  constexpr double kCells = 2097151.0;  // 2^21 - 1
  const double size = std::max({high.x - low.x, high.y - low.y, high.z - low.z, 1.0});
  const auto cell = [size](double x) { return Spread(static_cast<std::uint64_t>(x / size * kCells)); };
  std::vector<std::pair<std::uint64_t, std::uint32_t>> coded;
  coded.reserve(places.size());
  for (const std::uint32_t i : places) {
    const GridPoint& m = middles[i];
    coded.emplace_back(cell(m.x - low.x) << 2U | cell(m.y - low.y) << 1U | cell(m.z - low.z), i);
  }
  std::sort(coded.begin(), coded.end());
  for (std::size_t k = 0; k < places.size(); ++k) places[k] = coded[k].second;
}

void BuildTree(std::span<FloatBox> boxes, std::span<std::uint32_t> places) {
  SortBoxes(boxes, places);
  TreeView::Build(boxes.data(), static_cast<std::uint32_t>(boxes.size()));
}

TriangleTrees::TriangleTrees(const std::vector<GridPoint>& points, const std::vector<std::array<std::uint32_t, 3>>& corners,
                             const std::vector<std::uint32_t>& shellBegin)
    : shellBegin_(shellBegin), order_(corners.size()) {
  const auto shells = static_cast<std::uint32_t>(shellBegin.size() - 1);
  boxBegin_.push_back(0);
  for (std::size_t s = 0; s < shells; ++s)
    boxBegin_.push_back(boxBegin_.back() + TreeView::BoxCount(shellBegin[s + 1] - shellBegin[s]));
  boxes_.resize(boxBegin_.back());
  shellBoxes_.resize(TreeView::BoxCount(shells));
  for (std::size_t s = 0; s < shells; ++s) {
    const std::uint32_t first = shellBegin[s], count = shellBegin[s + 1] - first;
    const std::span<FloatBox> leaves(boxes_.data() + boxBegin_[s], count);
    for (std::uint32_t t = 0; t < count; ++t) {
      leaves[t] = FloatBox::Empty();
      for (const std::uint32_t p : corners[first + t]) leaves[t].Add(points[p]);
    }
    const std::span<std::uint32_t> places(order_.data() + first, count);
    BuildTree(leaves, places);
    for (std::uint32_t& place : places) place += first;
    shellBoxes_[s] = Shell(s).Root();
  }
  if (shells == 0) return;
  shellOrder_.resize(shells);
  BuildTree(std::span(shellBoxes_).first(shells), shellOrder_);
}

TreeView TriangleTrees::Shell(std::size_t s) const {
  return TreeView(boxes_.data() + boxBegin_[s], shellBegin_[s + 1] - shellBegin_[s]);
}

std::span<const std::uint32_t> TriangleTrees::Order(std::size_t s) const {
  return std::span(order_).subspan(shellBegin_[s], shellBegin_[s + 1] - shellBegin_[s]);
}

std::span<const FloatBox> TriangleTrees::Leaves(std::size_t s) const {
  return {boxes_.data() + boxBegin_[s], shellBegin_[s + 1] - shellBegin_[s]};
}

}  // namespace zbr::drawing
