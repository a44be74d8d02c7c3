// Boxes over the triangles of each shell, and over the shells, to find what may meet.
//
// The triangles of a shell are put in the order of a space-filling curve; four of them share a parent box, four parents a
// grandparent, and so on, levels as flat arrays. The boxes of the shells have a tree of the same kind above them. Boxes are kept in
// single precision, rounded outwards: twice as many fit a cache line, and a box too large by 1e-7 of its coordinates is met no
// more often.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "drawing/intersections/exact_sign.h"
#include "drawing/unfilled.h"

namespace zbr::drawing {

// The fourth numbers are 0, so that boxes are compared with two instructions where the processor has some for four numbers.
struct alignas(16) FloatBox {
  std::array<float, 4> low, high;

  static FloatBox Around(const GridPoint& a, const GridPoint& b, const GridPoint& c);
  void Add(const FloatBox& o);
};

inline void FloatBox::Add(const FloatBox& o) {
#if defined(__SSE2__)
  _mm_store_ps(low.data(), _mm_min_ps(_mm_load_ps(low.data()), _mm_load_ps(o.low.data())));
  _mm_store_ps(high.data(), _mm_max_ps(_mm_load_ps(high.data()), _mm_load_ps(o.high.data())));
#else
  for (std::size_t i = 0; i < 3; ++i) {
    low[i] = std::min(low[i], o.low[i]);
    high[i] = std::max(high[i], o.high[i]);
  }
#endif
}

inline bool Meet(const FloatBox& a, const FloatBox& b) {
#if defined(__SSE2__)
  const __m128 below = _mm_cmple_ps(_mm_load_ps(a.low.data()), _mm_load_ps(b.high.data()));
  const __m128 above = _mm_cmple_ps(_mm_load_ps(b.low.data()), _mm_load_ps(a.high.data()));
  return _mm_movemask_ps(_mm_and_ps(below, above)) == 15;
#else
  bool meet = true;
  for (std::size_t i = 0; i < 3; ++i) meet &= (a.low[i] <= b.high[i]) & (b.low[i] <= a.high[i]);
  return meet;
#endif
}

// Two nodes of a level of one tree, or one with itself.
struct NodePair {
  std::size_t level;
  std::uint32_t first, second;
};

// One tree within arrays that many trees share. Leaves are named by their places in the order.
class TreeView {
 public:
  static constexpr std::uint32_t kFanOut = 4;

  // `boxes` begins with the leaves' boxes and has room for the levels above.
  TreeView(const FloatBox* boxes, std::uint32_t leaves);
  static std::size_t BoxCount(std::uint32_t leaves);
  // Fills the levels above the leaves.
  static void Build(FloatBox* boxes, std::uint32_t leaves, unsigned threads);

  const FloatBox& Root() const { return levels_[top_][0]; }

  // Calls visit(i, j) once for each two different leaves whose boxes meet.
  template <class Visit>
  void JoinSelf(Visit& visit) const {
    JoinSelf(top_, 0, visit);
  }
  // What JoinSelf does, as pieces of work in its order, some hundreds of a large tree.
  std::vector<NodePair> PairsOfNodes() const {
    constexpr std::size_t kDepth = 4;
    std::vector<NodePair> pairs;
    AddPairs(top_, 0, top_ > kDepth ? top_ - kDepth : 0, pairs);
    return pairs;
  }
  template <class Visit>
  void Join(const NodePair& pair, Visit& visit) const {
    if (pair.first == pair.second) {
      JoinSelf(pair.level, pair.first, visit);
    } else {
      Join(pair.level, pair.first, *this, pair.level, pair.second, visit);
    }
  }
  // Calls visit(i, j) for leaves i of this tree and j of the other whose boxes meet. Where it returns false, there are no more
  // calls, and the result is false, too.
  template <class Visit>
  bool Join(const TreeView& other, Visit& visit) const {
    return !Meet(Root(), other.Root()) || Join(top_, 0, other, other.top_, 0, visit);
  }

 private:
  std::uint32_t End(std::size_t level, std::uint32_t node) const {
    const std::uint32_t end = (node + 1) * kFanOut;
    return end < counts_[level - 1] ? end : counts_[level - 1];
  }

  template <class Visit>
  void JoinSelf(std::size_t level, std::uint32_t node, Visit& visit) const {
    if (level == 0) return;
    for (std::uint32_t i = node * kFanOut, end = End(level, node); i < end; ++i) {
      JoinSelf(level - 1, i, visit);
      for (std::uint32_t j = i + 1; j < end; ++j) {
        if (Meet(levels_[level - 1][i], levels_[level - 1][j])) Join(level - 1, i, *this, level - 1, j, visit);
      }
    }
  }

  void AddPairs(std::size_t level, std::uint32_t node, std::size_t lowest, std::vector<NodePair>& pairs) const {
    if (level == lowest) {
      pairs.push_back({level, node, node});
      return;
    }
    for (std::uint32_t i = node * kFanOut, end = End(level, node); i < end; ++i) {
      AddPairs(level - 1, i, lowest, pairs);
      for (std::uint32_t j = i + 1; j < end; ++j) {
        if (Meet(levels_[level - 1][i], levels_[level - 1][j])) pairs.push_back({level - 1, i, j});
      }
    }
  }

  // The two nodes meet. False once a visit, if it says anything, is.
  template <class Visit>
  bool Join(std::size_t level, std::uint32_t node, const TreeView& other, std::size_t otherLevel, std::uint32_t otherNode,
            Visit& visit) const {
    if (level == 0 && otherLevel == 0) {
      if constexpr (std::is_void_v<decltype(visit(node, otherNode))>) {
        visit(node, otherNode);
      } else {
        return visit(node, otherNode);
      }
    } else if (level >= otherLevel) {
      const FloatBox box = other.levels_[otherLevel][otherNode];
      for (std::uint32_t i = node * kFanOut, end = End(level, node); i < end; ++i) {
        if (Meet(levels_[level - 1][i], box) && !Join(level - 1, i, other, otherLevel, otherNode, visit)) return false;
      }
    } else {
      const FloatBox box = levels_[level][node];
      for (std::uint32_t j = otherNode * kFanOut, end = other.End(otherLevel, otherNode); j < end; ++j) {
        if (Meet(box, other.levels_[otherLevel - 1][j]) && !Join(level, node, other, otherLevel - 1, j, visit)) return false;
      }
    }
    return true;
  }

  static constexpr std::size_t kLevels = 17;  // 4^16 leaves

  std::array<const FloatBox*, kLevels> levels_{};
  std::array<std::uint32_t, kLevels> counts_{};
  std::size_t top_ = 0;
};

// Boxes without values: all of them are written to, and clearing them before takes half as long as that.
using UnfilledBoxes = std::unique_ptr<FloatBox[]>;

// Fills `boxes` with the leaves, of which there is at least one, in the order in which a space-filling curve meets their middles,
// and the levels above them; `places` says where each was. The number of threads changes neither.
void BuildTree(std::span<const FloatBox> leaves, FloatBox* boxes, std::span<std::uint32_t> places, unsigned threads);

// Trees of shells whose triangles and points have consecutive numbers.
class TriangleTrees {
 public:
  // Both with one number more than there are shells.
  TriangleTrees(const std::vector<GridPoint>& points, std::span<const std::array<std::uint32_t, 3>> corners,
                const std::vector<std::uint32_t>& shellBegin, const std::vector<std::uint32_t>& pointBegin, unsigned threads);

  // A shell's tree is made when it is first asked for: most shells are known not to meet themselves, nor others. Several threads
  // may have several shells' made.
  void Make(std::size_t s, unsigned threads);
  TreeView Shell(std::size_t s) const;
  std::span<const std::uint32_t> Order(std::size_t s) const;  // the triangles of a shell's leaves
  std::span<const FloatBox> Leaves(std::size_t s) const;

  // Calls visit(a, b), a < b, for shells whose boxes meet.
  template <class Visit>
  void ForEachPairOfShells(Visit visit) const {
    if (shellOrder_.size() < 2) return;
    const auto inOrder = [&](std::uint32_t i, std::uint32_t j) {
      const std::uint32_t a = shellOrder_[i], b = shellOrder_[j];
      a < b ? visit(a, b) : visit(b, a);
    };
    TreeView(shellBoxes_.get(), static_cast<std::uint32_t>(shellOrder_.size())).JoinSelf(inOrder);
  }

 private:
  const std::vector<GridPoint>& points_;
  std::span<const std::array<std::uint32_t, 3>> corners_;
  const std::vector<std::uint32_t>& shellBegin_;
  std::vector<std::uint8_t> isMade_;   // of shells
  Unfilled<std::uint32_t> order_;      // triangles
  UnfilledBoxes boxes_;                // of all shells' trees
  std::vector<std::size_t> boxBegin_;  // of shells
  std::vector<std::uint32_t> shellOrder_;
  UnfilledBoxes shellBoxes_;
};

}  // namespace zbr::drawing
