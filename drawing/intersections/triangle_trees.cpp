// Building the trees.
#include "drawing/intersections/triangle_trees.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Grid coordinates are below 2^51, so rounding to single precision moves them by at most this part of themselves.
constexpr float kRounding = 1.0F / 8388608.0F;  // 2^-23

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

// RunInRanges, but that what is small, like each of many shells, is worked on without ado.
template <class Work>
void InRanges(std::size_t count, unsigned threads, Work work) {
  if (count <= kRange) {
    work(0, 0, count);
  } else {
    RunInRanges(count, threads, work);
  }
}

GridPoint MiddleOf(const FloatBox& box) {
  return {static_cast<double>(box.low[0]) + box.high[0], static_cast<double>(box.low[1]) + box.high[1],
          static_cast<double>(box.low[2]) + box.high[2]};
}

// Lowest and highest coordinates.
struct Extents {
  GridPoint low, high;

  void Add(const GridPoint& p) {
    low = Lowest(low, p);
    high = Highest(high, p);
  }
};

template <class BoxOf>
Extents ExtentsOfMiddles(std::size_t count, const BoxOf& boxOf, unsigned threads) {
  const GridPoint first = MiddleOf(boxOf(0));
  std::vector<Extents> parts(RangeCount(count), {first, first});
  InRanges(count, threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    Extents extents = parts[range];
    for (std::size_t i = begin; i < end; ++i) extents.Add(MiddleOf(boxOf(i)));
    parts[range] = extents;
  });
  for (const Extents& part : parts) {
    parts[0].Add(part.low);
    parts[0].Add(part.high);
  }
  return parts[0];
}

// The order in which a space-filling curve through the box around the middles of boxes meets these middles. What is sorted are the
// highest digits of their places on the curve, hardly ever the same, with the boxes' numbers behind them in one word: of many boxes
// digit by digit, the last one first. For a million that takes a fourth of the time of comparing whole places.
// Boxes are asked for by number, and may be made anew each time: those of triangles take less time than their memory would.
template <class BoxOf>
class CurveOrder {
 public:
  CurveOrder(std::size_t count, const BoxOf& boxOf, unsigned threads) : count_(count), boxOf_(boxOf), threads_(threads) {
    const auto [low, high] = ExtentsOfMiddles(count, boxOf, threads);
    low_ = low;
    size_ = std::max({high.x - low.x, high.y - low.y, high.z - low.z, 1.0});
  }

  void Fill(std::span<std::uint32_t> order) const {
    const auto numberBits = static_cast<unsigned>(std::bit_width(count_));
    std::vector<std::uint64_t> keys(count_);
    InRanges(keys.size(), threads_, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (auto i = static_cast<std::uint32_t>(begin); i < end; ++i) keys[i] = PlaceOf(i) << 1U >> numberBits << numberBits | i;
    });
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
  static constexpr unsigned kDigitBits = 11;
  static constexpr std::size_t kPasses = (64 - kNotCounted) / kDigitBits, kValues = std::size_t{1} << kDigitBits;

  using Places = std::vector<std::pair<std::uint64_t, std::uint32_t>>;
  using Keys = std::vector<std::uint64_t>;

  // Of the middle of a box; 63 digits.
  std::uint64_t PlaceOf(std::uint32_t i) const {
    constexpr double kCells = 2097151.0;  // 2^21 - 1
    const GridPoint m = MiddleOf(boxOf_(i));
    const auto cell = [&](double x) { return Spread(static_cast<std::uint64_t>(x / size_ * kCells)); };
    return cell(m.x - low_.x) << 2U | cell(m.y - low_.y) << 1U | cell(m.z - low_.z);
  }

  void Sort(Keys& keys) const {
    constexpr std::size_t kWorthCounting = 2048;
    if (keys.size() < kWorthCounting) {
      std::sort(keys.begin(), keys.end());
      return;
    }
    Keys sorted(keys.size());
    for (std::size_t pass = 0; pass < kPasses; ++pass) {
      SortByDigit(keys, sorted, kNotCounted + kDigitBits * static_cast<unsigned>(pass));
      keys.swap(sorted);
    }
  }

  // Each thread has a share of the keys. Equal digits stay in order, so that shares change nothing.
  void SortByDigit(const Keys& keys, Keys& sorted, unsigned shift) const {
    const std::size_t shares = std::min<std::size_t>(std::max(threads_, 1U), RangeCount(keys.size()));
    const auto forShare = [&](std::size_t share, auto use) {
      const std::size_t end = keys.size() * (share + 1) / shares;
      for (std::size_t i = keys.size() * share / shares; i < end; ++i) use(keys[i], (keys[i] >> shift) & (kValues - 1));
    };
    std::vector<std::array<std::uint32_t, kValues>> starts(shares);
    RunParallel(shares, threads_, [&](std::size_t share) {
      auto& counts = starts[share];
      forShare(share, [&](std::uint64_t, std::size_t digit) { ++counts[digit]; });
    });
    std::uint32_t sum = 0;
    for (std::size_t digit = 0; digit < kValues; ++digit) {
      for (auto& start : starts) sum += std::exchange(start[digit], sum);
    }
    RunParallel(shares, threads_, [&](std::size_t share) {
      auto& next = starts[share];
      forShare(share, [&](std::uint64_t key, std::size_t digit) { sorted[next[digit]++] = key; });
    });
  }

  // By the whole places, then by number.
  void SortCrowd(std::span<std::uint32_t> crowd, Places& places) const {
    places.clear();
    for (const std::uint32_t i : crowd) places.emplace_back(PlaceOf(i), i);
    std::sort(places.begin(), places.end());
    std::transform(places.begin(), places.end(), crowd.begin(), [](const auto& place) { return place.second; });
  }

  const std::size_t count_;
  const BoxOf& boxOf_;
  const unsigned threads_;
  GridPoint low_;
  double size_ = 1.0;
};

template <class BoxOf>
void BuildTreeOf(const BoxOf& boxOf, FloatBox* boxes, std::span<std::uint32_t> places, unsigned threads) {
  CurveOrder(places.size(), boxOf, threads).Fill(places);
  InRanges(places.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) boxes[i] = boxOf(places[i]);
  });
  TreeView::Build(boxes, static_cast<std::uint32_t>(places.size()), threads);
}

}  // namespace

#if defined(__SSE2__)
FloatBox FloatBox::Around(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
  const auto xy = [](const GridPoint& p) { return _mm_loadu_pd(&p.x); };
  const auto z = [](const GridPoint& p) { return _mm_load_sd(&p.z); };
  const auto rounded = [](__m128d first, __m128d second) { return _mm_movelh_ps(_mm_cvtpd_ps(first), _mm_cvtpd_ps(second)); };
  const __m128 low = rounded(_mm_min_pd(xy(a), _mm_min_pd(xy(b), xy(c))), _mm_min_sd(z(a), _mm_min_sd(z(b), z(c))));
  const __m128 high = rounded(_mm_max_pd(xy(a), _mm_max_pd(xy(b), xy(c))), _mm_max_sd(z(a), _mm_max_sd(z(b), z(c))));
  const auto room = [](__m128 x) { return _mm_mul_ps(_mm_andnot_ps(_mm_set1_ps(-0.0F), x), _mm_set1_ps(kRounding)); };
  FloatBox box;
  _mm_store_ps(box.low.data(), _mm_sub_ps(low, room(low)));
  _mm_store_ps(box.high.data(), _mm_add_ps(high, room(high)));
  return box;
}
#else
FloatBox FloatBox::Around(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
  const GridPoint low = Lowest(a, Lowest(b, c)), high = Highest(a, Highest(b, c));
  const auto below = [](double x) { return static_cast<float>(x) - std::abs(static_cast<float>(x)) * kRounding; };
  const auto above = [](double x) { return static_cast<float>(x) + std::abs(static_cast<float>(x)) * kRounding; };
  return {{below(low.x), below(low.y), below(low.z), 0}, {above(high.x), above(high.y), above(high.z), 0}};
}
#endif

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

void TreeView::Build(FloatBox* boxes, std::uint32_t leaves, unsigned threads) {
  while (leaves > 1) {
    FloatBox* const parents = boxes + leaves;
    InRanges(Above(leaves), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        FloatBox parent = boxes[i * kFanOut];
        for (std::size_t k = i * kFanOut + 1; k < std::min<std::size_t>((i + 1) * kFanOut, leaves); ++k) parent.Add(boxes[k]);
        parents[i] = parent;
      }
    });
    boxes = parents;
    leaves = Above(leaves);
  }
}

void BuildTree(std::span<const FloatBox> leaves, FloatBox* boxes, std::span<std::uint32_t> places, unsigned threads) {
  BuildTreeOf([&](std::size_t i) -> const FloatBox& { return leaves[i]; }, boxes, places, threads);
}

TriangleTrees::TriangleTrees(const std::vector<GridPoint>& points, std::span<const std::array<std::uint32_t, 3>> corners,
                             const std::vector<std::uint32_t>& shellBegin, const std::vector<std::uint32_t>& pointBegin,
                             unsigned threads)
    : points_(points), corners_(corners), shellBegin_(shellBegin), isMade_(shellBegin.size() - 1), order_(corners.size()) {
  const auto shells = static_cast<std::uint32_t>(shellBegin.size() - 1);
  boxBegin_.reserve(shellBegin.size());
  boxBegin_.push_back(0);
  for (std::size_t s = 0; s < shells; ++s)
    boxBegin_.push_back(boxBegin_.back() + TreeView::BoxCount(shellBegin[s + 1] - shellBegin[s]));
  boxes_.reset(new FloatBox[boxBegin_.back()]);
  if (shells == 0) return;
  std::vector<FloatBox> shellLeaves(shells);
  ForEachShell(pointBegin, threads, [&](std::size_t s) {
    GridPoint low = points[pointBegin[s]], high = low;
    for (std::uint32_t p = pointBegin[s] + 1; p < pointBegin[s + 1]; ++p) {
      low = Lowest(low, points[p]);
      high = Highest(high, points[p]);
    }
    shellLeaves[s] = FloatBox::Around(low, high, high);
  });
  shellOrder_.resize(shells);
  shellBoxes_.reset(new FloatBox[TreeView::BoxCount(shells)]);
  BuildTree(shellLeaves, shellBoxes_.get(), shellOrder_, threads);
}

void TriangleTrees::Make(std::size_t s, unsigned threads) {
  if (isMade_[s] != 0) return;
  isMade_[s] = 1;
  const std::uint32_t first = shellBegin_[s], count = shellBegin_[s + 1] - first;
  const std::span<std::uint32_t> places(&order_[first], count);
  const auto boxOf = [&](std::size_t i) {
    const auto& c = corners_[first + i];
    return FloatBox::Around(points_[c[0]], points_[c[1]], points_[c[2]]);
  };
  BuildTreeOf(boxOf, boxes_.get() + boxBegin_[s], places, threads);
  for (std::uint32_t& place : places) place += first;
}

TreeView TriangleTrees::Shell(std::size_t s) const {
  return TreeView(boxes_.get() + boxBegin_[s], shellBegin_[s + 1] - shellBegin_[s]);
}

std::span<const std::uint32_t> TriangleTrees::Order(std::size_t s) const {
  return {&order_[shellBegin_[s]], shellBegin_[s + 1] - shellBegin_[s]};
}

std::span<const FloatBox> TriangleTrees::Leaves(std::size_t s) const {
  return {boxes_.get() + boxBegin_[s], shellBegin_[s + 1] - shellBegin_[s]};
}

}  // namespace zbr::drawing
