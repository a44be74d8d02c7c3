// Building box hierarchies, the inner steps of their join, and the order along a Hilbert curve.
#include "core/box_tree.h"

#include "core/radix_sort.h"

namespace zbr {

std::span<Box> BoxTree::StartLeaves(std::size_t n) {
  begin_.assign(1, 0);
  std::size_t total = 0;
  for (std::size_t level = n; level > 0; level = level == 1 ? 0 : (level + kFanOut - 1) / kFanOut) {
    total += level;
    begin_.push_back(static_cast<std::uint32_t>(total));
  }
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
}

BoxJoin::Frame BoxJoin::Keep(const Box& box, int level, std::size_t begin, std::size_t count) {
  Reserve(count);
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

constexpr double kHilbertCells = 65535.0;
constexpr int kHilbertBits = 16;  // per axis: cells of 1/65536 of the extent, codes of 32 bits

std::uint32_t HilbertCode(std::uint32_t x, std::uint32_t y) {
  // Walks down the quadrants, turning the coordinates so that every quadrant is visited like the first (Hilbert 1891; the
  // iterative form is folklore).
  std::uint32_t code = 0;
  for (std::uint32_t half = 1U << (kHilbertBits - 1); half > 0; half >>= 1U) {
    const std::uint32_t rx = (x & half) != 0 ? 1 : 0;
    const std::uint32_t ry = (y & half) != 0 ? 1 : 0;
    code += half * half * ((3 * rx) ^ ry);
    if (ry == 0) {
      if (rx == 1) {
        x = ~x;
        y = ~y;
      }
      std::swap(x, y);
    }
  }
  return code;
}

struct CodedIndex {
  std::uint32_t code;
  std::uint32_t index;
};

}  // namespace

std::vector<std::uint32_t> HilbertOrder(std::span<const ZBR_PT> centers) {
  Box extent;
  for (const ZBR_PT& c : centers) extent.Add(c);
  const double size = std::max(extent.xmax - extent.xmin, extent.ymax - extent.ymin);
  const double scale = size > 0.0 && size < std::numeric_limits<double>::infinity() ? kHilbertCells / size : 0.0;

  const auto cell = [scale](double offset) {
    const double c = offset * scale;
    return c > 0.0 ? static_cast<std::uint32_t>(std::min(c, kHilbertCells)) : 0;  // NaN goes to 0 as well
  };

  std::vector<CodedIndex> coded(centers.size());
  for (std::uint32_t i = 0; i < centers.size(); ++i) {
    coded[i] = {HilbertCode(cell(centers[i].x() - extent.xmin), cell(centers[i].y() - extent.ymin)), i};
  }
  std::vector<CodedIndex> scratch;
  RadixSort(coded, scratch, 2 * kHilbertBits, [](const CodedIndex& c) { return c.code; });

  std::vector<std::uint32_t> order(centers.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = coded[i].index;
  return order;
}

}  // namespace zbr
