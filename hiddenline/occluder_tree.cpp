// Building: Morton order, lowest nodes, levels above.
#include "hiddenline/occluder_tree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/radix_sort.h"
#include "core/small_sort.h"
#include "hiddenline/float_key.h"

namespace zbr {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// A float at most, or at least, d: the nearest one and a step outwards, which is cheaper than to see whether it is needed.
constexpr float kStep = 1.2e-7F;  // a little more than the distance between neighbours, relative
float RoundDown(double d) {
  const float f = ToFloat(d);
  return f - std::fabs(f) * kStep - std::numeric_limits<float>::min();
}
float RoundUp(double d) {
  return -RoundDown(-d);
}

// The 16 bits of c with two zeros between neighbours.
std::uint64_t Spread(std::uint32_t c) {
  std::uint64_t v = c;
  v = (v | v << 16U) & 0x0000ff0000ffULL;
  v = (v | v << 8U) & 0x00f00f00f00fULL;
  v = (v | v << 4U) & 0x0c30c30c30c3ULL;
  v = (v | v << 2U) & 0x249249249249ULL;
  return v;
}

// Morton's order of the centres of boxes on a cubic grid (as in Lauterbach et al., "Fast BVH construction on GPUs", 2009). Depth
// counts like width: on a closed surface, clusters that are compact in space have small boxes seen from anywhere.
class CurveOrder {
 public:
  CurveOrder(std::span<const Extents> extents, const ZBR_PT3& low, double size)
      : extents_(extents), low_(low), scale_(size > 0.0 ? kCells / size : 0.0) {}

  void Sort(std::vector<int>& positions) const {
    std::vector<Keyed> keyed(positions.size());
    std::vector<Keyed> scratch;
    for (std::size_t i = 0; i < positions.size(); ++i) {
      keyed[i] = {static_cast<std::uint32_t>(FullKey(positions[i]) >> kFineBits), positions[i]};
    }
    const auto key = [](const Keyed& k) { return k.key; };
    RadixSort(keyed, scratch, key);
    ForEachRun(keyed, key, [this](std::span<Keyed> cell) {
      if (cell.size() > kCrowded) SortFinely(cell);
    });
    for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = keyed[i].position;
  }

 private:
  static constexpr double kCells = 65535.0;
  static constexpr int kFineBits = 18;         // of 48: ten bits an axis suffice unless detail is unevenly spread
  static constexpr std::size_t kCrowded = 16;  // triangles in one coarse cell

  struct Keyed {
    std::uint32_t key;
    int position;
  };

  std::uint64_t FullKey(int position) const {
    const Extents& e = extents_[static_cast<std::size_t>(position)];
    const ZBR_PT centre = e.box.Center();
    return Spread(Cell(centre.x() - low_.x())) | Spread(Cell(centre.y() - low_.y())) << 1U |
           Spread(Cell((e.minZ + e.maxZ) / 2.0 - low_.z())) << 2U;
  }
  std::uint32_t Cell(double d) const { return static_cast<std::uint32_t>(std::min(std::max(d * scale_, 0.0), kCells)); }

  void SortFinely(std::span<Keyed> cell) const {
    std::vector<std::pair<std::uint64_t, int>> fine;
    for (const Keyed& k : cell) fine.emplace_back(FullKey(k.position), k.position);
    std::sort(fine.begin(), fine.end());
    for (std::size_t i = 0; i < cell.size(); ++i) cell[i].position = fine[i].second;
  }

  std::span<const Extents> extents_;
  ZBR_PT3 low_;
  double scale_;
};

}  // namespace

OccluderTree::Node OccluderTree::MakeNode(std::span<Lane> lanes) {
  SmallSort(lanes.begin(), lanes.end(), [](const Lane& a, const Lane& b) { return a.zmax > b.zmax; });
  Node node;
  for (std::size_t i = 0; i < kFanOut; ++i) {
    const bool used = i < lanes.size();
    const Lane lane = used ? lanes[i] : Lane{kInfinity, kInfinity, -kInfinity, -kInfinity, -kInfinity, lanes[0].child};
    node.xmin[i] = lane.xmin;
    node.ymin[i] = lane.ymin;
    node.xmax[i] = lane.xmax;
    node.ymax[i] = lane.ymax;
    node.zmax[i] = lane.zmax;
    node.child[i] = lane.child;
  }
  return node;
}

OccluderTree::Lane OccluderTree::LaneOf(const Extents& e, int position) const {
  const Query q = MakeQuery(e.box, 0.0);
  return {q.xmin, q.ymin, q.xmax, q.ymax, RoundUp(e.maxZ - centre_.z()), ~position};
}

OccluderTree::Lane OccluderTree::Around(const Node& node, std::int32_t child) {
  const auto least = [](const auto& a) { return *std::min_element(a.begin(), a.end()); };
  const auto most = [](const auto& a) { return *std::max_element(a.begin(), a.end()); };
  return {least(node.xmin), least(node.ymin), most(node.xmax), most(node.ymax), node.zmax[0], child};
}

namespace {

// Of all levels: models of a hundred thousand small bodies have no room to spare.
std::size_t NodeCount(std::size_t leaves) {
  std::size_t count = 0;
  do {
    leaves = (leaves + OccluderTree::kFanOut - 1) / OccluderTree::kFanOut;
    count += leaves;
  } while (leaves > 1);
  return count;
}

}  // namespace

void OccluderTree::Build(std::span<const Extents> extents, std::span<const int> positions) {
  nodes_.clear();
  if (positions.empty()) return;
  Box box;
  double zmin = std::numeric_limits<double>::infinity();
  double zmax = -zmin;
  for (const int position : positions) {
    const Extents& e = extents[static_cast<std::size_t>(position)];
    box.Add(e.box);
    zmin = std::min(zmin, e.minZ);
    zmax = std::max(zmax, e.maxZ);
  }
  centre_ = ZBR_PT3((box.xmin + box.xmax) / 2.0, (box.ymin + box.ymax) / 2.0, (zmin + zmax) / 2.0);
  std::vector<int> order(positions.begin(), positions.end());
  CurveOrder(extents, ZBR_PT3(box.xmin, box.ymin, zmin), std::max({box.xmax - box.xmin, box.ymax - box.ymin, zmax - zmin}))
      .Sort(order);

  nodes_.reserve(NodeCount(order.size()));
  std::array<Lane, kFanOut> lanes;
  for (std::size_t i = 0; i < order.size(); i += kFanOut) {
    const std::size_t n = std::min<std::size_t>(kFanOut, order.size() - i);
    for (std::size_t k = 0; k < n; ++k) lanes[k] = LaneOf(extents[static_cast<std::size_t>(order[i + k])], order[i + k]);
    nodes_.push_back(MakeNode(std::span(lanes).first(n)));
  }
  for (std::size_t begin = 0; nodes_.size() - begin > 1;) {
    const std::size_t end = nodes_.size();
    for (std::size_t i = begin; i < end; i += kFanOut) {
      const std::size_t n = std::min<std::size_t>(kFanOut, end - i);
      for (std::size_t k = 0; k < n; ++k) lanes[k] = Around(nodes_[i + k], static_cast<std::int32_t>(i + k));
      nodes_.push_back(MakeNode(std::span(lanes).first(n)));
    }
    begin = end;
  }
}

OccluderTree::Query OccluderTree::MakeQuery(const Box& box, double z) const {
  return {RoundDown(box.xmin - centre_.x()), RoundDown(box.ymin - centre_.y()), RoundUp(box.xmax - centre_.x()),
          RoundUp(box.ymax - centre_.y()), RoundDown(z - centre_.z())};
}

}  // namespace zbr
