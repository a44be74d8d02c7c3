// Building: Morton order, lowest nodes, levels above.
#include "hiddenline/occluder_tree.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "core/prefetch.h"
#include "core/radix_sort.h"
#include "core/small_sort.h"

namespace zbr {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// The 16 bits of c with two zeros between neighbours.
std::uint64_t Spread(std::uint32_t c) {
  std::uint64_t v = c;
  v = (v | v << 16U) & 0x0000ff0000ffULL;
  v = (v | v << 8U) & 0x00f00f00f00fULL;
  v = (v | v << 4U) & 0x0c30c30c30c3ULL;
  v = (v | v << 2U) & 0x249249249249ULL;
  return v;
}

// Items in one piece of work.
constexpr std::size_t kPiece = 16384;

// What trees are built over. Those left out hide nothing.
struct Triangles {
  std::span<const ZBR_HL_TRI> of;

  std::size_t size() const { return of.size(); }
  bool IsLeftOut(std::size_t i) const { return of[i].IsTriInvalid(); }
  Extents ExtentsAt(std::size_t i) const { return ExtentsOf(of[i]); }
  void Announce(std::size_t i) const {
    Prefetch(&of[i].max_x);
    Prefetch(&of[i].min_z);
  }
};
struct Bodies {
  std::span<const Extents> of;

  std::size_t size() const { return of.size(); }
  bool IsLeftOut(std::size_t i) const { return of[i].empty(); }
  const Extents& ExtentsAt(std::size_t i) const { return of[i]; }
  void Announce(std::size_t) const {}
};

// Morton's order of the centres of boxes on a cubic grid (as in Lauterbach et al., "Fast BVH construction on GPUs", 2009). Depth
// counts like width: on a closed surface, clusters that are compact in space have small boxes seen from anywhere.
struct Keyed {
  std::uint32_t key;
  int position;
};

template <class Items>
class CurveOrder {
 public:
  CurveOrder(const Items& items, const Extents& bounds) : items_(items), low_(bounds.box.xmin, bounds.box.ymin, bounds.minZ) {
    const Box& box = bounds.box;
    const double size = std::max({box.xmax - box.xmin, box.ymax - box.ymin, bounds.maxZ - bounds.minZ});
    scale_ = size > 0.0 ? kCells / size : 0.0;
  }

  // The items that are not left out, in order. They are dealt out to stretches of the curve first, several of which make a piece
  // of work, so that each is sorted where it lies.
  std::vector<Keyed> Sorted(const Sharing& sharing) const {
    std::vector<Keyed> keyed(items_.size());
    if (keyed.size() <= kFew) {
      for (std::size_t i = 0; i < keyed.size(); ++i) keyed[i] = {items_.IsLeftOut(i) ? kInvalidKey : 0, static_cast<int>(i)};
      std::erase_if(keyed, [](const Keyed& k) { return k.key == kInvalidKey; });
      return keyed;
    }
    sharing.InPieces(keyed.size(), kPiece, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) keyed[i] = KeyOf(i);
    });
    if (keyed.size() <= kPiece) {
      std::erase_if(keyed, [](const Keyed& k) { return k.key == kInvalidKey; });
      Sort(keyed);
      return keyed;
    }
    std::vector<std::size_t> ends;  // of the stretches
    keyed = Dealt(std::move(keyed), ends, sharing);
    keyed.resize(ends[kStretches - 1]);
    std::vector<std::size_t> pieces{0};
    for (std::size_t k = 0; k < kStretches; ++k) {
      if (ends[k] - pieces.back() >= kPiece || k + 1 == kStretches) pieces.push_back(ends[k]);
    }
    sharing.Run(pieces.size() - 1, [&](std::size_t k) { Sort(std::span(keyed).subspan(pieces[k], pieces[k + 1] - pieces[k])); });
    return keyed;
  }

 private:
  static constexpr double kCells = 65535.0;
  static constexpr std::size_t kFew = 16;      // of so few triangles any order does; a box has twelve
  static constexpr int kFineBits = 18;         // of 48: ten bits an axis suffice unless detail is unevenly spread
  static constexpr std::size_t kCrowded = 16;  // triangles in one coarse cell
  static constexpr unsigned kStretchBits = 18;
  static constexpr std::size_t kStretches = 4096;  // of the 30 - 18 highest bits
  static constexpr std::uint32_t kInvalidKey = ~std::uint32_t{0};

  static std::size_t StretchOf(const Keyed& k) { return std::min<std::size_t>(k.key >> kStretchBits, kStretches); }

  // In order of the stretches, and within each as given; what is invalid comes last.
  static std::vector<Keyed> Dealt(std::vector<Keyed> keyed, std::vector<std::size_t>& ends, const Sharing& sharing) {
    const std::size_t pieces = Sharing::PieceCount(keyed.size(), kDealt);
    std::vector<std::vector<std::uint32_t>> places(pieces, std::vector<std::uint32_t>(kStretches + 1));
    sharing.InPieces(keyed.size(), kDealt, [&](std::size_t piece, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) ++places[piece][StretchOf(keyed[i])];
    });
    std::uint32_t sum = 0;
    for (std::size_t k = 0; k <= kStretches; ++k) {
      for (std::vector<std::uint32_t>& of : places) sum += std::exchange(of[k], sum);
      ends.push_back(sum);
    }
    std::vector<Keyed> dealt(keyed.size());
    sharing.InPieces(keyed.size(), kDealt, [&](std::size_t piece, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) dealt[places[piece][StretchOf(keyed[i])]++] = keyed[i];
    });
    return dealt;
  }
  static constexpr std::size_t kDealt = 65536;  // triangles in a piece of that, which counts for all stretches

  void Sort(std::span<Keyed> piece) const {
    std::vector<Keyed> own(piece.begin(), piece.end()), scratch;
    const auto key = [](const Keyed& k) { return k.key; };
    RadixSort(own, scratch, key);
    ForEachRun(own, key, [this](std::span<Keyed> cell) {
      if (cell.size() > kCrowded) SortFinely(cell);
    });
    std::copy(own.begin(), own.end(), piece.begin());
  }

  Keyed KeyOf(std::size_t i) const {
    const int position = static_cast<int>(i);
    if (items_.IsLeftOut(i)) return {kInvalidKey, position};
    return {static_cast<std::uint32_t>(FullKey(position) >> kFineBits), position};
  }
  std::uint64_t FullKey(int position) const {
    const Extents e = items_.ExtentsAt(static_cast<std::size_t>(position));
    const ZBR_PT centre = e.box.Center();
    return Spread(Cell(centre.x() - low_.x())) | Spread(Cell(centre.y() - low_.y())) << 1U |
           Spread(Cell((e.minZ + e.maxZ) / 2.0 - low_.z())) << 2U;
  }
  std::uint32_t Cell(double d) const {
    return static_cast<std::uint32_t>(std::min(std::max(0.0, d * scale_), kCells));  // 0 for NaN, as max() keeps the first then
  }

  void SortFinely(std::span<Keyed> cell) const {
    std::vector<std::pair<std::uint64_t, int>> fine;
    for (const Keyed& k : cell) fine.emplace_back(FullKey(k.position), k.position);
    std::sort(fine.begin(), fine.end());
    for (std::size_t i = 0; i < cell.size(); ++i) cell[i].position = fine[i].second;
  }

  const Items& items_;
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
  return {q.xmin, q.ymin, q.xmax, q.ymax, FloatAbove(e.maxZ - centre_.z()), ~position};
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

void OccluderTree::Build(std::span<const ZBR_HL_TRI> triangles, const Extents& bounds, const Sharing& sharing) {
  BuildOver(Triangles{triangles}, bounds, sharing);
}

void OccluderTree::Build(std::span<const Extents> bodies) {
  Extents bounds;
  for (const Extents& body : bodies) bounds.Add(body);
  BuildOver(Bodies{bodies}, bounds, Sharing());
}

template <class Items>
void OccluderTree::BuildOver(const Items& items, const Extents& bounds, const Sharing& sharing) {
  nodes_.clear();
  centre_ = ZBR_PT3((bounds.box.xmin + bounds.box.xmax) / 2.0, (bounds.box.ymin + bounds.box.ymax) / 2.0,
                    (bounds.minZ + bounds.maxZ) / 2.0);
  const std::vector<Keyed> order = CurveOrder(items, bounds).Sorted(sharing);
  if (order.empty()) return;
  nodes_.resize(NodeCount(order.size()));
  const auto fill = [&](std::size_t first, std::size_t below, auto laneOf) {  // nodes above so many lanes
    sharing.InPieces(Sharing::PieceCount(below, kFanOut), kPiece / kFanOut, [&](std::size_t, std::size_t begin, std::size_t end) {
      std::array<Lane, kFanOut> lanes;
      for (std::size_t node = begin; node < end; ++node) {
        const std::size_t n = std::min<std::size_t>(kFanOut, below - node * kFanOut);
        for (std::size_t k = 0; k < n; ++k) lanes[k] = laneOf(node * kFanOut + k);
        nodes_[first + node] = MakeNode(std::span(lanes).first(n));
      }
    });
  };
  fill(0, order.size(), [&](std::size_t i) {
    const int position = order[i].position;
    if (i + kItemsAhead < order.size()) items.Announce(static_cast<std::size_t>(order[i + kItemsAhead].position));
    return LaneOf(items.ExtentsAt(static_cast<std::size_t>(position)), position);
  });
  std::size_t begin = 0;
  for (std::size_t count = Sharing::PieceCount(order.size(), kFanOut); count > 1; count = Sharing::PieceCount(count, kFanOut)) {
    fill(begin + count, count, [&](std::size_t i) { return Around(nodes_[begin + i], static_cast<std::int32_t>(begin + i)); });
    begin += count;
  }
}

}  // namespace zbr
