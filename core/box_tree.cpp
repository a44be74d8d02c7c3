// Building box hierarchies, the inner steps of their join, and the order along a space-filling curve.
#include "core/box_tree.h"

#include <numeric>

#include "core/assert.h"
#include "core/check.h"
#include "core/radix_sort.h"

namespace zbr {

std::span<Box> BoxTree::StartLeaves(std::size_t n) {
  begin_.assign(1, 0);
  std::size_t total = 0;
  for (std::size_t level = n; level > 0; level = level == 1 ? 0 : (level + kFanOut - 1) / kFanOut) {
    total += level;
    begin_.push_back(static_cast<std::uint32_t>(total));
  }
  boxes_.clear();
  boxes_.resize(total);
  return std::span<Box>(boxes_).first(n);
}

void BoxTree::BuildInner() {
  for (int level = 1; level <= TopLevel(); ++level) {
    const Box* below = Level(level - 1);
    const std::uint32_t count = Count(level - 1);
    Box* boxes = boxes_.data() + begin_[static_cast<std::size_t>(level)];
    for (std::uint32_t i = 0; i < count; ++i) boxes[i / kFanOut].Add(below[i]);
  }
  ZBR_CHECK(BoxTreeFault(*this));
}

BoxJoin::Frame BoxJoin::Keep(const Box& box, int level, std::size_t begin, std::size_t count) {
  Reserve(count);
  ZBR_COUNT(nodes, count);
  const Box* boxes = b_.Level(level);
  std::uint32_t* out = stack_.data() + top_;
  std::size_t kept = 0;
  for (std::size_t i = begin; i < begin + count; ++i) {
    const std::uint32_t node = stack_[i];
    out[kept] = node;
    kept += Overlap(box, boxes[node]);
  }
  const Frame frame{top_, kept, level};
  top_ += kept;
  return frame;
}

BoxJoin::Frame BoxJoin::Split(const Box& box, const Frame& nodes) {
  Reserve(nodes.count * BoxTree::kFanOut);
  ZBR_COUNT(nodes, nodes.count * BoxTree::kFanOut);
  const Box* boxes = b_.Level(nodes.level - 1);
  const std::uint32_t count = b_.Count(nodes.level - 1);
  std::uint32_t* out = stack_.data() + top_;
  std::size_t kept = 0;
  for (std::size_t i = nodes.begin; i < nodes.begin + nodes.count; ++i) {
    const std::uint32_t first = stack_[i] * BoxTree::kFanOut;
    const std::uint32_t last = std::min(first + BoxTree::kFanOut, count);
    for (std::uint32_t child = first; child < last; ++child) {
      out[kept] = child;
      kept += Overlap(box, boxes[child]);
    }
  }
  const Frame frame{top_, kept, nodes.level - 1};
  top_ += kept;
  return frame;
}

namespace {

constexpr double kCells = 65535.0;  // per axis, so that codes have 32 bits

// Place of a cell along the Hilbert curve (Hilbert 1891). Each step takes one bit of either coordinate, names the quadrant, and
// turns the rest of the coordinates so that the curve through that quadrant runs like the one through the whole. Without branches:
// their outcome would be random.
std::uint32_t HilbertCode(std::uint32_t x, std::uint32_t y) {
  std::uint32_t code = 0;
  for (int bit = 15; bit >= 0; --bit) {
    const std::uint32_t rx = (x >> bit) & 1U;
    const std::uint32_t ry = (y >> bit) & 1U;
    code = code << 2U | ((3U * rx) ^ ry);
    const std::uint32_t flip = 0U - (rx & ~ry);
    x ^= flip;
    y ^= flip;
    const std::uint32_t exchange = (x ^ y) & (ry - 1U);
    x ^= exchange;
    y ^= exchange;
  }
  return code;
}

struct CodedIndex {
  std::uint32_t code;
  std::uint32_t index;
};

// More centres in one cell than this are told apart by a grid of their own.
constexpr std::ptrdiff_t kCrowd = 16;

class CurveOrder {
 public:
  explicit CurveOrder(std::span<const ZBR_PT> centers) : centers_(centers) {}

  void Sort(std::span<std::uint32_t> indices) {
    Box extent;
    for (const std::uint32_t i : indices) extent.Add(centers_[i]);
    const double size = std::max(extent.xmax - extent.xmin, extent.ymax - extent.ymin);
    if (!(size > 0.0 && size < std::numeric_limits<double>::infinity())) return;
    const double scale = kCells / size;
    const auto cell = [scale](double offset) {
      const double c = offset * scale;
      return c > 0.0 ? static_cast<std::uint32_t>(std::min(c, kCells)) : 0;  // NaN goes to 0 as well
    };
    std::vector<CodedIndex> coded(indices.size());
    for (std::size_t k = 0; k < indices.size(); ++k) {
      const ZBR_PT& c = centers_[indices[k]];
      coded[k] = {HilbertCode(cell(c.x() - extent.xmin), cell(c.y() - extent.ymin)), indices[k]};
    }
    RadixSort(coded, scratch_, [](const CodedIndex& c) { return c.code; });
    for (std::size_t k = 0; k < indices.size(); ++k) indices[k] = coded[k].index;
    SortCrowds(coded, indices);
  }

 private:
  // One centre far away makes the others share a cell. They span less than the whole, so every level has less to tell apart.
  void SortCrowds(const std::vector<CodedIndex>& coded, std::span<std::uint32_t> indices) {
    for (auto first = coded.begin(); first != coded.end();) {
      auto last = first + 1;
      while (last != coded.end() && last->code == first->code) ++last;
      const auto count = last - first;
      if (count > kCrowd && count < coded.end() - coded.begin()) {
        Sort(indices.subspan(static_cast<std::size_t>(first - coded.begin()), static_cast<std::size_t>(count)));
      }
      first = last;
    }
  }

  std::span<const ZBR_PT> centers_;
  std::vector<CodedIndex> scratch_;
};

}  // namespace

std::vector<std::uint32_t> SpatialOrder(std::span<const ZBR_PT> centers) {
  std::vector<std::uint32_t> order(centers.size());
  std::iota(order.begin(), order.end(), 0U);
  CurveOrder(centers).Sort(order);
  return order;
}

}  // namespace zbr
