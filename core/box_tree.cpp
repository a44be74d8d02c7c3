// Building box hierarchies, the inner steps of their join, and the order along a space-filling curve.
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

constexpr double kCells = 65535.0;  // per axis

// Spreads the low 16 bits to the even places.
std::uint32_t Spread(std::uint32_t x) {
  x = (x | x << 8U) & 0x00ff00ffU;
  x = (x | x << 4U) & 0x0f0f0f0fU;
  x = (x | x << 2U) & 0x33333333U;
  x = (x | x << 1U) & 0x55555555U;
  return x;
}

struct CodedIndex {
  std::uint32_t code;
  std::uint32_t index;
};

}  // namespace

std::vector<std::uint32_t> SpatialOrder(std::span<const ZBR_PT> centers) {
  Box extent;
  for (const ZBR_PT& c : centers) extent.Add(c);
  const double size = std::max(extent.xmax - extent.xmin, extent.ymax - extent.ymin);
  const double scale = size > 0.0 && size < std::numeric_limits<double>::infinity() ? kCells / size : 0.0;

  const auto cell = [scale](double offset) {
    const double c = offset * scale;
    return c > 0.0 ? static_cast<std::uint32_t>(std::min(c, kCells)) : 0;  // NaN goes to 0 as well
  };

  std::vector<CodedIndex> coded(centers.size());
  for (std::uint32_t i = 0; i < centers.size(); ++i) {
    coded[i] = {Spread(cell(centers[i].x() - extent.xmin)) | Spread(cell(centers[i].y() - extent.ymin)) << 1U, i};
  }
  std::vector<CodedIndex> scratch;
  RadixSort(coded, scratch, [](const CodedIndex& c) { return c.code; });

  std::vector<std::uint32_t> order(centers.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = coded[i].index;
  return order;
}

}  // namespace zbr
