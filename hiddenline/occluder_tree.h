// A search tree over triangles, or over whole bodies: which can hide something within a box and above a height.
//
// Idea: triangles in the order of a space-filling curve through their centres, four neighbours to a node, four nodes to a parent,
// and so on. A node holds the boxes of its four children side by side in single precision (rounded outwards, relative to the
// model's centre), so that one node is one and a half cache lines and the four are tested together. Children are kept by decreasing
// height: what is nearest the viewer is met first, and hides the most.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

#include <zbr/hidden_line.h>
#include <zbr/spatial.h>

#include "core/box.h"
#include "core/sharing.h"
#include "hiddenline/extents.h"
#include "hiddenline/float_key.h"

namespace zbr {

class OccluderTree {
 public:
  static constexpr std::uint32_t kFanOut = 4;

  // What to search for: boxes that meet this one and reach at least the height, in the tree's coordinates.
  struct Query {
    float xmin, ymin, xmax, ymax, z;
  };

  // Which of two neighbours in the tree comes first.
  enum class Order { kHighestFirst, kLowestFirst };

  // Of those triangles that are not invalid, all of which lie within the bounds.
  void Build(std::span<const ZBR_HL_TRI> triangles, const Extents& bounds, const Sharing& sharing);
  // Of bodies, those without extents left out.
  void Build(std::span<const Extents> bodies);
  bool empty() const { return nodes_.empty(); }
  // Calls visit(position) for all triangles, neighbours in space one after the other.
  template <class Visit>
  void ForEach(Visit visit) const;
  Query MakeQuery(const Box& box, double z) const;

  // Visits triangles whose boxes meet the query, roughly in the given order, by position. `visit` returns false to end the
  // search. `announce` is called for the few that will be visited next.
  template <class Visit, class Announce>
  void Search(const Query& query, Order order, Visit visit, Announce announce) const;
  template <class Visit>
  void Search(const Query& query, Visit visit, Order order = Order::kHighestFirst) const {
    Search(query, order, visit, [](int) {});
  }

 private:
  struct alignas(16) Node {
    std::array<float, kFanOut> xmin, ymin, xmax, ymax, zmax;  // xmin > xmax in unused lanes
    std::array<std::int32_t, kFanOut> child;                  // node; ~position in the lowest nodes
  };

  // A lane of a node while the tree is built.
  struct Lane {
    float xmin, ymin, xmax, ymax, zmax;
    std::int32_t child;
  };

  template <class Items>
  void BuildOver(const Items& items, const Extents& bounds, const Sharing& sharing);
  static Node MakeNode(std::span<Lane> lanes);
  Lane LaneOf(const Extents& e, int position) const;
  static Lane Around(const Node& node, std::int32_t child);
  static unsigned Hits(const Node& node, const Query& q);

  ZBR_PT3 centre_;
  std::vector<Node> nodes_;  // the root last
};

// A float at most, or at least, d: the nearest one and a step outwards, which is cheaper than to see whether it is needed.
inline float FloatBelow(double d) {
  constexpr float kStep = 1.2e-7F;  // a little more than the distance between neighbours, relative
  const float f = ToFloat(d);
  return f - std::fabs(f) * kStep - std::numeric_limits<float>::min();
}
inline float FloatAbove(double d) {
  return -FloatBelow(-d);
}

inline OccluderTree::Query OccluderTree::MakeQuery(const Box& box, double z) const {
  return {FloatBelow(box.xmin - centre_.x()), FloatBelow(box.ymin - centre_.y()), FloatAbove(box.xmax - centre_.x()),
          FloatAbove(box.ymax - centre_.y()), FloatBelow(z - centre_.z())};
}

template <class Visit>
void OccluderTree::ForEach(Visit visit) const {
  for (const Node& node : nodes_) {
    if (node.child[0] >= 0) return;  // no longer one of the lowest nodes
    for (std::size_t i = 0; i < kFanOut; ++i) {
      if (node.xmin[i] <= node.xmax[i]) visit(~node.child[i]);
    }
  }
}

inline unsigned OccluderTree::Hits(const Node& node, const Query& q) {
#if defined(__SSE__)
  const auto load = [](const std::array<float, kFanOut>& a) { return _mm_load_ps(a.data()); };
  const __m128 x =
      _mm_and_ps(_mm_cmple_ps(load(node.xmin), _mm_set1_ps(q.xmax)), _mm_cmpge_ps(load(node.xmax), _mm_set1_ps(q.xmin)));
  const __m128 y =
      _mm_and_ps(_mm_cmple_ps(load(node.ymin), _mm_set1_ps(q.ymax)), _mm_cmpge_ps(load(node.ymax), _mm_set1_ps(q.ymin)));
  const __m128 z = _mm_cmpge_ps(load(node.zmax), _mm_set1_ps(q.z));
  return static_cast<unsigned>(_mm_movemask_ps(_mm_and_ps(_mm_and_ps(x, y), z)));
#else
  unsigned hits = 0;
  for (unsigned i = 0; i < kFanOut; ++i) {
    const bool hit = (node.xmin[i] <= q.xmax) & (node.xmax[i] >= q.xmin) & (node.ymin[i] <= q.ymax) & (node.ymax[i] >= q.ymin) &
                     (node.zmax[i] >= q.z);
    hits |= static_cast<unsigned>(hit) << i;
  }
  return hits;
#endif
}

template <class Visit, class Announce>
void OccluderTree::Search(const Query& query, Order order, Visit visit, Announce announce) const {
  if (empty()) return;
  std::int32_t stack[64];  // three siblings wait per level, and sixteen levels hold more than there are ints
  int depth = 0;
  stack[depth++] = static_cast<std::int32_t>(nodes_.size()) - 1;
  while (depth > 0) {
    const Node& node = nodes_[static_cast<std::size_t>(stack[--depth])];
    unsigned hits = Hits(node, query);
    if (node.child[0] >= 0) {
      // What is to be visited first goes on top of the stack.
      while (hits != 0) {
        const int last = order == Order::kHighestFirst ? static_cast<int>(std::bit_width(hits)) - 1 : std::countr_zero(hits);
        hits ^= 1U << static_cast<unsigned>(last);
        stack[depth++] = node.child[static_cast<unsigned>(last)];
      }
    } else {
      for (unsigned left = hits; left != 0; left &= left - 1U) {
        announce(~node.child[static_cast<unsigned>(std::countr_zero(left))]);
      }
      for (; hits != 0; hits &= hits - 1U) {
        if (!visit(~node.child[static_cast<unsigned>(std::countr_zero(hits))])) return;
      }
    }
  }
}

}  // namespace zbr
