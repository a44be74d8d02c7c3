// What a remover of hidden lines needs at least that asks a ray tracer: a tree of the triangles, and sixteen rays for each edge to
// be drawn. So few rays miss what is short, and tell the ends of what is seen to a sixteenth of the edge only; a drawing takes
// more.
//
// All rays go straight up, so the tracer is one for these alone: a ray is a place and a height, a box is hit where the place lies
// in its rectangle and its top is above, and the first triangle found above ends the search. The tree has two children to a node,
// split by the surface area heuristic in bins. The boxes are in single precision, rounded outwards; triangles are tested in double.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "flat_scene.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace bench {
namespace {

constexpr int kRays = 16;          // per edge
constexpr std::size_t kBins = 12;  // in which middles are counted; more gain nothing
// Levels of nodes; below, parts are halves whatever that costs, so that 32 levels more are enough for all. A search has at most
// three nodes of each level waiting.
constexpr std::size_t kDeepest = 64;
constexpr std::size_t kStack = 3 * (kDeepest + 32) + 1;
constexpr float kFar = std::numeric_limits<float>::max();

struct Box {
  std::array<float, 3> low{kFar, kFar, kFar}, high{-kFar, -kFar, -kFar};

  void Add(const Box& o) {
    for (std::size_t i = 0; i < 3; ++i) {
      low[i] = std::min(low[i], o.low[i]);
      high[i] = std::max(high[i], o.high[i]);
    }
  }
  float Middle(std::size_t i) const { return 0.5F * (low[i] + high[i]); }
  // Half the surface.
  float Area() const {
    const float x = high[0] - low[0], y = high[1] - low[1], z = high[2] - low[2];
    return x * y + y * z + z * x;
  }
};

Box BoxOf(const std::array<ZBR_PT3, 3>& triangle) {
  const float outwards = std::numeric_limits<float>::infinity();
  Box box;
  for (const ZBR_PT3& p : triangle) {
    const double at[3] = {p.x(), p.y(), p.z()};
    for (std::size_t i = 0; i < 3; ++i) {
      const auto rounded = static_cast<float>(at[i]);
      box.low[i] = std::min(box.low[i], std::nextafter(rounded, -outwards));
      box.high[i] = std::max(box.high[i], std::nextafter(rounded, outwards));
    }
  }
  return box;
}

// Of up to four children, the higher ones first: what is nearest to the viewer hides the most.
struct alignas(16) Node {
  std::array<float, 4> xlow{kFar, kFar, kFar, kFar}, xhigh{}, ylow{}, yhigh{}, top{};
  std::array<std::int32_t, 4> child{};  // a node, or a triangle's place as its complement

  void Set(std::size_t lane, const Box& box) {
    xlow[lane] = box.low[0];
    xhigh[lane] = box.high[0];
    ylow[lane] = box.low[1];
    yhigh[lane] = box.high[1];
    top[lane] = box.high[2];
  }
  // A bit for each child that a ray meets; without branches, which would mostly be foretold wrongly.
  unsigned Met(float x, float y, float z) const {
#ifdef __SSE2__
    const auto at = [](const std::array<float, 4>& lanes) { return _mm_load_ps(lanes.data()); };
    const __m128 px = _mm_set1_ps(x), py = _mm_set1_ps(y);
    const __m128 inX = _mm_and_ps(_mm_cmpge_ps(px, at(xlow)), _mm_cmple_ps(px, at(xhigh)));
    const __m128 inY = _mm_and_ps(_mm_cmpge_ps(py, at(ylow)), _mm_cmple_ps(py, at(yhigh)));
    return static_cast<unsigned>(_mm_movemask_ps(_mm_and_ps(_mm_and_ps(inX, inY), _mm_cmple_ps(_mm_set1_ps(z), at(top)))));
#else
    const auto is = [](bool b) { return static_cast<unsigned>(b); };
    unsigned met = 0;
    for (unsigned i = 0; i < 4; ++i) {
      met |= (is(x >= xlow[i]) & is(x <= xhigh[i]) & is(y >= ylow[i]) & is(y <= yhigh[i]) & is(z <= top[i])) << i;
    }
    return met;
#endif
  }
};

class Tree {
 public:
  explicit Tree(const std::vector<std::array<ZBR_PT3, 3>>& triangles);
  // Whether anything lies above a point. What hid the one before is tried first.
  bool Hides(const ZBR_PT3& p);

 private:
  struct Item {
    Box box;
    std::uint32_t triangle;
  };
  using Items = std::span<Item>;

  std::int32_t Build(Items items, std::size_t level);
  static std::size_t Part(Items items, std::size_t level);
  bool TriangleHides(std::size_t triangle, const ZBR_PT3& p) const;

  std::vector<Item> items_;
  std::vector<Node> nodes_;
  std::vector<std::array<ZBR_PT3, 3>> triangles_;  // in the order of the leaves
  std::size_t lastHit_ = 0;
};

Tree::Tree(const std::vector<std::array<ZBR_PT3, 3>>& triangles) {
  items_.reserve(triangles.size());
  for (std::uint32_t t = 0; t < triangles.size(); ++t) items_.push_back({BoxOf(triangles[t]), t});
  nodes_.reserve(triangles.size());
  if (!items_.empty()) Build(items_, 0);
  triangles_.reserve(triangles.size());
  for (const Item& item : items_) triangles_.push_back(triangles[item.triangle]);
  items_ = {};
}

// Makes the node of the items, at least one, and returns its number.
std::int32_t Tree::Build(Items items, std::size_t level) {
  std::array<Items, 4> parts{items};
  std::size_t count = 1;
  while (count < std::min<std::size_t>(4, items.size())) {  // the largest part becomes two
    const auto largest = std::max_element(parts.begin(), parts.end(), [](Items a, Items b) { return a.size() < b.size(); });
    const std::size_t first = Part(*largest, level);
    parts[count++] = largest->subspan(first);
    *largest = largest->first(first);
  }
  std::array<Box, 4> boxes;
  for (std::size_t i = 0; i < count; ++i) {
    for (const Item& item : parts[i]) boxes[i].Add(item.box);
  }
  std::array<std::size_t, 4> order{0, 1, 2, 3};  // the unused ones, of which nothing is above, stay last
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return boxes[a].high[2] > boxes[b].high[2]; });
  const std::size_t number = nodes_.size();
  nodes_.emplace_back();
  for (std::size_t i = 0; i < count; ++i) {
    const Items part = parts[order[i]];
    nodes_[number].Set(i, boxes[order[i]]);
    const std::int32_t child = part.size() == 1 ? ~static_cast<std::int32_t>(part.data() - items_.data()) : Build(part, level + 1);
    nodes_[number].child[i] = child;
  }
  return static_cast<std::int32_t>(number);
}

// Parts two items or more where that costs least: each part's surface times its items. Returns how many go to the first part. Only
// the axis along which the middles lie farthest apart is looked at.
std::size_t Tree::Part(Items items, std::size_t level) {
  Box middles;
  for (const Item& item : items) {
    const std::array<float, 3> middle{item.box.Middle(0), item.box.Middle(1), item.box.Middle(2)};
    middles.Add({middle, middle});
  }
  std::size_t axis = 0;
  for (const std::size_t i : {1U, 2U}) {
    if (middles.high[i] - middles.low[i] > middles.high[axis] - middles.low[axis]) axis = i;
  }
  const float low = middles.low[axis], width = middles.high[axis] - low;
  if (items.size() == 2 || level > kDeepest || !(width > 0.0F)) return items.size() / 2;
  const auto binOf = [&](const Item& item) {
    return std::min(kBins - 1, static_cast<std::size_t>((item.box.Middle(axis) - low) * (kBins / width)));
  };
  std::array<Box, kBins> boxes;
  std::array<std::uint32_t, kBins> counts{};
  for (const Item& item : items) {
    const std::size_t bin = binOf(item);
    boxes[bin].Add(item.box);
    ++counts[bin];
  }
  std::array<float, kBins> behind{};  // cost of the bins from this one on
  Box box;
  std::uint32_t sum = 0;
  for (std::size_t bin = kBins - 1; bin > 0; --bin) {
    box.Add(boxes[bin]);
    sum += counts[bin];
    behind[bin] = box.Area() * static_cast<float>(sum);
  }
  float least = kFar;
  std::size_t best = 1;
  box = Box();
  sum = 0;
  for (std::size_t bin = 1; bin < kBins; ++bin) {
    box.Add(boxes[bin - 1]);
    sum += counts[bin - 1];
    const float cost = box.Area() * static_cast<float>(sum) + behind[bin];
    if (cost < least) {
      least = cost;
      best = bin;
    }
  }
  const auto middle = std::partition(items.begin(), items.end(), [&](const Item& item) { return binOf(item) < best; });
  return static_cast<std::size_t>(middle - items.begin());
}

bool Tree::Hides(const ZBR_PT3& p) {
  if (nodes_.empty()) return false;
  if (TriangleHides(lastHit_, p)) return true;
  const auto x = static_cast<float>(p.x()), y = static_cast<float>(p.y()), z = static_cast<float>(p.z());
  std::array<std::int32_t, kStack> open;
  std::size_t count = 0;
  open[count++] = 0;
  while (count > 0) {
    const Node& node = nodes_[static_cast<std::size_t>(open[--count])];
    unsigned met = node.Met(x, y, z);
    while (met != 0) {  // from the lowest one, so that the highest waits on top
      const auto lane = static_cast<unsigned>(std::bit_width(met)) - 1;
      met ^= 1U << lane;
      const std::int32_t child = node.child[lane];
      if (child >= 0) {
        open[count++] = child;
      } else if (TriangleHides(static_cast<std::size_t>(~child), p)) {
        lastHit_ = static_cast<std::size_t>(~child);
        return true;
      }
    }
  }
  return false;
}

bool Tree::TriangleHides(std::size_t triangle, const ZBR_PT3& p) const {
  const auto& [a, b, c] = triangles_[triangle];
  const double u = (b - p).OuterProductXY(c - p), v = (c - p).OuterProductXY(a - p), w = (a - p).OuterProductXY(b - p);
  const bool inside = (u >= 0.0 && v >= 0.0 && w >= 0.0) || (u <= 0.0 && v <= 0.0 && w <= 0.0);
  return inside && (u * (a.z() - p.z()) + v * (b.z() - p.z()) + w * (c.z() - p.z())) / (u + v + w) > kRise;
}

class RaysBound final : public HiddenRemover {
 public:
  void Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) override { given_ = GiveScene(model, view); }
  void Run() override;
  DrawnLines Describe() const override { return lines_; }

 private:
  std::vector<GivenTriangle> given_;
  DrawnLines lines_;
};

void RaysBound::Run() {
  lines_ = DrawnLines();
  const FlatScene scene = MakeFlatScene(given_);
  Tree tree(scene.triangles);
  for (const FlatEdge& edge : scene.edges) {
    int seen = 0;
    std::size_t pieces = 0;
    bool before = false;
    for (int k = 0; k < kRays; ++k) {
      const bool visible = !tree.Hides(edge.At((k + 0.5) / kRays));
      seen += visible ? 1 : 0;
      pieces += visible && !before ? 1 : 0;
      before = visible;
    }
    AddVisible(edge, static_cast<double>(seen) / kRays, pieces, lines_);
  }
}

}  // namespace

std::unique_ptr<HiddenRemover> MakeRaysBound() {
  return std::make_unique<RaysBound>();
}

}  // namespace bench
