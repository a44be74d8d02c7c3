#include "hiddenline/occluder_tree.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/radix_sort.h"

namespace zbr {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// The nearest float at most, or at least, d.
float RoundDown(double d) {
  const auto f = static_cast<float>(d);
  return f > d ? std::nextafter(f, -kInfinity) : f;
}
float RoundUp(double d) {
  const auto f = static_cast<float>(d);
  return f < d ? std::nextafter(f, kInfinity) : f;
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

struct Keyed {
  std::uint64_t key;
  std::uint32_t item;
};

// The items' indices in Morton's order of their centres, on a cubic grid (as in Lauterbach et al., "Fast BVH construction on GPUs",
// 2009). Depth counts like width: on a closed surface, clusters that are compact in space have small boxes seen from anywhere.
std::vector<Keyed> CurveOrder(std::span<const OccluderTree::Item> items, const ZBR_PT3& low, double size) {
  static constexpr double kCells = 65535.0;
  const double scale = size > 0.0 ? kCells / size : 0.0;
  const auto cell = [scale](double c, double from) {
    return static_cast<std::uint32_t>(std::clamp((c - from) * scale, 0.0, kCells));
  };
  std::vector<Keyed> keyed(items.size());
  std::vector<Keyed> scratch;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const OccluderTree::Item& item = items[i];
    const ZBR_PT centre = item.box.Center();
    const double z = item.minZ / 2.0 + item.maxZ / 2.0;
    keyed[i] = {Spread(cell(centre.x(), low.x())) | Spread(cell(centre.y(), low.y())) << 1U | Spread(cell(z, low.z())) << 2U,
                static_cast<std::uint32_t>(i)};
  }
  RadixSort(keyed, scratch, [](const Keyed& k) { return k.key; });
  return keyed;
}

}  // namespace

OccluderTree::Node OccluderTree::MakeNode(std::span<Lane> lanes) {
  std::stable_sort(lanes.begin(), lanes.end(), [](const Lane& a, const Lane& b) { return a.zmax > b.zmax; });
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

OccluderTree::Lane OccluderTree::Around(const Node& node, std::int32_t child) {
  const auto least = [](const auto& a) { return *std::min_element(a.begin(), a.end()); };
  const auto most = [](const auto& a) { return *std::max_element(a.begin(), a.end()); };
  return {least(node.xmin), least(node.ymin), most(node.xmax), most(node.ymax), node.zmax[0], child};
}

void OccluderTree::Build(std::span<const Item> items) {
  nodes_.clear();
  if (items.empty()) return;
  Box box;
  double zmin = std::numeric_limits<double>::infinity();
  double zmax = -zmin;
  for (const Item& item : items) {
    box.Add(item.box);
    zmin = std::min(zmin, item.minZ);
    zmax = std::max(zmax, item.maxZ);
  }
  // Halves, because sums and differences of the largest numbers overflow.
  centre_ = ZBR_PT3(box.xmin / 2.0 + box.xmax / 2.0, box.ymin / 2.0 + box.ymax / 2.0, zmin / 2.0 + zmax / 2.0);
  const double half = std::max({box.xmax / 2.0 - box.xmin / 2.0, box.ymax / 2.0 - box.ymin / 2.0, zmax / 2.0 - zmin / 2.0});
  const std::vector<Keyed> order = CurveOrder(items, ZBR_PT3(box.xmin, box.ymin, zmin), 2.0 * half);

  nodes_.reserve(items.size() / 3 + 16);
  std::array<Lane, kFanOut> lanes;
  for (std::size_t i = 0; i < order.size(); i += kFanOut) {
    const std::size_t n = std::min<std::size_t>(kFanOut, order.size() - i);
    for (std::size_t k = 0; k < n; ++k) {
      const Item& item = items[order[i + k].item];
      lanes[k] = {RoundDown(item.box.xmin - centre_.x()), RoundDown(item.box.ymin - centre_.y()),
                  RoundUp(item.box.xmax - centre_.x()),   RoundUp(item.box.ymax - centre_.y()),
                  RoundUp(item.maxZ - centre_.z()),       ~item.position};
    }
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
