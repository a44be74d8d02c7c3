// Building the trees.
#include "drawing/intersections/triangle_trees.h"

#include <algorithm>
#include <bit>
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

// The order in which a space-filling curve through the box around the middles of boxes meets these middles. What is sorted are the
// highest digits of their places on the curve, hardly ever the same, with the boxes' numbers behind them in one word: of many boxes
// digit by digit, the last one first. For a million that takes a fourth of the time of comparing whole places.
class CurveOrder {
 public:
  explicit CurveOrder(std::span<const FloatBox> boxes) : boxes_(boxes), low_(MiddleOf(boxes.front())) {
    GridPoint high = low_;
    for (const FloatBox& box : boxes) {
      const GridPoint m = MiddleOf(box);
      low_ = Lowest(low_, m);
      high = Highest(high, m);
    }
    size_ = std::max({high.x - low_.x, high.y - low_.y, high.z - low_.z, 1.0});
  }

  void Fill(std::span<std::uint32_t> order) const {
    const auto numberBits = static_cast<unsigned>(std::bit_width(boxes_.size()));
    std::vector<std::uint64_t> keys;
    keys.reserve(boxes_.size());
    for (std::uint32_t i = 0; i < boxes_.size(); ++i) keys.push_back(PlaceOf(i) << 1U >> numberBits << numberBits | i);
    Sort(keys);
    const unsigned crowdBits = std::max(numberBits, kNotCounted);
    const std::uint64_t number = (std::uint64_t{1} << numberBits) - 1;
    Places crowd;
    for (std::size_t begin = 0, end = 0; begin < keys.size(); begin = end) {
      do {
        order[end] = static_cast<std::uint32_t>(keys[end] & number);
        ++end;
      } while (end < keys.size() && keys[end] >> crowdBits == keys[begin] >> crowdBits);
      if (end - begin > 1) SortCrowd(order.subspan(begin, end - begin), crowd);
    }
  }

 private:
  static constexpr unsigned kNotCounted = 20;  // lowest digits of a word, a number's of a million boxes

  using Places = std::vector<std::pair<std::uint64_t, std::uint32_t>>;

  // Of the middle of a box; 63 digits.
  std::uint64_t PlaceOf(std::uint32_t i) const {
    constexpr double kCells = 2097151.0;  // 2^21 - 1
    const GridPoint m = MiddleOf(boxes_[i]);
    const auto cell = [&](double x) { return Spread(static_cast<std::uint64_t>(x / size_ * kCells)); };
    return cell(m.x - low_.x) << 2U | cell(m.y - low_.y) << 1U | cell(m.z - low_.z);
  }

  static void Sort(std::vector<std::uint64_t>& keys) {
    constexpr std::size_t kWorthCounting = 2048;
    if (keys.size() < kWorthCounting) {
      std::sort(keys.begin(), keys.end());
      return;
    }
    constexpr unsigned kDigitBits = 11;
    constexpr std::size_t kPasses = (64 - kNotCounted) / kDigitBits, kValues = std::size_t{1} << kDigitBits;
    const auto digit = [](std::uint64_t key, std::size_t pass) {
      return (key >> (kNotCounted + kDigitBits * pass)) & (kValues - 1);
    };
    std::array<std::array<std::uint32_t, kValues>, kPasses> starts{};
    for (const std::uint64_t key : keys) {
      for (std::size_t pass = 0; pass < kPasses; ++pass) ++starts[pass][digit(key, pass)];
    }
    std::vector<std::uint64_t> sorted(keys.size());
    for (std::size_t pass = 0; pass < kPasses; ++pass) {
      std::exclusive_scan(starts[pass].begin(), starts[pass].end(), starts[pass].begin(), 0U);
      for (const std::uint64_t key : keys) sorted[starts[pass][digit(key, pass)]++] = key;
      keys.swap(sorted);
    }
  }

  // By the whole places, then by number.
  void SortCrowd(std::span<std::uint32_t> crowd, Places& places) const {
    places.clear();
    for (const std::uint32_t i : crowd) places.emplace_back(PlaceOf(i), i);
    std::sort(places.begin(), places.end());
    std::transform(places.begin(), places.end(), crowd.begin(), [](const auto& place) { return place.second; });
  }

  const std::span<const FloatBox> boxes_;
  GridPoint low_;
  double size_;
};

}  // namespace

FloatBox FloatBox::Empty() {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  return {{kInfinity, kInfinity, kInfinity, 0}, {-kInfinity, -kInfinity, -kInfinity, 0}};
}

FloatBox FloatBox::Around(const GridPoint& low, const GridPoint& high) {
  return {{Below(low.x), Below(low.y), Below(low.z), 0},
          {drawing::Above(high.x), drawing::Above(high.y), drawing::Above(high.z), 0}};
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

void BuildTree(std::span<const FloatBox> leaves, std::span<FloatBox> boxes, std::span<std::uint32_t> places) {
  CurveOrder(leaves).Fill(places);
  for (std::size_t i = 0; i < leaves.size(); ++i) boxes[i] = leaves[places[i]];
  TreeView::Build(boxes.data(), static_cast<std::uint32_t>(leaves.size()));
}

TriangleTrees::TriangleTrees(const std::vector<GridPoint>& points, const std::vector<std::array<std::uint32_t, 3>>& corners,
                             const std::vector<std::uint32_t>& shellBegin)
    : shellBegin_(shellBegin), order_(corners.size()) {
  const auto shells = static_cast<std::uint32_t>(shellBegin.size() - 1);
  boxBegin_.push_back(0);
  for (std::size_t s = 0; s < shells; ++s)
    boxBegin_.push_back(boxBegin_.back() + TreeView::BoxCount(shellBegin[s + 1] - shellBegin[s]));
  boxes_.resize(boxBegin_.back());
  std::vector<FloatBox> shellLeaves, leaves;
  for (std::size_t s = 0; s < shells; ++s) {
    const std::uint32_t first = shellBegin[s], count = shellBegin[s + 1] - first;
    leaves.clear();
    leaves.reserve(count);
    for (std::uint32_t t = first; t < first + count; ++t) {
      const GridPoint &a = points[corners[t][0]], &b = points[corners[t][1]], &c = points[corners[t][2]];
      leaves.push_back(FloatBox::Around(Lowest(a, Lowest(b, c)), Highest(a, Highest(b, c))));
    }
    const std::span<std::uint32_t> places(order_.data() + first, count);
    BuildTree(leaves, std::span(boxes_).subspan(boxBegin_[s]), places);
    for (std::uint32_t& place : places) place += first;
    shellLeaves.push_back(Shell(s).Root());
  }
  if (shells == 0) return;
  shellOrder_.resize(shells);
  shellBoxes_.resize(TreeView::BoxCount(shells));
  BuildTree(shellLeaves, shellBoxes_, shellOrder_);
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
